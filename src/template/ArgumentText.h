#pragma once

#include <cstddef>
#include <string_view>

/// How the arguments of a decorator word are cut. The positions are part of the language: they
/// decide what happens to odd input. A search that finds nothing gives npos, npos + 1 is the
/// start of the word, and a length that comes out negative reaches to its end; so these never
/// fail, and "width=5" has a padding of "w".
namespace FrameDriver::Template {

/// Everything behind the first ":" of the word; the whole word if there is none.
std::string_view behindColon(std::string_view word);

/// Everything behind the first "=" of the word; the whole word if there is none.
std::string_view behindEquals(std::string_view word);

/// Goes through the labelled fields of a word from left to right:
///
///     word = keyword "=" first "," label "=" second "," label "=" third
///
/// The views live as long as the word.
class ArgumentFields {
  public:
    explicit ArgumentFields(std::string_view decoratorWord) : word(decoratorWord) {}

    /// From behind the first "=" to the first "," of the word, wherever that stands. Goes on at
    /// that comma.
    std::string_view firstToFirstComma();
    /// From behind the next "=" to the next "," behind that "=". Goes on at that comma.
    std::string_view nextToComma();
    /// Everything behind the next "=". Goes on behind that "=".
    std::string_view nextToEnd();

  private:
    std::size_t findEquals() const { return word.find('=', position); }
    std::string_view take(std::size_t equals, std::size_t comma);

    std::string_view word;
    std::size_t position = 0;
};

}  // namespace FrameDriver::Template
