#pragma once

#include <string>
#include <vector>

namespace FrameDriver::XML {

/// The texts that a form's text stands for, in which ranges are written in round brackets:
///
///     range = "(" lower "-" upper ")" | "(0x" lower "-0x" upper ")"
///
/// A range is hexadecimal if the character two behind the "(" is "x". A decimal number is
/// printed without padding, a hexadecimal one in lower case and padded with "0" to the length of
/// the lower bound as written. Bounds count as unsigned 32-bit numbers; a lower one above the
/// upper one gives nothing. The range on the right varies fastest.
///
/// Where the next range is sought is odd, and kept because the dictionaries in use have been
/// written around it: behind a decimal range at the offset at which its "-" stood, so that a
/// range may be overlooked that follows without a gap ("(10-11)(1-2)"); behind a hexadecimal
/// one at the number of zeros that were padded, and nowhere once a number is longer than the
/// lower bound ("(0x8-0x10)" from "10" on).
///
/// This isn't RangeExpansion.h's notation. Cutting is positional as there, and failures are the
/// same: bounds that are no numbers throw IllegalArgumentException, by value in decimal and a
/// pointer to one in hexadecimal; one outside the text throws std::out_of_range ("invalid
/// string position"); an expansion that would not end, and a text that stands for more than
/// 2^20 others, throw IllegalArgumentException. Thread: any.
std::vector<std::string> expandForm(std::string text);

}  // namespace FrameDriver::XML
