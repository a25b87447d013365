#include "sims/panel/PanelRunner.h"

#include "foundation/Exceptions.h"

#include <exception>
#include <memory>
#include <thread>
#include <utility>
#include <variant>

namespace PanelSim {
namespace {

constexpr std::size_t mostShown = 20;  // of what came in place of what was waited for

using FrameDriver::ErrorManagement::Exception::Exception;

/// What it shows, or that it shows nothing.
std::string presentState(PanelRecord const& record, Expectation const& expectation) {
    if (expectation.kind == Heard::fid) {
        return "it didn't come";
    }
    auto const value = expectation.kind == Heard::sid ? record.sid(expectation.name)
                                                      : record.tid(expectation.name);
    return value ? "it is " + *value : "it was never shown";
}

/// The text of the exception that is being handled.
std::string caughtText() {
    try {
        throw;
    } catch (std::exception const& error) {
        return error.what();
    } catch (Exception* thrown) {  // one of the driver's failures is thrown so
        std::unique_ptr<Exception> const error(thrown);
        return error->getMessage();
    } catch (...) {
        return "an exception of an unknown kind";
    }
}

}  // namespace

PanelRunner::PanelRunner(PanelRecord& panelRecord, Deliver deliverFID, MakeComparison comparison,
                         Output printers)
    : record(panelRecord),
      deliver(std::move(deliverFID)),
      makeComparison(std::move(comparison)),
      output(std::move(printers)),
      heardBefore(panelRecord.count()) {}

PanelRunner::Outcome PanelRunner::run(Command const& command) {
    return std::visit([this](auto const& one) { return doCommand(one); }, command);
}

PanelRunner::Outcome PanelRunner::doCommand(Raise const& raise) {
    try {
        deliver(raise.name, raise.parameters);
    } catch (...) {
        good = false;
        output.exception(caughtText());
    }
    return Outcome::goOn;
}

PanelRunner::Outcome PanelRunner::doCommand(Wait const& wait) {
    if (!record.wait(wait.expectation, wait.atMost)) {
        good = false;
        complainOf(wait);
        return Outcome::failed;
    }
    heardBefore = record.count();
    return Outcome::goOn;
}

PanelRunner::Outcome PanelRunner::doCommand(Sleep const& sleep) {
    std::this_thread::sleep_for(sleep.duration);
    return Outcome::goOn;
}

PanelRunner::Outcome PanelRunner::doCommand(ShowState const& show) {
    for (auto const& event : record.state(show.pattern)) {
        output.state(event);
    }
    return Outcome::goOn;
}

PanelRunner::Outcome PanelRunner::doCommand(Compare const&) {
    auto const comparison = makeComparison();
    good = good && comparison.good();
    if (!comparison.trouble.empty()) {
        output.complaint("nothing to compare with: " + comparison.trouble);
    }
    for (auto const& difference : comparison.found) {
        output.difference(difference);
    }
    return Outcome::goOn;
}

PanelRunner::Outcome PanelRunner::doCommand(Quit const&) { return Outcome::quit; }

void PanelRunner::complainOf(Wait const& wait) const {
    output.complaint("waited " + std::to_string(wait.atMost.count()) + " ms for " +
                     shown(wait.expectation) + ": " + presentState(record, wait.expectation));
    auto const came = record.history(heardBefore);
    std::size_t const skipped = came.size() > mostShown ? came.size() - mostShown : 0;
    if (came.empty()) {
        output.complaint("since the last wait came nothing");
    }
    if (skipped > 0) {
        output.complaint("since the last wait came " + std::to_string(skipped) + " others, and");
    }
    for (std::size_t i = skipped; i < came.size(); ++i) {
        output.complaint("since the last wait came " + shown(came[i]));
    }
}

}  // namespace PanelSim
