#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

/// A group of a state file's line and its values; in an `ExpandedLine`, the one value chosen.
struct ChoiceGroup {
    std::int32_t index = 0;
    std::vector<std::string> values;
};

/// One combination of a line's choices.
struct ExpandedLine {
    std::string text;
    std::vector<ChoiceGroup> choices;  // in the order in which they were made
};

/// One line of a state file that stands for many: every combination of the choices of its groups.
///
///     group     = "[" n ":" element { "," element } "]"    a choice
///               | "[" n "]"                                the value chosen for group n
///     element   = text | lo "-" hi                         a range, both ends included
///
/// Groups may stand inside an element; the innermost are read first. Spaces around an element
/// vanish. An element with a "-" is always a range, whose bounds are read as `atoi` does, and one
/// that runs backwards gives nothing. An empty element is a value. Brackets that don't pair end
/// the reading, and the rest of the line stays as it is.
///
/// A value takes the place of every reference to its group, but at places that were found before
/// the first of them was replaced: with more than one reference, values must be as long as the
/// reference's own mark, or the text around is damaged. Kept: the files in use are written so.
///
/// Thread: any, one at a time. Throws std::out_of_range, "invalid string position", where such a
/// place lies behind the end of the text, and std::bad_alloc for a line that would take the panel's
/// memory: too many combinations, a range of that size, or a value that holds its own group.
class LineExpander {
  public:
    /// Three ranges of 100 values each are within the bound.
    static constexpr std::size_t mostTexts = std::size_t{1} << 20;

    explicit LineExpander(std::string text);

    /// At least one for a line without groups. Earlier groups vary slowest where no value holds a
    /// group of its own; a combination that is complete stands ahead of those still to be made.
    std::list<ExpandedLine> expand(std::size_t most = mostTexts) const;

    std::list<ChoiceGroup> groups;  ///< in the order in which they were found
    std::string line;               ///< with "{n}" for a choice and "<n>" for a reference
};
