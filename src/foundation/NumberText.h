#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Numbers from and to text by the rules of standard text streams in the classic locale,
/// whatever locale the host has set, without a stream and without an allocation.
///
/// Reading: leading white space is skipped, an optional sign is taken, and reading stops at the
/// first character that can't continue the number; what follows is ignored. False, and `value`
/// untouched, for everything at which a stream sets its fail bit: no digits, "1e", "0x", "inf",
/// "nan", out of range. An unsigned read takes a sign and wraps, as streams do. Hexadecimal
/// reading takes an optional "0x".
///
///     integer = { space } [ "+" | "-" ] digit { digit } { any byte }
///
/// Printing: integers in the shortest decimal or lower-case hexadecimal form, floats with six
/// significant digits, no trailing zeros, scientific form for very large and small values.
///
///     float = { space } [ "+" | "-" ] mantissa [ ( "e" | "E" ) [ "+" | "-" ] digit { digit } ]
///             { any byte }
///     mantissa = digit { digit } [ "." { digit } ] | "." digit { digit }
///
/// A float that is too small for its type reads as zero with its sign. An "e" behind a mantissa
/// belongs to the number and needs its digits.
///
/// Thread: any.
namespace FrameDriver::Tools {

bool readInt16(std::string_view text, std::int16_t& value);
bool readUInt16(std::string_view text, std::uint16_t& value);
bool readInt32(std::string_view text, std::int32_t& value);
bool readUInt32(std::string_view text, std::uint32_t& value);
bool readHexInt32(std::string_view text, std::int32_t& value);
bool readHexUInt32(std::string_view text, std::uint32_t& value);
bool readFloat(std::string_view text, float& value);
bool readDouble(std::string_view text, double& value);

/// As atoi, with (int)strtol for what is out of range: 0 if there is no number.
std::int32_t readLeadingInt(std::string_view text);

/// The number, or `otherwise` where the read fails.
std::int32_t int32Or(std::string_view text, std::int32_t otherwise);
float floatOr(std::string_view text, float otherwise);

/// The integer part of a number, by defined means whatever the number: the nearest limit where
/// 64 bits can't hold it, and 0 for what is no number.
std::int64_t truncateToInt64(double value);

void appendInt32(std::string& out, std::int32_t value);
void appendUInt32(std::string& out, std::uint32_t value);
void appendInt64(std::string& out, std::int64_t value);
void appendHex32(std::string& out, std::uint32_t value);
void appendFloat(std::string& out, float value);
/// Fixed notation with `decimals` digits behind the point, 0 to 60 of them.
void appendFixed(std::string& out, float value, int decimals);

}  // namespace FrameDriver::Tools
