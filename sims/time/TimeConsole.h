#pragma once

#include "sims/frame/Line.h"
#include "sims/time/TimeService.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace TimeSim {

/// "none", "few", "all".
std::optional<Telling> readTelling(std::string_view text);

/// The commands by which somebody at the frame changes its field clock and spoils its field time
/// service, without the word "time" that stands before them on the frame's console and in a
/// scenario. "help" lists them, and so does docs/time-keeper.md.
///
/// Thread: one.
class TimeConsole {
  public:
    using Output = std::function<void(FrameSim::Line const&)>;

    TimeConsole(TimeService& operated, Output lineOutput)
        : service(operated), output(std::move(lineOutput)) {}

    /// Does a command. Throws `FrameSim::CommandError`, "NAME: CAUSE", and nothing has happened.
    void run(std::string_view line);

  private:
    struct Command;
    /// What is typed behind the command's name, taken off word by word.
    class Arguments;
    static Command const commands[];

    void on(Arguments& arguments);
    void off(Arguments& arguments);
    void silent(Arguments& arguments);
    void rate(Arguments& arguments);
    void period(Arguments& arguments);
    void drift(Arguments& arguments);
    void shift(Arguments& arguments);
    void restart(Arguments& arguments);
    void wander(Arguments& arguments);
    void stampError(Arguments& arguments);
    void delay(Arguments& arguments);
    void chance(Arguments& arguments);
    void next(Arguments& arguments);
    void stale(Arguments& arguments);
    void seed(Arguments& arguments);
    void good(Arguments& arguments);
    void show(Arguments& arguments);
    void tell(Arguments& arguments);
    void help(Arguments& arguments);

    /// `TimeService::operate`, for changes that don't care what time it is.
    void change(std::function<void(TimeKeeper&)> const& how);

    TimeService& service;
    Output output;
};

/// Throws what `TimeConsole::run` would throw, and changes nothing.
void checkTimeCommand(std::string_view line);

}  // namespace TimeSim
