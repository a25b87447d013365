#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

/// What all subcommands print, and how they read their inputs, in one place. Texts are bytes.
namespace qfd {

/// Bytes for a JSON string: the byte 0x80 to 0xff becomes the character U+0080 to U+00FF, all
/// others are themselves.
std::string widened(std::string_view bytes);
/// Back again. A character above U+00FF becomes "?".
std::string narrowed(std::string_view utf8);

/// `value` on one line in pure ASCII, without blanks, "\u0092" for the closing byte. Strings
/// inside must be `widened`.
std::string jsonLine(nlohmann::ordered_json const& value);

/// For the eye, and still exact: printable ASCII as it is, "\\" for a backslash, "\n", "\r" and
/// "\t" for these, "\xHH" in lower case for every other byte.
std::string escaped(std::string_view bytes);

/// One whole line to standard output, its newline added, flushed at once. Thread: any; lines
/// of several threads don't mix.
void printLine(std::string_view line);

/// One whole line to standard error: "qfd SUBCOMMAND: text".
void printError(std::string_view subcommand, std::string_view text);

/// All bytes of a file, or of standard input for "-". Throws `InputError`: "cannot read 'PATH':
/// the system's reason".
std::string readInput(std::string const& path);

}  // namespace qfd
