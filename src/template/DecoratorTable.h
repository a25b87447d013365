#pragma once

#include "template/SegmentDecorator.h"

#include <memory>
#include <span>
#include <string_view>

namespace FrameDriver::Template {

/// A decorator word: how it is written, what it says of itself, how it is made.
struct DecoratorRow {
    /// A word that begins with this makes the decorator.
    std::string_view keyword;
    /// The whole word as an author writes it, "width=<count>,<name>=<padding>" for example.
    std::string_view form;
    /// What the decorator prints of itself, which isn't always the keyword.
    std::string_view printed;
    /// The arguments that it keeps, "count (Int32), padding (character)" for example; empty if
    /// the keyword stands alone.
    std::string_view arguments;
    /// One line for an author.
    std::string_view explanation;
    /// Makes the decorator of a whole word (keyword included, the bars around it not). Throws
    /// what the reading of its arguments throws; see TemplateParser::parse.
    std::unique_ptr<SegmentDecorator> (*make)(std::string_view word);
};

/// All words in the order in which they are tried: the first keyword that a word begins with
/// decides. The rows live as long as the program.
std::span<DecoratorRow const> decoratorTable();

}  // namespace FrameDriver::Template
