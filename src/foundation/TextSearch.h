#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Tools {

/// `text.substr(start, length)` with one difference: a `start` behind the end throws
/// std::out_of_range with exactly the text "invalid string position", which hosts and logs
/// know. All positional readers of the driver cut through here; a search that found nothing
/// gives npos, npos + 1 is 0, and a wrapped length reaches to the end.
std::string_view cut(std::string_view text, std::size_t start,
                     std::size_t length = std::string_view::npos);

/// Throws that exception.
[[noreturn]] void throwInvalidPosition();

/// The first character at or after `position` that is any member of `characters`, or npos.
std::size_t findAnyOf(std::string_view text, std::string_view characters, std::size_t position = 0);

/// Cuts a text at every character that is a member of a set; empty pieces are dropped, so
/// delimiters in a row, ahead and behind vanish. For a loop without an allocation:
///
///     for (Pieces pieces(text, ","); pieces.next(piece);) ...
///
/// The pieces are views of the text.
class Pieces {
  public:
    Pieces(std::string_view text, std::string_view delimiterSet)
        : rest(text), delimiters(delimiterSet) {}

    /// False, and `piece` untouched, behind the last one.
    bool next(std::string_view& piece);
    /// What no call has looked at yet: what stands behind the last piece and its delimiter.
    std::string_view remainder() const { return rest; }

  private:
    std::string_view rest;
    std::string_view delimiters;
};

/// All pieces of `Pieces` at once. `delimiters` is a set of characters and not a sequence: a
/// split at "=>" cuts at every "=" and at every ">" alike.
std::vector<std::string_view> split(std::string_view text, std::string_view delimiters);

}  // namespace FrameDriver::Tools
