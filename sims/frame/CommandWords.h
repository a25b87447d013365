#pragma once

#include "sims/frame/FrameModel.h"
#include "sims/frame/Value.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace FrameSim {

/// A command is wrong or can't be done. The text is the cause.
class CommandError : public std::runtime_error {
  public:
    explicit CommandError(std::string const& cause, std::size_t place = 0)
        : std::runtime_error(cause), offset(place) {}

    std::size_t offset;  ///< of what is wrong, in the text of the command
};

/// What is typed, taken off word by word. Each operation that takes something throws
/// `CommandError` if it isn't there or isn't of its kind; `name` is what the error calls it.
/// The text must outlive the words. Thread: one.
class CommandWords {
  public:
    explicit CommandWords(std::string_view typed) : text(typed) { skipBlanks(); }

    bool empty() const { return at == text.size(); }
    /// Whether this is the next word; it isn't taken.
    bool nextIs(std::string_view wanted) const;

    std::string_view word(std::string_view name);
    std::int64_t number(std::string_view name, std::int64_t lowest, std::int64_t highest);
    std::uint16_t number16(std::string_view name);
    std::uint32_t number32(std::string_view name);
    std::uint32_t device();
    ParameterKey parameter();
    ListKey list();
    bool onOrOff();
    /// One word, or a text in double quotes with its quotes and blanks.
    std::string_view wordOrQuoted(std::string_view name);
    /// Pairs of hexadecimal digits, to the end.
    std::string hexadecimal();
    /// All that is left.
    std::string_view tail();
    void expectEnd() const;

    /// Where the next word begins.
    std::size_t offset() const { return at; }
    /// Throws, for the word taken last.
    [[noreturn]] void fail(std::string const& cause) const;

  private:
    void skipBlanks();

    std::string_view text;
    std::size_t at = 0;
    std::size_t last = 0;  // where the word begins that was taken last
};

}  // namespace FrameSim
