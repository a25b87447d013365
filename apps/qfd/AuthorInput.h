#pragma once

#include "Command.h"
#include "template/ContextStore.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// What the dictionary authors' commands share.
namespace qfd {

/// Calls `each` for every text given, or, if none is, for every line of standard input, without
/// its newline; a last line without one counts. `line` counts from 1.
void forEachText(std::vector<std::string> const& texts,
                 std::function<void(std::string_view text, std::size_t line)> const& each);

/// The text of the exception that is being handled, whatever it is.
std::string currentExceptionText();

/// Puts "KEY=VALUE" pairs into the store. Throws InputError for one without "=".
void fillContext(FrameDriver::Template::ContextStore& store, std::vector<std::string> const& pairs);

/// A result on one line: a line feed as "\x0a", a backslash as "\x5c", all else as it is.
std::string onOneLine(std::string_view result);

/// The XML library, for as long as it lives. Throws InputError if it can't be started.
class XMLLibrary {
  public:
    XMLLibrary();
    ~XMLLibrary();
    XMLLibrary(XMLLibrary const&) = delete;
    XMLLibrary& operator=(XMLLibrary const&) = delete;
};

}  // namespace qfd
