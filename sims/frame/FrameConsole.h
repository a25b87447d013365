#pragma once

#include "sims/frame/FrameActions.h"
#include "sims/frame/FrameServer.h"
#include "sims/frame/Line.h"

#include <functional>
#include <string>
#include <string_view>

namespace FrameSim {

/// The commands by which somebody at the frame changes things while panels are connected: the
/// actions of FrameActions.h and some that show what there is. "help" lists them, and so does
/// docs/simulator.md.
///
/// Each command is answered by lines: what was asked for, and at the end "ok command=NAME", or
/// "error reason=..." if it is wrong or can't be done. Nothing that is typed ends the program
/// but "quit".
///
/// Thread: one.
class FrameConsole {
  public:
    using Output = std::function<void(Line const&)>;

    /// `jsonLines` is what "dump --json" writes to; `lineOutput` if there is none.
    FrameConsole(FrameServer& operated, Output lineOutput, Output jsonLines = {})
        : server(operated),
          output(std::move(lineOutput)),
          jsonOutput(jsonLines ? std::move(jsonLines) : output) {}

    /// Does one line. Blank lines and lines that begin with "#" do nothing. False for "quit".
    bool execute(std::string_view line);

  private:
    struct Command;
    static Command const commands[];

    void run(std::string_view name, CommandWords& words);
    void get(CommandWords& words);
    void state(CommandWords& words);
    void clients(CommandWords& words);
    void dump(CommandWords& words);
    void crossed(CommandWords& words);
    void help(CommandWords& words);
    void quit(CommandWords& words);

    void showValue(ParameterKey key);
    void showAll(std::vector<Line> const& lines);

    FrameServer& server;
    Output output;
    Output jsonOutput;
    bool goOn = true;
};

}  // namespace FrameSim
