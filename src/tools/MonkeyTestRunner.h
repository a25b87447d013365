#pragma once

#include "foundation/Clock.h"
#include "foundation/FIDHandler.h"
#include "foundation/SpinLock.h"
#include "foundation/Task.h"
#include "tools/FIDGenerator.h"

#include <atomic>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Tools {

/// Hammers the driver with random FIDs, as if a monkey were at the panel: bursts of 2 to 5, then
/// a pause of 0 to 500 milliseconds; about fourteen a second. They take the road of every FID,
/// dictionaries and frame included.
///
/// A second `start` runs a second monkey; both end at the next `stop`. `run` signals neither of
/// the events of `start` and `stop`: switching a monkey never waits.
///
/// Lifetime: the handler must outlive the threads. Whoever destroys a runner stops it and calls
/// `waitUntilEnded` first. Thread: any.
/// Errors: `run` catches nothing. An exception out of the handler ends that monkey.
class MonkeyTestRunner : public Task {
  public:
    explicit MonkeyTestRunner(Clock& sleepClock = Clock::system());
    ~MonkeyTestRunner() override;

    void run() override;

    /// Not owned. Without one the monkey only pauses.
    void setFIDHandler(FIDHandler* handler) { sink = handler; }
    /// Appends a copy of each; nothing is ever removed, so a file that is loaded twice counts
    /// twice.
    void addGenerators(std::vector<MonkeyTest::FIDGenerator> const& list);
    /// How many FIDs all its monkeys have raised so far.
    unsigned long getRaised() const { return raised; }

  private:
    std::pair<std::string, FIDParameterList> generate();

    std::atomic<FIDHandler*> sink{nullptr};
    std::atomic<unsigned long> raised{0};
    SpinMutex listLock;  // of generators
    std::vector<MonkeyTest::FIDGenerator> generators;
    Clock& clock;
};

}  // namespace FrameDriver::Tools
