#pragma once

#include "sims/frame/FrameActions.h"
#include "sims/frame/Happening.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace FrameSim {

/// A scenario file can't be used. The text has three lines, as that of a `ModelError`:
/// "FILE:LINE:COLUMN: CAUSE", the line of the file, and a caret below the place.
class ScenarioError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// What a line of a scenario waits for.
struct Trigger {
    enum class Kind {
        at,      ///< `time` after the scenario's beginning
        every,   ///< each time that `time` has passed
        then,    ///< `time` after the line above was done
        after,   ///< the `count`th happening of the kind, since the scenario's beginning
        when,    ///< the first happening of the kind with that id, and that device if given
        client,  ///< the happening of the kind by the panel number `count`
    };
    Kind kind = Kind::at;
    std::chrono::milliseconds time{0};
    Happening::Kind happening = Happening::Kind::none;  ///< `none` is any request
    std::uint64_t count = 0;
    std::int32_t id = 0;
    std::optional<std::uint32_t> did = {};
};

/// A script of faults: what is to happen at the frame, and when.
///
///     file     = { [ line ] "\n" }         blank lines and those that begin with "#" are nothing
///     line     = trigger " " action        an action of FrameActions.h
///     trigger  = ( "at" | "every" | "then" ) " " time
///              | "after" " " N " " ( "connects" | "hellos" | "sets" | "events" | "listsets"
///                                  | "subscribes" | "cancels" | "pings" | "closes" | "requests" )
///              | "when" " " ( "set" | "event" | "listset" | "subscribe" ) " " ID [ " " DID ]
///              | "on" " " ( "connect" | "hello" | "close" ) " " CLIENT
///     time     = N ( "ms" | "s" )          up to a day; "every" at least 1 ms
///
/// A DID of a trigger has all its eight hexadecimal digits. "then" after an "every" counts from
/// each time. Every line but "every" is done once. Where an action has a CLIENT, "this" is the
/// panel that has pulled the trigger of its line, or of the line that a "then" belongs to.
class Scenario {
  public:
    struct Step {
        std::size_t line;
        Trigger trigger;
        std::string text;  ///< of the action
        Action action;
    };

    /// Reads a script. `fileName` is what errors call it. Throws `ScenarioError`.
    Scenario(std::string const& fileName, std::string_view content);
    /// The same, from a file. What can't be read at all is "PATH: the system's reason".
    static Scenario readFile(std::string const& path);

    std::string const& name() const { return file; }
    std::vector<Step> const& steps() const { return all; }

  private:
    std::string file;
    std::vector<Step> all;
};

/// Carries a scenario out. Thread: one.
class ScenarioPlayer {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;
    /// Carries out a step whose time has come, for a panel or none (0).
    using Run = std::function<void(Scenario::Step const&, std::uint32_t client)>;

    ScenarioPlayer(Scenario script, Run runStep, TimePoint now);

    void notice(Happening const& what, TimePoint now);
    /// Does what is due.
    void pass(TimePoint now);
    std::optional<TimePoint> nextDue() const;
    std::string const& name() const { return scenario.name(); }

  private:
    struct State {
        std::optional<TimePoint> due;
        std::uint32_t client = 0;
        std::uint64_t count = 0;
        bool done = false;
    };

    bool isMet(Scenario::Step const& step, State& state, Happening const& what) const;
    void execute(std::size_t index, std::uint32_t client, TimePoint now);

    Scenario scenario;
    Run run;
    std::vector<State> states;  // of the steps
};

}  // namespace FrameSim
