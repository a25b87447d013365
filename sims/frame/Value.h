#pragma once

#include "foundation/DataType.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

/// The frame simulator. Knows the frame's protocol and nothing of the driver.
namespace FrameSim {

using FrameDriver::CPL::DataType;

/// How values of a type are held; several types share a form.
enum class ValueForm { none, integer, boolean, real, text };

/// What the simulator knows of a type of value.
struct TypeInfo {
    DataType type;
    std::string_view name;
    ValueForm form;
    std::int64_t lowest;   ///< for the integer form: what the type can hold
    std::int64_t highest;  ///< likewise
};

/// The types in the order of their numbers; null for a number or name that is none of them.
TypeInfo const* findType(std::int32_t type);
TypeInfo const* findType(std::string_view name);
/// "UInt16" and so on; "type99" for a number that has no name.
std::string typeName(std::int32_t type);

/// One value of a parameter or of a list item's field. Integers and State are held in 64 bits,
/// the units in a 32-bit float, texts as bytes.
struct Value {
    DataType type = DataType::NoValue;
    std::variant<std::monostate, std::int64_t, bool, float, std::string> content;

    bool operator==(Value const&) const = default;

    static Value ofInteger(DataType type, std::int64_t number) { return {type, number}; }
    static Value ofBool(bool on) { return {DataType::Bool, on}; }
    static Value ofReal(DataType type, float number) { return {type, number}; }
    static Value ofText(std::string bytes) { return {DataType::String, std::move(bytes)}; }

    ValueForm form() const;
    /// The content; each is wrong to ask of another form.
    std::int64_t integer() const { return std::get<std::int64_t>(content); }
    bool boolean() const { return std::get<bool>(content); }
    float real() const { return std::get<float>(content); }
    std::string const& text() const { return std::get<std::string>(content); }
};

/// 0, false or the empty text; no value for a type that has none.
Value zeroValue(DataType type);

/// A type's range and, for a parameter, what it may hold of it. Texts have no range.
struct Range {
    std::optional<double> minimum;
    std::optional<double> maximum;
    std::optional<double> also;  ///< one value outside the two that is allowed, for "none"
};

/// `value`, moved to the nearer bound if it lies outside.
Value clamped(Value value, Range const& range);

/// Reads a value as it is typed or stands in a file. The whole text must be the value.
///
///     integer, State  decimal, or hexadecimal with "0x", within the type's range
///     Bool            true | false | 1 | 0
///     real forms      decimal, finite
///     String          the text as it is
std::optional<Value> readValue(DataType type, std::string_view text);

/// The value in the one form in which it is shown: integers in decimal, "true" or "false",
/// floats in the shortest form that reads back the same, texts quoted (see `quoted`). Empty for
/// no value.
std::string shownValue(Value const& value);

/// In double quotes; "\"" and "\\" for these two, "\n", "\r" and "\t" for these, "\xhh" for
/// every other byte that isn't printable ASCII.
std::string quoted(std::string_view bytes);

/// The bytes back out of that form; nothing if it isn't whole or an escape is none of these.
std::optional<std::string> unquoted(std::string_view text);

/// A device identifier as it is shown: eight lower-case hexadecimal digits.
std::string shownDevice(std::uint32_t did);
/// One to eight hexadecimal digits, "0x" ahead of them or not.
std::optional<std::uint32_t> readDevice(std::string_view text);

}  // namespace FrameSim
