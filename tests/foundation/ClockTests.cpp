#include "foundation/Clock.h"

#include <gtest/gtest.h>

#include <chrono>

namespace FrameDriver::Tools {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

TEST(Clock, SystemSleepsAtLeastTheDuration) {
    for (auto const duration : {microseconds(1), microseconds(700), microseconds(2300)}) {
        auto const start = steady_clock::now();
        Clock::system().sleep(duration);
        EXPECT_GE(steady_clock::now() - start, duration);
    }
}

TEST(Clock, SystemDoesNotSleepForAPastDuration) {
    auto const start = steady_clock::now();
    Clock::system().sleep(microseconds(0));
    Clock::system().sleep(microseconds(-1));
    Clock::system().sleep(std::chrono::hours(-1));
    EXPECT_LT(steady_clock::now() - start, std::chrono::minutes(1));
}

TEST(Clock, SystemTellsTheLocalWallClock) {
    std::time_t const before = std::time(nullptr);
    auto told = Clock::system().localTime();
    auto const time = std::mktime(&told);
    EXPECT_GE(time, before);
    EXPECT_LE(time, std::time(nullptr));
}

}  // namespace
}  // namespace FrameDriver::Tools
