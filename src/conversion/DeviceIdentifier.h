#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Device identifiers as text. An identifier is an unsigned 32-bit number: the encoding type in
/// its top byte, fields by that type in the lower 24 bits.
///
///     text  = "did=[EncodingType=" type { ", " field } closing
///     field = name "=" value
///
/// `type` is two lower-case hexadecimal digits, `value` lower-case hexadecimal without prefix or
/// padding. The two directions are not mirror images; see DeviceIdentifierTable.h.
/// Thread: any, no state.
namespace FrameDriver::Conversion {

/// Appends the text. A type without an encoding gives "undefined device id encoding type (" type
/// ")" instead, unpadded and without a group.
void appendDeviceId(std::string& out, std::uint32_t did);

/// The identifier in a text that holds the form. Validates nothing: a type without an encoding
/// gives 0 and one that can't be read 0xFF, a field that is absent or no number counts as 0. The
/// identifier is a sum, so that a value too large for its field runs over into the next, and a
/// negative one borrows from it.
std::uint32_t readDeviceId(std::string_view text);

}  // namespace FrameDriver::Conversion
