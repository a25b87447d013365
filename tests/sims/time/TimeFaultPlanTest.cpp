// What goes wrong, when, and that it does so again.

#include "sims/time/TimeFaultPlan.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace TimeSim {
namespace {

using std::chrono::microseconds;
using std::chrono::nanoseconds;

constexpr TimeFault allFaults[] = {TimeFault::lost,     TimeFault::stale,     TimeFault::held,
                                   TimeFault::doubled,  TimeFault::wrongEcho, TimeFault::cut,
                                   TimeFault::stretched};

std::string shown(TimeFate const& fate) {
    std::string text;
    for (auto const fault : allFaults) {
        if (fate.has(fault)) {
            text.append(name(fault)).append(" ");
        }
    }
    return text + std::to_string(fate.length) + " " + std::to_string(fate.requestDelay.count()) +
           " " + std::to_string(fate.replyDelay.count());
}

std::vector<std::string> fates(TimeFaultPlan& plan, int count) {
    std::vector<std::string> texts;
    for (int index = 0; index < count; ++index) {
        texts.push_back(shown(plan.next()));
    }
    return texts;
}

TEST(TimeFault, EachHasAName) {
    for (auto const fault : allFaults) {
        EXPECT_EQ(timeFault(name(fault)), fault);
    }
    EXPECT_EQ(timeFault("none"), TimeFault::none);
    EXPECT_EQ(timeFault("Lost"), std::nullopt);
    EXPECT_EQ(timeFault(""), std::nullopt);
}

TEST(TimeFaultPlan, NothingIsWrongAtFirst) {
    TimeFaultPlan plan;
    EXPECT_EQ(fates(plan, 3), (std::vector<std::string>(3, "28 0 0")));
}

TEST(TimeFaultPlan, TheSameSeedGivesTheSameFates) {
    auto const run = [](std::uint64_t seed) {
        TimeFaultPlan plan(seed);
        for (auto const fault : allFaults) {
            plan.setChance(fault, 30);
        }
        plan.setDelays({{}, {}, microseconds(100)});
        return fates(plan, 200);
    };
    EXPECT_EQ(run(5), run(5));
    EXPECT_NE(run(5), run(6));
}

/// These are written down, so that a seed in somebody's notes is good on any machine.
TEST(TimeFaultPlan, ASeedMeansTheSameOnEveryMachine) {
    TimeFaultPlan plan(42);
    plan.setChance(TimeFault::lost, 50);
    plan.setChance(TimeFault::stretched, 50);
    plan.setDelays({microseconds(1), microseconds(2), microseconds(1)});
    EXPECT_EQ(fates(plan, 4),
              (std::vector<std::string>{"lost stretched 57 1795 2999", "28 1252 2296",
                                        "lost 28 1244 2789", "stretched 43 1971 2210"}));
}

TEST(TimeFaultPlan, AChanceIsAShareOfTheRequests) {
    struct Row {
        double percent;
        int least, most;  // of 10000
    };
    for (auto const& [percent, least, most] :
         {Row{0, 0, 0}, Row{1, 50, 150}, Row{50, 4800, 5200}, Row{100, 10000, 10000}}) {
        for (auto const fault : allFaults) {
            SCOPED_TRACE(std::string(name(fault)) + " " + std::to_string(percent));
            TimeFaultPlan plan(3);
            plan.setChance(fault, percent);
            int count = 0;
            for (int index = 0; index < 10000; ++index) {
                count += plan.next().has(fault) ? 1 : 0;
            }
            EXPECT_GE(count, least);
            EXPECT_LE(count, most);
        }
    }
}

TEST(TimeFaultPlan, AFaultMoreLeavesTheOthersWhereTheyWere) {
    TimeFaultPlan plain(9), more(9);
    plain.setChance(TimeFault::lost, 20);
    more.setChance(TimeFault::lost, 20);
    more.setChance(TimeFault::cut, 80);
    more.setDelays({microseconds(5), microseconds(5), microseconds(5)});
    for (int index = 0; index < 200; ++index) {
        EXPECT_EQ(plain.next().has(TimeFault::lost), more.next().has(TimeFault::lost));
    }
}

TEST(TimeFaultPlan, DoomsComeInTheirOrderAndBeforeChance) {
    TimeFaultPlan plan;
    plan.setChance(TimeFault::lost, 100);
    plan.doom(TimeFault::wrongEcho, 2);
    plan.doom(TimeFault::none, 1);
    plan.doom(TimeFault::held, 0);
    plan.doom(TimeFault::stale, 1);
    EXPECT_EQ(fates(plan, 5), (std::vector<std::string>{"wrong-echo 28 0 0", "wrong-echo 28 0 0",
                                                        "28 0 0", "stale 28 0 0", "lost 28 0 0"}));
}

TEST(TimeFaultPlan, OnlySoManyDoomsWait) {
    TimeFaultPlan plan;
    for (std::size_t index = 0; index < TimeFaultPlan::doomLimit; ++index) {
        plan.doom(index % 2 == 0 ? TimeFault::lost : TimeFault::stale, 1);
    }
    plan.doom(TimeFault::held, 1);
    plan.doom(TimeFault::stale, 2);  // not another, but more of the last
    for (std::size_t index = 0; index < TimeFaultPlan::doomLimit; ++index) {
        EXPECT_EQ(plan.next().has(TimeFault::lost), index % 2 == 0);
    }
    EXPECT_EQ(fates(plan, 3), (std::vector<std::string>{"stale 28 0 0", "stale 28 0 0", "28 0 0"}));
}

TEST(TimeFaultPlan, ShortAndLongAreNeverTwentyEightBytes) {
    TimeFaultPlan plan;
    plan.doom(TimeFault::cut, 500);
    plan.doom(TimeFault::stretched, 500);
    std::size_t shortest = 28, longest = 28;
    for (int index = 0; index < 500; ++index) {
        auto const length = plan.next().length;
        EXPECT_LT(length, 28U);
        shortest = std::min(shortest, length);
    }
    for (int index = 0; index < 500; ++index) {
        auto const length = plan.next().length;
        EXPECT_GT(length, 28U);
        longest = std::max(longest, length);
    }
    EXPECT_EQ(shortest, 0U);
    EXPECT_EQ(longest, 64U);
}

TEST(TimeFaultPlan, JitterIsAddedToEachWayForItself) {
    TimeFaultPlan plan;
    plan.setDelays({microseconds(100), microseconds(900), microseconds(50)});
    int different = 0;
    for (int index = 0; index < 100; ++index) {
        auto const fate = plan.next();
        auto const request = fate.requestDelay - microseconds(100);
        auto const reply = fate.replyDelay - microseconds(900);
        EXPECT_GE(request.count(), 0);
        EXPECT_LE(request, nanoseconds(50000));
        EXPECT_GE(reply.count(), 0);
        EXPECT_LE(reply, nanoseconds(50000));
        different += request != reply ? 1 : 0;
    }
    EXPECT_GT(different, 90);
}

TEST(TimeFaultPlan, ClearEndsAllFaultsAndRestartBeginsAnew) {
    TimeFaultPlan plan(4);
    plan.setChance(TimeFault::lost, 50);
    auto const first = fates(plan, 50);
    plan.restart(4);
    EXPECT_EQ(fates(plan, 50), first);
    plan.doom(TimeFault::cut, 100);
    plan.setDelays({microseconds(1), microseconds(1), microseconds(1)});
    plan.clear();
    EXPECT_EQ(fates(plan, 20), (std::vector<std::string>(20, "28 0 0")));
}

}  // namespace
}  // namespace TimeSim
