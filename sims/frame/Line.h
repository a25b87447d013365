#pragma once

#include "sims/frame/Value.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace FrameSim {

/// A word of a line that needs no quotes: a device identifier, a type, an address.
struct Word {
    std::string text;
    bool operator==(Word const&) const = default;
};

struct LineField {
    using Content = std::variant<std::int64_t, bool, float, std::string, Word>;
    std::string name;
    Content content;
    bool operator==(LineField const&) const = default;
};

enum class Direction { note, received, sent };

/// One thing that the simulator tells: something received, sent, or come to pass.
///
///     line      = [ "#" CLIENT " " [ direction " " ] ] what { " " name "=" value }
///     direction = "<" received | ">" sent
///     name      = a word, or quoted if it holds a blank
///     value     = a decimal number | "true" | "false" | a quoted text | a word
///
/// The fields of each kind of line are on the page docs/simulator.md.
struct Line {
    std::uint32_t client = 0;  ///< counts from 1; 0 if the line is about none
    Direction direction = Direction::note;
    std::string what;
    std::vector<LineField> fields = {};

    bool operator==(Line const&) const = default;

    Line& add(std::string_view name, LineField::Content content) &;
    Line&& add(std::string_view name, LineField::Content content) &&;
    Line& number(std::string_view name, std::int64_t value) &;
    Line& device(std::uint32_t did) &;
    /// "type" and "value".
    Line& value(Value const& value) &;

    std::string text() const;
};

/// A value as a line holds it; no value becomes an empty word.
LineField::Content lineContent(Value const& value);

}  // namespace FrameSim
