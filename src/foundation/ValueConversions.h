#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Between the value types of the frame protocol, their text, and the untyped pointers in which
/// values travel. Texts are read by the rules of NumberText.h: leading white space is skipped,
/// and what follows the number is ignored.
///
/// Every failure is an ErrorManagement::Exception::IllegalArgumentException by value with a
/// fixed text that doesn't quote the input; hexStringToUInt32 alone throws a pointer.
/// Thread: any.
namespace FrameDriver::Tools {

/// The name of a tag of CPL::DataType that has one here ("Int16", "Boolean", "Degree"...), the
/// empty string for any other.
std::string typeToName(std::int32_t tag);
/// The tag of such a name, -1 for any other text. "Degree" is not among the names read, although
/// it is printed.
std::int32_t nameToType(std::string_view name);

/// The first character behind the white space, as it is: "65" gives '6', 54.
std::int8_t stringToByte(std::string_view text);
std::uint8_t stringToUByte(std::string_view text);
std::int16_t stringToInt16(std::string_view text);
std::uint16_t stringToUInt16(std::string_view text);
std::int32_t stringToInt32(std::string_view text);
/// Reads a signed 16-bit number and widens it with its sign: "40000" fails and "-1" gives
/// 4294967295. Time code fields and subscription numbers come through here and rely on it.
std::uint32_t stringToUInt32(std::string_view text);
float stringToFloat(std::string_view text);
/// "1f" and "0x1f" alike. On failure throws a *pointer* to an IllegalArgumentException on the
/// heap, which a handler that catches by reference doesn't see; it belongs to whoever catches
/// it. Kept: the loaders' last-resort texts depend on it.
std::uint32_t hexStringToUInt32(std::string_view text);

/// The byte as one character.
std::string byteToString(std::int8_t value);
std::string ubyteToString(std::uint8_t value);
std::string int16ToString(std::int16_t value);
std::string uint16ToString(std::uint16_t value);
std::string int32ToString(std::int32_t value);
std::string uint32ToString(std::uint32_t value);
/// Six significant digits, no trailing zeros, scientific form for very large and small values.
std::string floatToString(float value);
/// Lower case, without prefix or padding; a negative number as its two's complement.
std::string int32ToHexString(std::int32_t value);
std::string uint32ToHexString(std::uint32_t value);
/// "true" or "false".
std::string boolToString(bool value);

/// The value that `pointer` points at; the pointer may be unaligned. Null throws.
bool voidToBool(void const* pointer);
std::int8_t voidToByte(void const* pointer);
std::uint8_t voidToUByte(void const* pointer);
std::int16_t voidToInt16(void const* pointer);
std::uint16_t voidToUInt16(void const* pointer);
std::int32_t voidToInt32(void const* pointer);
std::uint32_t voidToUInt32(void const* pointer);
float voidToFloat(void const* pointer);
/// A copy of the std::string object that `pointer` points at.
std::string voidToString(void const* pointer);

/// The text of a value by its tag of CPL::DataType: tags 0 and 18 as signed 16 bits, 1 signed
/// 32, 2 unsigned 16, 3 unsigned 32, 4 "true" or "false", 5, 11, 12 and 14 to 17 as a float, 7
/// as NUL-terminated bytes. The empty string for every other tag. Null throws for a tag that
/// has a text.
std::string valueToString(void const* pointer, std::int32_t tag);

/// A new value, the caller's, by its tag. Null for every tag that isn't listed, those that
/// valueToString alone knows included. Throws what the reader throws.
///
///     tag          reader                      release with
///     0            stringToInt16               delete static_cast<std::int16_t*>
///     1            stringToInt32               delete static_cast<std::int32_t*>
///     2            stringToUInt16              delete static_cast<std::uint16_t*>
///     3            stringToUInt32              delete static_cast<std::uint32_t*>
///     4            1 for exactly "true", or 0  delete static_cast<std::uint8_t*>
///     5, 8, 11, 12 stringToFloat               delete static_cast<float*>
///     7            the whole text              delete static_cast<std::string*>
///
/// Tag 7 is a std::string and tag 8 a 4-byte float here, unlike the values that messages own,
/// so no result may be handed to valueToString or to a message without regard to that.
void* stringToValue(std::string_view text, std::int32_t tag);

/// The numbers of a text of hexadecimal digit pairs. A last odd character is dropped, and a
/// pair that can't be read gives 0.
std::vector<std::uint8_t> hexStringToBytes(std::string_view text);

}  // namespace FrameDriver::Tools
