// Asking the service over the loopback network.

#include "sims/time/TimeProbe.h"

#include "sims/time/TimeService.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace TimeSim {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;

class TimeProbeTest : public testing::Test {
  protected:
    /// The port of the service, which runs then.
    std::uint16_t started() {
        service.start();
        return service.port();
    }

    void doom(TimeFault fault, std::size_t count = 1) {
        service.operate([&](TimeKeeper& keeper, Moment) { keeper.faults().doom(fault, count); });
    }

    /// Does something until it gives true; false if it never does.
    template <class Step>
    static bool comesTrue(Step step) {
        auto const end = steadyNow() + seconds(20);
        while (!step()) {
            if (steadyNow() > end) {
                return false;
            }
        }
        return true;
    }

    TimeService service{{}};
    TimeProbe probe{"127.0.0.1", started()};
};

TEST_F(TimeProbeTest, TakesASample) {
    auto const before = steadyNow();
    auto const sample = probe.ask(seconds(20));
    auto const after = steadyNow();
    ASSERT_TRUE(sample.has_value());
    EXPECT_LE(before, sample->sent);
    EXPECT_LT(sample->sent, sample->received);
    EXPECT_LE(sample->received, after);
    EXPECT_EQ(probe.strays(), 0U);
}

TEST_F(TimeProbeTest, LetsGoWhatIsNotTheReply) {
    ASSERT_TRUE(probe.ask(seconds(20)).has_value());
    doom(TimeFault::stale);
    EXPECT_TRUE(probe.ask(seconds(20)).has_value());
    EXPECT_EQ(probe.strays(), 1U);
}

TEST_F(TimeProbeTest, GivesUpInTime) {
    doom(TimeFault::lost);
    EXPECT_FALSE(probe.ask(milliseconds(5)).has_value());
    EXPECT_EQ(probe.strays(), 0U);
    for (auto const fault : {TimeFault::wrongEcho, TimeFault::cut, TimeFault::stretched}) {
        doom(fault);
        auto const before = probe.strays();
        // Should the machine be slow, the reply comes when the next request is out already.
        EXPECT_TRUE(comesTrue([&] {
            probe.ask(milliseconds(50));
            return probe.strays() > before;
        }));
    }
}

TEST_F(TimeProbeTest, CountsWhatComesUnasked) {
    doom(TimeFault::doubled);
    ASSERT_TRUE(probe.ask(seconds(20)).has_value());
    EXPECT_TRUE(comesTrue([&] {
        probe.pause(milliseconds(1));
        return probe.strays() == 1;
    }));
}

TEST_F(TimeProbeTest, AFrameThatIsGoneDoesNotAnswer) {
    service.stop();
    EXPECT_FALSE(probe.ask(milliseconds(5)).has_value());
    EXPECT_FALSE(probe.ask(milliseconds(5)).has_value());
    service.start();
    EXPECT_TRUE(comesTrue([&] { return probe.ask(seconds(1)).has_value(); }));
}

TEST(TimeProbe, ANameThatIsNoneIsNamed) {
    try {
        TimeProbe const probe("no address", 1506);
        FAIL();
    } catch (FrameSim::StartError const& error) {
        EXPECT_EQ(std::string(error.what()).rfind("cannot reach no address:1506: ", 0), 0U);
    }
}

}  // namespace
}  // namespace TimeSim
