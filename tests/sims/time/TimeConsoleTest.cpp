// What can be typed, and what it does.

#include "sims/time/TimeConsole.h"

#include "sims/frame/CommandWords.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace TimeSim {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

/// The service isn't started: the console needs only its keeper.
class TimeConsoleTest : public testing::Test {
  protected:
    std::vector<std::string> type(std::string_view line) {
        lines.clear();
        try {
            console.run(line);
        } catch (FrameSim::CommandError const& error) {
            lines.push_back(std::string("error: ") + error.what());
        }
        return lines;
    }

    TimeKeeper keeper() {
        TimeKeeper copy;
        service.operate([&](TimeKeeper& each, Moment) { copy = each; });
        return copy;
    }

    TimeAnswer answer() {
        TimeAnswer given;
        service.operate([&](TimeKeeper& each, Moment now) {
            given = each.answer(writeRequest({1, 2}), now);
        });
        return given;
    }

    std::vector<std::string> lines;
    TimeService service{{}};
    TimeConsole console{service,
                        [this](FrameSim::Line const& line) { lines.push_back(line.text()); }};
};

using Lines = std::vector<std::string>;

TEST_F(TimeConsoleTest, WhatIsWrongIsNamed) {
    struct Row {
        std::string line;
        std::string reason;
    };
    Row const rows[] = {
        {"", "COMMAND is missing"},
        {"what", "there is no command 'what'; try time help"},
        {"rate", "rate: HZ is missing"},
        {"rate 50Hz", "rate: HZ must be a number from 1 to 1000, not '50Hz'"},
        {"period 999999", "period: NS must be a number from 1000000 to 1000000000, not '999999'"},
        {"drift x", "drift: PPM must be a number from -100000 to 100000, not 'x'"},
        {"drift nan", "drift: PPM must be a number from -100000 to 100000, not 'nan'"},
        {"chance", "chance: FAULT is missing"},
        {"chance gone 3", "chance: there is no fault 'gone'"},
        {"chance lost 101", "chance: PERCENT must be a number from 0 to 100, not '101'"},
        {"chance lost 5 5", "chance: too much: '5'"},
        {"next lost 0", "next: COUNT must be a number from 1 to 1000000, not '0'"},
        {"silent maybe", "silent: it must be on or off, not 'maybe'"},
        {"delay 1", "delay: REPLY is missing"},
        {"delay 1 1000001", "delay: REPLY must be a number from 0 to 1000000, not '1000001'"},
        {"on please", "on: too much: 'please'"},
        {"tell more", "tell: it must be none, few or all, not 'more'"},
    };
    for (auto const& [line, reason] : rows) {
        SCOPED_TRACE(line);
        EXPECT_EQ(type(line), Lines{"error: " + reason});
        try {
            checkTimeCommand(line);
            ADD_FAILURE();
        } catch (FrameSim::CommandError const& error) {
            EXPECT_EQ(error.what(), reason);
        }
    }
}

TEST_F(TimeConsoleTest, ChangesTheClock) {
    EXPECT_EQ(type("  rate\t50 "), Lines{});
    EXPECT_EQ(keeper().clock().period(), milliseconds(20));
    type("period 16683335");
    EXPECT_EQ(keeper().clock().period(), nanoseconds(16683335));
    type("drift -12.5");
    EXPECT_EQ(keeper().clock().drift(), -12.5);
    type("restart 77000000000");
    auto const shown = keeper().clock().at(steadyNow()).nanoseconds();
    EXPECT_GE(shown, 77000000000);
    EXPECT_LT(shown, keeper().clock().at(steadyNow() + std::chrono::hours(1)).nanoseconds());
    auto const before = keeper().clock();
    type("shift 2000");
    auto const now = steadyNow();
    auto const moved = static_cast<std::int64_t>(keeper().clock().at(now).fieldTime) -
                       static_cast<std::int64_t>(before.at(now).fieldTime);
    EXPECT_TRUE(moved == 2000000 || moved == 2000000 - 16683335) << moved;
    type("stamp-error 1000");
    EXPECT_NE(keeper().clock().at(now).fieldTime % 1000, 0U);
}

TEST_F(TimeConsoleTest, SilencesTheService) {
    type("off");
    EXPECT_EQ(answer().silence, "off");
    type("on");
    type("silent on");
    EXPECT_EQ(answer().silence, "silent");
    type("silent off");
    EXPECT_EQ(answer().silence, "");
}

TEST_F(TimeConsoleTest, SetsTheFaults) {
    EXPECT_EQ(type("next wrong-echo 2"), Lines{});
    EXPECT_EQ(answer().replies.at(0).faults, "wrong-echo");
    type("next none");
    EXPECT_EQ(answer().replies.at(0).faults, "wrong-echo");
    EXPECT_EQ(answer().replies.at(0).faults, "");
    type("stale 3");
    type("next stale");
    EXPECT_EQ(answer().replies.size(), 4U);
    type("chance lost 100");
    EXPECT_EQ(answer().silence, "lost");
    type("seed 99");
    EXPECT_EQ(keeper().faults().currentSeed(), 99U);
}

TEST_F(TimeConsoleTest, GoodEndsAllFaultsAndLeavesTheClock) {
    for (auto const* const line : {"off", "silent on", "chance lost 100", "next lost 5",
                                   "delay 5 5 5", "stamp-error 500", "drift 3", "rate 50"}) {
        ASSERT_EQ(type(line), Lines{}) << line;
    }
    type("good");
    auto const given = answer();
    ASSERT_EQ(given.replies.size(), 1U);
    EXPECT_EQ(given.replies[0].faults, "");
    EXPECT_EQ(keeper().faults().delays().jitter.count(), 0);
    EXPECT_EQ(keeper().clock().drift(), 3);
    EXPECT_EQ(keeper().clock().period(), milliseconds(20));
}

TEST_F(TimeConsoleTest, ThePeriodWandersAndStops) {
    type("wander 1000 10");
    service.operate([](TimeKeeper& each, Moment now) {
        each.answer(writeRequest({}), now + milliseconds(15));
    });
    EXPECT_EQ(keeper().clock().period(), nanoseconds(16684333));
    type("wander 0 0");
    EXPECT_EQ(keeper().clock().period(), nanoseconds(16683333));
}

TEST_F(TimeConsoleTest, ShowsTheClockAndWhatIsSet) {
    type("restart 5");
    auto shown = type("show");
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].substr(0, 68),
              "time-clock present=true silent=false period=16683333 drift=0 fieldTi");
    type("chance stale 12.5");
    type("delay 10 20 30");
    shown = type("show");
    ASSERT_EQ(shown.size(), 3U);
    EXPECT_EQ(shown[1], "time-delay request=10 reply=20 jitter=30");
    EXPECT_EQ(shown[2], "time-chance fault=stale percent=12.5");
}

TEST_F(TimeConsoleTest, HelpNamesEveryCommand) {
    auto const shown = type("help");
    EXPECT_EQ(shown.size(), 19U);
    EXPECT_EQ(shown.front(), "help command=\"time rate HZ\" does=\"sets the field rate: 59.94, 50, "
                             "60, 29.97 and so on\"");
}

}  // namespace
}  // namespace TimeSim
