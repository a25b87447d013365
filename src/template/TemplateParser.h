#pragma once

#include "template/TemplateString.h"

#include <string_view>

namespace FrameDriver::Template {

/// Reads the template language of the conversion dictionaries. Stateless; thread: any.
///
///     template   = { outer text | "{" token "}" }
///     token      = variable | literal text          outer text is a token too
///     variable   = ( "@" name | "$context:" template ) { "|" decorator }
///     decorator  = keyword [ arguments ]            see DecoratorTable.h
///
/// Braces are taken off and not told apart from outer text: outer text that begins with "@" or
/// "$" is a variable, and a group that begins with neither is literal. An unclosed "{" gives
/// its contents twice. A "}" outside a group is text. There is no escape character. A word that
/// fits nothing is ignored.
class TemplateParser {
  public:
    /// Throws std::out_of_range ("invalid string position") for an empty group and for a
    /// "$context" with nothing behind it, IllegalArgumentException for a decorator's argument
    /// that is no number, and a pointer to one for a mask that is none (the mask is read by
    /// Tools::hexStringToUInt32).
    static TemplateString parse(std::string_view text);
};

}  // namespace FrameDriver::Template
