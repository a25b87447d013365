#include "tools/MonkeyTestRunner.h"

#include "tools/Random15.h"

#include <chrono>
#include <mutex>

namespace FrameDriver::Tools {

MonkeyTestRunner::MonkeyTestRunner(Clock& sleepClock) : Task("Task", 1000000), clock(sleepClock) {}

MonkeyTestRunner::~MonkeyTestRunner() { keepRunning = false; }

void MonkeyTestRunner::run() {
    while (keepRunning) {
        if (auto* const handler = sink.load()) {
            for (int count = MonkeyTest::rand() % 4 + 2; count > 0; --count) {
                auto const [fid, parameters] = generate();
                ++raised;
                handler->handleFID(fid, parameters);
            }
        }
        clock.sleep(std::chrono::milliseconds(MonkeyTest::rand() % 501));
    }
}

void MonkeyTestRunner::addGenerators(std::vector<MonkeyTest::FIDGenerator> const& list) {
    std::lock_guard const guard(listLock);
    generators.insert(generators.end(), list.begin(), list.end());
}

// A monkey without a file still raises something, which no dictionary knows.
std::pair<std::string, FIDParameterList> MonkeyTestRunner::generate() {
    std::lock_guard const guard(listLock);
    if (generators.empty())
        return {"NULL_FID", FIDParameterList()};
    return generators[static_cast<std::size_t>(MonkeyTest::rand()) % generators.size()].generate();
}

}  // namespace FrameDriver::Tools
