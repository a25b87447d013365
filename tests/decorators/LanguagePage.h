#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Template {

/// A line of an example.
///
///     line = label text [ "=" text ]
///     text = '"' { character | "\xHH" | "\n" | '\"' | "\\" } '"'
struct ExampleLine {
    int number = 0;  // in the page, from 1
    std::string label;
    std::string text;
    std::string second;
};

/// The lines of one fenced block, each acting on what the ones before have set up:
///
///     context "KEY" = "TEXT"     the store holds this
///     word "WORD"                what stands behind "{@x|" and ahead of "}"
///     value "TEXT"               what x has captured
///     to "TEMPLATE"              a template to evaluate
///     from "TEMPLATE"            a template to match
///     text "TEXT"                what it is matched against; the captures go to `to`
///     gives "TEXT"               what the word or the `to` template results in
///     matches "yes" | "no"       whether it has the shape
///     captures "NAME" = "TEXT"   what a variable has captured
///     prints "TEXT"              what the word or the `to` template prints
///     stores "KEY" = "TEXT"      what the store holds afterwards
///     fails "TEXT"               the message with which the result, or the capture, fails
using Example = std::vector<ExampleLine>;

ExampleLine parseExampleLine(std::string_view line, int number);

/// Empty if all holds, else the first line that doesn't and what is so instead.
std::string run(Example const& example);

/// How many results the example shows of a word that begins with `word`.
int countResults(Example const& example, std::string_view word);

/// A page with examples in blocks fenced by "```example" and "```".
class LanguagePage {
  public:
    explicit LanguagePage(std::string const& path);

    std::vector<Example> const& examples() const { return blocks; }
    std::string const& text() const { return content; }

  private:
    std::vector<Example> blocks;
    std::string content;
};

}  // namespace FrameDriver::Template
