#pragma once

#include "sims/frame/Scenario.h"
#include "sims/time/TimeConsole.h"
#include "sims/time/TimeService.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace qfd {

struct FrameTimeOptions {
    bool absent = false;
    std::uint16_t port = 1506;
    bool portGiven = false;
    std::string rate = "59.94";
    double drift = 0;
    std::string lines = "few";
    std::uint64_t seed = 1;
};

/// Adds them to `qfd frame`. `options` must outlive the command line's reading.
void addFrameTimeOptions(CLI::App& command, FrameTimeOptions& options);

/// The field time service of `qfd frame`, with its part of the console. See docs/time-keeper.md.
class FrameTime {
  public:
    using Printer = void (*)(FrameSim::Line const&);

    FrameTime(FrameTimeOptions const& options, std::string const& address, Printer linePrinter);

    /// Takes the port, if there is to be a service. If the port is the one that nobody asked
    /// for and it is taken, the frame does without. Throws `FrameSim::StartError` for any other
    /// port that can't be had.
    void open();
    void start();
    void stop();
    /// Does a command of the field time. Throws `FrameSim::CommandError`. Thread: any, but not
    /// while `open` runs.
    void run(std::string_view command);

  private:
    FrameTimeOptions const wanted;
    Printer printer;
    std::unique_ptr<TimeSim::TimeService> service;  // nothing if there is to be none
    std::string absence;
};

/// A scenario's commands for the field time are found wrong before anything runs, as all others
/// are. Throws InputError.
void checkFieldTime(FrameSim::Scenario const& scenario);

}  // namespace qfd
