#include "FrameTime.h"

#include "Command.h"
#include "sims/frame/CommandWords.h"
#include "sims/frame/StartError.h"

#include <CLI/CLI.hpp>

#include <limits>

namespace qfd {
namespace {

std::string checkedRate(std::string const& text) {
    return TimeSim::fieldPeriod(text) ? "" : "the field rate must be a number from 1 to 1000";
}

TimeSim::TimeServiceOptions serviceOptions(FrameTimeOptions const& wanted,
                                           std::string const& address, FrameTime::Printer printer) {
    auto const now = TimeSim::steadyNow();
    // The frame's clock shows the machine's own time, so that a panel on the same machine can
    // see at a glance how far it is off.
    TimeSim::FieldClock clock(TimeSim::fieldPeriod(wanted.rate).value(), now, now);
    clock.setDrift(now, wanted.drift);
    TimeSim::TimeServiceOptions service;
    service.address = address;
    service.port = wanted.port;
    service.keeper = TimeSim::TimeKeeper(clock, wanted.seed);
    service.telling = TimeSim::readTelling(wanted.lines).value();
    service.printer = printer;
    service.recordLimit = 0;
    return service;
}

}  // namespace

void addFrameTimeOptions(CLI::App& command, FrameTimeOptions& options) {
    auto* const absent = command.add_flag("--no-time", options.absent, "Have no field time");
    command
        .add_option_function<std::uint16_t>(
            "--time-port",
            [&options](std::uint16_t port) {
                options.port = port;
                options.portGiven = true;
            },
            "UDP port for field time; 0 takes a free one [1506, or none if that is taken]")
        ->type_name("PORT")
        ->check(CLI::Range(0, 65535))
        ->excludes(absent);
    command.add_option("--field-rate", options.rate, "Fields a second: 59.94, 50, 60, 29.97 ...")
        ->type_name("HZ")
        ->check(checkedRate)
        ->capture_default_str();
    command.add_option("--drift", options.drift, "By how much the field clock runs fast")
        ->type_name("PPM")
        ->check(CLI::Range(-100000.0, 100000.0))
        ->capture_default_str();
    command.add_option("--time-lines", options.lines, "How much of the field time is printed")
        ->type_name("none|few|all")
        ->check(CLI::IsMember({"none", "few", "all"}))
        ->capture_default_str();
    command.add_option("--time-seed", options.seed, "What decides the field time's faults")
        ->type_name("NUMBER")
        ->check(CLI::Range(std::int64_t{0}, std::numeric_limits<std::int64_t>::max()))
        ->capture_default_str();
}

FrameTime::FrameTime(FrameTimeOptions const& options, std::string const& address,
                     Printer linePrinter)
    : wanted(options), printer(linePrinter) {
    if (!wanted.absent) {
        service = std::make_unique<TimeSim::TimeService>(serviceOptions(wanted, address, printer));
    }
}

void FrameTime::open() {
    try {
        if (service) {
            service->open();
        }
    } catch (FrameSim::StartError const& error) {
        if (wanted.portGiven) {
            throw;
        }
        absence = error.what();
        service.reset();
    }
}

void FrameTime::start() {
    if (service) {
        service->start();
    } else if (!absence.empty()) {
        printer(FrameSim::Line{.what = "time-absent"}.add("reason", absence));
    }
}

void FrameTime::stop() {
    if (service) {
        service->stop();
    }
}

void FrameTime::run(std::string_view command) {
    if (!service) {
        throw FrameSim::CommandError("this frame has no field time");
    }
    TimeSim::TimeConsole(*service, printer).run(command);
}

void checkFieldTime(FrameSim::Scenario const& scenario) {
    constexpr std::string_view word = "time ";
    for (auto const& step : scenario.steps()) {
        try {
            if (step.text.starts_with(word)) {
                TimeSim::checkTimeCommand(std::string_view(step.text).substr(word.size()));
            }
        } catch (FrameSim::CommandError const& error) {
            throw InputError(scenario.name() + ":" + std::to_string(step.line) +
                             ": time: " + error.what());
        }
    }
}

}  // namespace qfd
