#include "foundation/ValueConversions.h"

#include "foundation/DataType.h"
#include "foundation/Exceptions.h"
#include "foundation/NumberText.h"

#include <cstring>
#include <type_traits>

namespace FrameDriver::Tools {

namespace {

using ErrorManagement::Exception::IllegalArgumentException;

struct TypeName {
    std::int32_t tag;
    std::string_view name;
    bool isRead;
};

constexpr TypeName typeNames[] = {
    {CPL::Int16, "Int16", true},     {CPL::Int32, "Int32", true},
    {CPL::UInt16, "UInt16", true},   {CPL::UInt32, "UInt32", true},
    {CPL::Bool, "Boolean", true},    {CPL::Float, "Float", true},
    {CPL::String, "String", true},   {CPL::Degree, "Degree", false},
    {CPL::Percent, "Percent", true}, {CPL::ScreenUnit, "ScreenUnit", true},
};

template <class Value>
Value readOrThrow(bool (*read)(std::string_view, Value&), std::string_view text,
                  char const* message) {
    Value value{};
    if (!read(text, value))
        throw IllegalArgumentException(message);
    return value;
}

char firstCharacter(std::string_view text, char const* message) {
    auto const start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos)
        throw IllegalArgumentException(message);
    return text[start];
}

template <class Value>
std::string printed(void (*append)(std::string&, Value), std::type_identity_t<Value> value) {
    std::string text;
    append(text, value);
    return text;
}

// Values come out of network buffers too, where nothing is aligned.
template <class Value>
Value valueAt(void const* pointer, char const* message) {
    if (!pointer)
        throw IllegalArgumentException(message);
    Value value;
    std::memcpy(&value, pointer, sizeof value);
    return value;
}

std::string bytesUpToNul(void const* pointer) {
    if (!pointer)
        throw IllegalArgumentException("Unable to convert a void pointer into a string.");
    return static_cast<char const*>(pointer);
}

}  // namespace

std::string typeToName(std::int32_t tag) {
    for (auto const& row : typeNames) {
        if (row.tag == tag)
            return std::string(row.name);
    }
    return {};
}

std::int32_t nameToType(std::string_view name) {
    for (auto const& row : typeNames) {
        if (row.isRead && row.name == name)
            return row.tag;
    }
    return -1;
}

std::int8_t stringToByte(std::string_view text) {
    return static_cast<std::int8_t>(
        firstCharacter(text, "Unable to convert a string value into a Byte."));
}

std::uint8_t stringToUByte(std::string_view text) {
    return static_cast<std::uint8_t>(
        firstCharacter(text, "Unable to convert a string value into a UByte."));
}

std::int16_t stringToInt16(std::string_view text) {
    return readOrThrow(readInt16, text, "Unable to convert a string value into an Int16.");
}

std::uint16_t stringToUInt16(std::string_view text) {
    return readOrThrow(readUInt16, text, "Unable to convert a string value into an UInt16.");
}

std::int32_t stringToInt32(std::string_view text) {
    return readOrThrow(readInt32, text, "Unable to convert a string value into an Int32.");
}

std::uint32_t stringToUInt32(std::string_view text) {
    auto const narrow =
        readOrThrow(readInt16, text, "Unable to convert a string value into an UInt32.");
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(narrow));
}

float stringToFloat(std::string_view text) {
    return readOrThrow(readFloat, text, "Unable to convert a string value into a float.");
}

std::uint32_t hexStringToUInt32(std::string_view text) {
    std::uint32_t value = 0;
    if (!readHexUInt32(text, value))
        throw new IllegalArgumentException("Unable to convert a string value into a UInt32");
    return value;
}

// Printing into a string cannot fail, so the failures that streams could report don't exist.

std::string byteToString(std::int8_t value) { return std::string(1, static_cast<char>(value)); }

std::string ubyteToString(std::uint8_t value) { return std::string(1, static_cast<char>(value)); }

std::string int16ToString(std::int16_t value) { return printed(appendInt32, value); }

std::string uint16ToString(std::uint16_t value) { return printed(appendUInt32, value); }

std::string int32ToString(std::int32_t value) { return printed(appendInt32, value); }

std::string uint32ToString(std::uint32_t value) { return printed(appendUInt32, value); }

std::string floatToString(float value) { return printed(appendFloat, value); }

std::string int32ToHexString(std::int32_t value) {
    return printed(appendHex32, static_cast<std::uint32_t>(value));
}

std::string uint32ToHexString(std::uint32_t value) { return printed(appendHex32, value); }

std::string boolToString(bool value) { return value ? "true" : "false"; }

// Read as a byte: a buffer may hold any, and a bool other than 0 and 1 doesn't exist.
bool voidToBool(void const* pointer) {
    return valueAt<std::uint8_t>(pointer, "Unable to convert a void pointer into a bool.") != 0;
}

std::int8_t voidToByte(void const* pointer) {
    return valueAt<std::int8_t>(pointer, "Unable to convert a void pointer into a Byte.");
}

std::uint8_t voidToUByte(void const* pointer) {
    return valueAt<std::uint8_t>(pointer, "Unable to convert a void pointer into a UByte.");
}

std::int16_t voidToInt16(void const* pointer) {
    return valueAt<std::int16_t>(pointer, "Unable to convert a void pointer into an Int16.");
}

std::uint16_t voidToUInt16(void const* pointer) {
    return valueAt<std::uint16_t>(pointer, "Unable to convert a void pointer into an UInt16.");
}

std::int32_t voidToInt32(void const* pointer) {
    return valueAt<std::int32_t>(pointer, "Unable to convert a void pointer into an Int32.");
}

std::uint32_t voidToUInt32(void const* pointer) {
    return valueAt<std::uint32_t>(pointer, "Unable to convert a void pointer into an UInt32.");
}

float voidToFloat(void const* pointer) {
    return valueAt<float>(pointer, "Unable to convert a void pointer into a float.");
}

std::string voidToString(void const* pointer) {
    if (!pointer)
        throw IllegalArgumentException("Unable to convert a void pointer into a string.");
    return *static_cast<std::string const*>(pointer);
}

std::string valueToString(void const* pointer, std::int32_t tag) {
    switch (tag) {
    case CPL::Int16:
    case CPL::State:
        return int16ToString(voidToInt16(pointer));
    case CPL::Int32:
        return int32ToString(voidToInt32(pointer));
    case CPL::UInt16:
        return uint16ToString(voidToUInt16(pointer));
    case CPL::UInt32:
        return uint32ToString(voidToUInt32(pointer));
    case CPL::Bool:
        return boolToString(voidToBool(pointer));
    case CPL::Float:
    case CPL::Clock:
    case CPL::Degree:
    case CPL::Percent:
    case CPL::Revolution:
    case CPL::ScreenUnit:
    case CPL::SPercent:
        return floatToString(voidToFloat(pointer));
    case CPL::String:
        return bytesUpToNul(pointer);
    default:
        return {};
    }
}

void* stringToValue(std::string_view text, std::int32_t tag) {
    switch (tag) {
    case CPL::Int16:
        return new std::int16_t(stringToInt16(text));
    case CPL::Int32:
        return new std::int32_t(stringToInt32(text));
    case CPL::UInt16:
        return new std::uint16_t(stringToUInt16(text));
    case CPL::UInt32:
        return new std::uint32_t(stringToUInt32(text));
    case CPL::Bool:
        return new std::uint8_t(text == "true");
    case CPL::Float:
    case CPL::Double:
    case CPL::Clock:
    case CPL::Degree:
        return new float(stringToFloat(text));
    case CPL::String:
        return new std::string(text);
    default:
        return nullptr;
    }
}

std::vector<std::uint8_t> hexStringToBytes(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 2);
    for (std::size_t start = 0; start + 2 <= text.size(); start += 2) {
        std::uint32_t number = 0;
        readHexUInt32(text.substr(start, 2), number);
        bytes.push_back(static_cast<std::uint8_t>(number));
    }
    return bytes;
}

}  // namespace FrameDriver::Tools
