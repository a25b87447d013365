#pragma once

#include <cstddef>
#include <list>
#include <string>

/// The compact notation of the subscription list, the FID registration list and the monkey
/// tests: one text with ranges in brackets stands for many.
///
///     range = open [ "0x" ] lower "-" [ "0x" ] upper close
///
/// The result is in the numeric order of the bounds, the first range varying slowest; a lower
/// bound above the upper one gives nothing. Ranges behind the first are read by expandRange.
/// The conversion dictionaries have a notation of their own, which differs (DictionaryRange.h).
///
/// Cutting is positional, with what that does to odd texts: without a "-" the bounds are cut
/// from the text's start, and what follows a bound's digits is ignored.
///
/// Bounds that are no numbers throw what the conversions throw: IllegalArgumentException by
/// value in decimal, a pointer to one in hexadecimal. A bound outside the text throws
/// std::out_of_range ("invalid string position"). A range that is never closed, and a text that
/// stands for more than 2^20 others, throw IllegalArgumentException.
///
/// Thread: any.
namespace FrameDriver::XML {

/// Hexadecimal if the first bracket at or behind `position` is followed by a character and "x",
/// otherwise decimal. A text without a bracket is itself the single result.
std::list<std::string> expandRange(std::string const& text, char open, char close,
                                   std::size_t position);

/// The first range in hexadecimal, padded with "0" to the length of the lower bound as written.
/// "0x" falls away, and must stand at both bounds or at none.
std::list<std::string> expandHexRange(std::string const& text, char open, char close,
                                      std::size_t position);

/// The first range in decimal, with sign and without padding.
std::list<std::string> expandDecimalRange(std::string const& text, char open, char close,
                                          std::size_t position);

}  // namespace FrameDriver::XML
