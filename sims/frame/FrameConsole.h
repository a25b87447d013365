#pragma once

#include "sims/frame/FrameServer.h"
#include "sims/frame/Line.h"

#include <functional>
#include <string>
#include <string_view>

namespace FrameSim {

/// The commands by which somebody at the frame changes things while panels are connected; "help"
/// lists them, and so does docs/simulator.md.
///
/// Each command is answered by lines: what was asked for, and at the end "ok command=NAME", or
/// "error reason=..." if it is wrong or can't be done. Nothing that is typed ends the program
/// but "quit".
///
/// Thread: one.
class FrameConsole {
  public:
    using Output = std::function<void(Line const&)>;

    FrameConsole(FrameServer& operated, Output lineOutput)
        : server(operated), output(std::move(lineOutput)) {}

    /// Does one line. Blank lines and lines that begin with "#" do nothing. False for "quit".
    bool execute(std::string_view line);

  private:
    struct Command;
    /// What is typed behind the command's name, taken off word by word.
    class Arguments;
    static Command const commands[];

    void set(Arguments& arguments);
    void get(Arguments& arguments);
    void list(Arguments& arguments);
    void event(Arguments& arguments);
    void cut(Arguments& arguments);
    void autoTransition(Arguments& arguments);
    void refuse(Arguments& arguments);
    void delay(Arguments& arguments);
    void freeze(Arguments& arguments);
    void thaw(Arguments& arguments);
    void disconnect(Arguments& arguments);
    void state(Arguments& arguments);
    void clients(Arguments& arguments);
    void help(Arguments& arguments);
    void quit(Arguments& arguments);

    void mixEffectsEvent(Arguments& arguments, std::int32_t eid);
    void showValue(ParameterKey key);
    void showAll(std::vector<Line> const& lines);

    FrameServer& server;
    Output output;
    bool goOn = true;
};

}  // namespace FrameSim
