#pragma once

#include "sims/panel/PanelRecord.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The lines that drive a panel. Words are divided by blanks and tabs:
///
///     line    = [ fid | wait | ":sleep" ms | ":state" [ pattern ] | ":compare" | ":quit"
///               | "#" comment ]
///     fid     = name { name "=" value } [ "@" widget ]
///     wait    = ":wait" what [ "within" ms ]
///     what    = ( "SID" | "TID" ) name [ value ] | "FID" name { name "=" value }
///
/// Any part of a word may stand in quotes, and may hold anything there; "\" begins an escape in
/// quotes: \" \\ \n \r \t, and \xHH for any byte. Outside of quotes "\" is a character like any
/// other. `ms` and `widget` are decimal numbers, up to 3600000 and 65535; without "within" a
/// wait lasts 2000 ms at most.
namespace PanelSim {

struct Raise {
    std::string name;
    FIDParameterList parameters;  ///< with the widget's number
};
struct Wait {
    Expectation expectation;
    std::chrono::milliseconds atMost{2000};
};
struct Sleep {
    std::chrono::milliseconds duration{};
};
struct ShowState {
    std::string pattern = "*";
};
/// With a fresh panel on the same frame.
struct Compare {};
struct Quit {};

using Command = std::variant<Raise, Wait, Sleep, ShowState, Compare, Quit>;

/// A line can't be read. `what` is "FILE:LINE:COLUMN: cause"; line and column count from 1.
class ScriptError : public std::runtime_error {
  public:
    ScriptError(std::string const& file, std::size_t line, std::size_t column,
                std::string const& cause);
};

/// One line without its end; nothing for a line without a command. `file` and `number` are for
/// the error. Throws ScriptError.
std::optional<Command> parseLine(std::string_view line, std::string const& file,
                                 std::size_t number);

/// A whole script. Throws ScriptError.
std::vector<Command> parseScript(std::string_view text, std::string const& file);

}  // namespace PanelSim
