#include "foundation/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <type_traits>

// A stream reads a number in two steps: it first accumulates the characters that can continue
// the number, and only then converts them. The two steps don't agree on everything, and the
// dictionaries have been written against the result: "1e" fails although "1" stands at its
// front, since the "e" has been accumulated and can't be converted; "0x" fails in hexadecimal,
// since the prefix has eaten the only digit. So the readers here keep both steps apart too.

namespace FrameDriver::Tools {
namespace {

// isspace of the classic locale; the function itself would ask the host's.
bool isSpace(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isSign(char character) { return character == '+' || character == '-'; }

char const* skipSpaces(char const* at, char const* end) {
    return std::find_if_not(at, end, isSpace);
}

char const* skipDigits(char const* at, char const* end) {
    return std::find_if_not(at, end, isDigit);
}

constexpr unsigned noDigit = 16;

unsigned digitValue(char character) {
    if (isDigit(character))
        return static_cast<unsigned>(character - '0');
    if (character >= 'a' && character <= 'f')
        return static_cast<unsigned>(character - 'a') + 10;
    if (character >= 'A' && character <= 'F')
        return static_cast<unsigned>(character - 'A') + 10;
    return noDigit;
}

// A "0x" goes before the digits; the zero in it doesn't count as one.
char const* skipHexPrefix(char const* at, char const* end) {
    bool const prefixed = end - at >= 2 && at[0] == '0' && (at[1] == 'x' || at[1] == 'X');
    return prefixed ? at + 2 : at;
}

/// What stands in the text: a sign and up to 64 bits of magnitude. Behind 64 bits the magnitude
/// stays at the limit, which is out of range for every target.
struct Integer {
    bool negative = false;
    bool hasDigits = false;
    std::uint64_t magnitude = 0;
};

template <unsigned base>
std::uint64_t withDigit(std::uint64_t magnitude, unsigned digit) {
    constexpr std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
    return magnitude > (limit - digit) / base ? limit : magnitude * base + digit;
}

template <unsigned base>
Integer scanInteger(std::string_view text) {
    char const* const end = text.data() + text.size();
    char const* at = skipSpaces(text.data(), end);
    Integer integer;
    if (at != end && isSign(*at))
        integer.negative = *at++ == '-';
    if constexpr (base == 16)
        at = skipHexPrefix(at, end);
    for (; at != end; ++at) {
        unsigned const digit = digitValue(*at);
        if (digit >= base)
            break;
        integer.hasDigits = true;
        integer.magnitude = withDigit<base>(integer.magnitude, digit);
    }
    return integer;
}

// An unsigned target takes a minus sign and wraps, as long as the magnitude itself fits.
template <typename Target>
std::uint64_t largestMagnitude(bool negative) {
    auto const limit = static_cast<std::uint64_t>(std::numeric_limits<Target>::max());
    return std::is_signed_v<Target> && negative ? limit + 1 : limit;
}

template <typename Target, unsigned base = 10>
bool readInteger(std::string_view text, Target& value) {
    Integer const integer = scanInteger<base>(text);
    if (!integer.hasDigits || integer.magnitude > largestMagnitude<Target>(integer.negative))
        return false;
    // Negation and narrowing of unsigned numbers wrap, so both keep the low bits.
    value = static_cast<Target>(integer.negative ? 0 - integer.magnitude : integer.magnitude);
    return true;
}

/// The characters that a stream accumulates for a floating point number, white space and a
/// plus sign gone.
///
///     accumulated = [ "-" ] { digit } [ "." { digit } ] [ ( "e" | "E" ) [ sign ] { digit } ]
///
/// Whether there are digits where there must be is for the conversion to say.
std::string_view accumulateFloat(std::string_view text) {
    char const* const end = text.data() + text.size();
    char const* begin = skipSpaces(text.data(), end);
    // One sign at most: "+-1" accumulates nothing.
    char const* const digits = begin != end && isSign(*begin) ? begin + 1 : begin;
    if (begin != end && *begin == '+')
        begin = digits;
    char const* at = skipDigits(digits, end);
    if (at != end && *at == '.')
        at = skipDigits(at + 1, end);
    if (at != end && (*at == 'e' || *at == 'E')) {
        ++at;
        if (at != end && isSign(*at))
            ++at;
        at = skipDigits(at, end);
    }
    return {begin, static_cast<std::size_t>(at - begin)};
}

// Exponents beyond this are clamped: far out of every range, and far from overflowing a sum
// with the length of a text.
constexpr std::int64_t exponentBound = std::int64_t{1} << 61;

std::int64_t readExponent(std::string_view digits) {
    Integer const integer = scanInteger<10>(digits);
    auto const magnitude = static_cast<std::int64_t>(
        std::min<std::uint64_t>(integer.magnitude, static_cast<std::uint64_t>(exponentBound)));
    return integer.negative ? -magnitude : magnitude;
}

/// Whether an accumulated number that is out of range is too small rather than too large. Its
/// first digit that isn't 0 tells: the place of that digit is either far ahead of the point or
/// far behind it.
bool isTooSmall(std::string_view number) {
    std::size_t const exponentAt = std::min(number.find_first_of("eE"), number.size());
    std::string_view const mantissa = number.substr(0, exponentAt);
    std::size_t const point = std::min(mantissa.find('.'), mantissa.size());
    std::size_t const leading = mantissa.find_first_of("123456789");
    auto const place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(leading);
    std::int64_t const exponent =
        exponentAt < number.size() ? readExponent(number.substr(exponentAt + 1)) : 0;
    return place + exponent < 0;
}

// A stream takes a number that is too small as zero, with its sign, and refuses one that is
// too large.
template <typename Float>
bool readFloating(std::string_view text, Float& value) {
    std::string_view const number = accumulateFloat(text);
    char const* const end = number.data() + number.size();
    Float result = 0;
    auto const [stop, error] = std::from_chars(number.data(), end, result);
    if (stop != end || error == std::errc::invalid_argument)
        return false;
    if (error == std::errc::result_out_of_range) {
        if (!isTooSmall(number))
            return false;
        result = number.front() == '-' ? -Float{0} : Float{0};
    }
    value = result;
    return true;
}

// What a stream prints a float with unless told otherwise.
constexpr int significantDigits = 6;

template <typename Number, typename... Form>
void append(std::string& out, Number value, Form... form) {
    // Room for the longest float in fixed notation with 60 decimals.
    std::array<char, 128> buffer;
    auto const [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, form...);
    if (error == std::errc())
        out.append(buffer.data(), end);
}

}  // namespace

bool readInt16(std::string_view text, std::int16_t& value) { return readInteger(text, value); }
bool readUInt16(std::string_view text, std::uint16_t& value) { return readInteger(text, value); }
bool readInt32(std::string_view text, std::int32_t& value) { return readInteger(text, value); }
bool readUInt32(std::string_view text, std::uint32_t& value) { return readInteger(text, value); }

bool readHexInt32(std::string_view text, std::int32_t& value) {
    return readInteger<std::int32_t, 16>(text, value);
}

bool readHexUInt32(std::string_view text, std::uint32_t& value) {
    return readInteger<std::uint32_t, 16>(text, value);
}

bool readFloat(std::string_view text, float& value) { return readFloating(text, value); }
bool readDouble(std::string_view text, double& value) { return readFloating(text, value); }

std::int32_t readLeadingInt(std::string_view text) {
    Integer const integer = scanInteger<10>(text);
    std::uint64_t const magnitude =
        std::min(integer.magnitude, largestMagnitude<std::int64_t>(integer.negative));
    return static_cast<std::int32_t>(integer.negative ? 0 - magnitude : magnitude);
}

std::int32_t int32Or(std::string_view text, std::int32_t otherwise) {
    readInt32(text, otherwise);
    return otherwise;
}

float floatOr(std::string_view text, float otherwise) {
    readFloat(text, otherwise);
    return otherwise;
}

std::int64_t truncateToInt64(double value) {
    // The largest 64-bit number has no double of its own; the next one up is the first that
    // doesn't fit.
    constexpr double bound = 9223372036854775808.0;
    if (std::isnan(value))
        return 0;
    if (value >= bound)
        return std::numeric_limits<std::int64_t>::max();
    if (value < -bound)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

void appendInt32(std::string& out, std::int32_t value) { append(out, value); }
void appendUInt32(std::string& out, std::uint32_t value) { append(out, value); }
void appendInt64(std::string& out, std::int64_t value) { append(out, value); }
void appendHex32(std::string& out, std::uint32_t value) { append(out, value, 16); }

void appendFloat(std::string& out, float value) {
    append(out, value, std::chars_format::general, significantDigits);
}

void appendFixed(std::string& out, float value, int decimals) {
    append(out, value, std::chars_format::fixed, decimals);
}

}  // namespace FrameDriver::Tools
