#include "sims/frame/Value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace FrameSim {
namespace {

template <typename T>
constexpr TypeInfo integerType(DataType type, std::string_view name) {
    return {type, name, ValueForm::integer, std::numeric_limits<T>::min(),
            std::numeric_limits<T>::max()};
}

constexpr TypeInfo otherType(DataType type, std::string_view name, ValueForm form) {
    return {type, name, form, 0, 0};
}

// "Double" is missing on purpose: the client library has no way to send one.
constexpr std::array types{
    integerType<std::int16_t>(DataType::Int16, "Int16"),
    integerType<std::int32_t>(DataType::Int32, "Int32"),
    integerType<std::uint16_t>(DataType::UInt16, "UInt16"),
    integerType<std::uint32_t>(DataType::UInt32, "UInt32"),
    otherType(DataType::Bool, "Bool", ValueForm::boolean),
    otherType(DataType::Float, "Float", ValueForm::real),
    otherType(DataType::String, "String", ValueForm::text),
    otherType(DataType::Clock, "Clock", ValueForm::real),
    otherType(DataType::Degree, "Degree", ValueForm::real),
    otherType(DataType::Percent, "Percent", ValueForm::real),
    otherType(DataType::Revolution, "Revolution", ValueForm::real),
    otherType(DataType::ScreenUnit, "ScreenUnit", ValueForm::real),
    otherType(DataType::SPercent, "SPercent", ValueForm::real),
    integerType<std::uint16_t>(DataType::State, "State"),
};

template <typename Number, typename... Format>
std::optional<Number> wholeNumber(std::string_view text, Format... format) {
    Number number{};
    auto const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, number, format...);
    if (result.ec != std::errc() || result.ptr != end) {
        return std::nullopt;
    }
    return number;
}

std::optional<Value> readInteger(TypeInfo const& type, std::string_view text) {
    bool const hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    auto const number = hexadecimal ? wholeNumber<std::int64_t>(text.substr(2), 16)
                                    : wholeNumber<std::int64_t>(text, 10);
    if (!number || *number < type.lowest || *number > type.highest) {
        return std::nullopt;
    }
    return Value::ofInteger(type.type, *number);
}

std::optional<Value> readBool(std::string_view text) {
    if (text == "true" || text == "1") {
        return Value::ofBool(true);
    }
    if (text == "false" || text == "0") {
        return Value::ofBool(false);
    }
    return std::nullopt;
}

std::optional<Value> readReal(DataType type, std::string_view text) {
    auto const number = wholeNumber<float>(text, std::chars_format::general);
    if (!number || !std::isfinite(*number)) {
        return std::nullopt;
    }
    return Value::ofReal(type, *number);
}

template <typename Number>
std::string shortest(Number number) {
    std::array<char, 32> digits{};
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

double clampedNumber(double number, Range const& range) {
    if (range.also && number == *range.also) {
        return number;
    }
    if (range.maximum) {
        number = std::min(number, *range.maximum);
    }
    if (range.minimum) {
        number = std::max(number, *range.minimum);
    }
    return number;
}

/// The letter behind the backslash, or 0 where the byte has no short form.
char escapeLetter(char byte) {
    constexpr std::string_view bytes = "\"\\\n\r\t";
    constexpr std::string_view letters = "\"\\nrt";
    auto const at = bytes.find(byte);
    return at == std::string_view::npos ? '\0' : letters[at];
}

constexpr std::string_view hexDigits = "0123456789abcdef";

/// The byte that an escape stands for, taken off the front of `rest` behind its backslash.
std::optional<char> takeEscape(std::string_view& rest) {
    constexpr std::string_view letters = "\"\\nrt";
    constexpr std::string_view bytes = "\"\\\n\r\t";
    if (rest.starts_with('x')) {
        auto const code = wholeNumber<std::uint8_t>(rest.substr(1, 2), 16);
        if (rest.size() < 3 || !code) {
            return std::nullopt;
        }
        rest.remove_prefix(3);
        return static_cast<char>(*code);
    }
    auto const at = rest.empty() ? std::string_view::npos : letters.find(rest.front());
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    rest.remove_prefix(1);
    return bytes[at];
}

}  // namespace

TypeInfo const* findType(std::int32_t type) {
    auto const at = std::find_if(types.begin(), types.end(),
                                 [type](TypeInfo const& info) { return info.type == type; });
    return at == types.end() ? nullptr : &*at;
}

TypeInfo const* findType(std::string_view name) {
    auto const at = std::find_if(types.begin(), types.end(),
                                 [name](TypeInfo const& info) { return info.name == name; });
    return at == types.end() ? nullptr : &*at;
}

std::string typeName(std::int32_t type) {
    auto const* info = findType(type);
    return info ? std::string(info->name) : "type" + shortest(type);
}

ValueForm Value::form() const {
    constexpr std::array forms{ValueForm::none, ValueForm::integer, ValueForm::boolean,
                               ValueForm::real, ValueForm::text};
    return forms[content.index()];
}

Value zeroValue(DataType type) {
    auto const* info = findType(type);
    switch (info ? info->form : ValueForm::none) {
    case ValueForm::integer:
        return Value::ofInteger(type, 0);
    case ValueForm::boolean:
        return Value::ofBool(false);
    case ValueForm::real:
        return Value::ofReal(type, 0);
    case ValueForm::text:
        return Value::ofText({});
    case ValueForm::none:
        break;
    }
    return {};
}

Value clamped(Value value, Range const& range) {
    if (auto* const number = std::get_if<std::int64_t>(&value.content)) {
        *number = static_cast<std::int64_t>(clampedNumber(static_cast<double>(*number), range));
    } else if (auto* const real = std::get_if<float>(&value.content)) {
        *real = static_cast<float>(clampedNumber(static_cast<double>(*real), range));
    }
    return value;
}

std::optional<Value> readValue(DataType type, std::string_view text) {
    auto const* info = findType(type);
    switch (info ? info->form : ValueForm::none) {
    case ValueForm::integer:
        return readInteger(*info, text);
    case ValueForm::boolean:
        return readBool(text);
    case ValueForm::real:
        return readReal(type, text);
    case ValueForm::text:
        return Value::ofText(std::string(text));
    case ValueForm::none:
        break;
    }
    return std::nullopt;
}

std::string shownValue(Value const& value) {
    switch (value.form()) {
    case ValueForm::integer:
        return shortest(value.integer());
    case ValueForm::boolean:
        return value.boolean() ? "true" : "false";
    case ValueForm::real:
        return shortest(value.real());
    case ValueForm::text:
        return quoted(value.text());
    case ValueForm::none:
        break;
    }
    return {};
}

std::string quoted(std::string_view bytes) {
    std::string out = "\"";
    for (char const byte : bytes) {
        auto const code = static_cast<unsigned char>(byte);
        if (char const letter = escapeLetter(byte)) {
            out.append({'\\', letter});
        } else if (code >= 0x20 && code < 0x7f) {
            out.push_back(byte);
        } else {
            out.append({'\\', 'x', hexDigits[code >> 4U], hexDigits[code & 0xfU]});
        }
    }
    out.push_back('"');
    return out;
}

std::optional<std::string> unquoted(std::string_view text) {
    if (text.size() < 2 || text.front() != '"' || text.back() != '"') {
        return std::nullopt;
    }
    std::string bytes;
    std::string_view rest = text.substr(1, text.size() - 2);
    while (!rest.empty()) {
        char const byte = rest.front();
        rest.remove_prefix(1);
        auto const meant = byte == '\\' ? takeEscape(rest) : std::optional(byte);
        if (!meant || byte == '"') {
            return std::nullopt;
        }
        bytes.push_back(*meant);
    }
    return bytes;
}

std::string shownDevice(std::uint32_t did) {
    std::string out(8, '0');
    for (std::size_t i = out.size(); i-- > 0; did >>= 4U) {
        out[i] = hexDigits[did & 0xfU];
    }
    return out;
}

std::optional<std::uint32_t> readDevice(std::string_view text) {
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
    }
    return text.size() > 8 ? std::nullopt : wholeNumber<std::uint32_t>(text, 16);
}

}  // namespace FrameSim
