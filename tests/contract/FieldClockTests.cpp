#include "platform/sal/FieldClock.h"
#include "platform/sal/PanelFieldInterrupt.h"
#include "platform/sal/SoftFieldInterrupt.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <future>
#include <string>

using sal::FieldClock;
using Moment = FieldClock::Moment;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr unsigned kt = 20000000;

std::string shown(TimeStampType const& stamp) {
    return std::to_string(stamp.fieldTime) + "+" + std::to_string(stamp.fieldOffset);
}

}  // namespace

TEST(FieldClock, CountsFieldsAndTheWholeMicrosecondsOfEach) {
    FieldClock const clock(Moment(500), 7000, kt);
    struct {
        std::int64_t now;
        char const* stamp;
    } const rows[] = {{500, "7000+0"},          {1499, "7000+0"},
                      {1500, "7000+1"},         {20000499, "7000+19999"},
                      {20000500, "20007000+0"}, {3600000000500, "3600000007000+0"}};
    for (auto const& row : rows)
        EXPECT_EQ(shown(clock.at(Moment(row.now))), row.stamp) << row.now;
    EXPECT_EQ(clock.nextBoundary(Moment(500)), Moment(20000500));
    EXPECT_EQ(clock.nextBoundary(Moment(20000499)), Moment(20000500));
}

TEST(FieldClock, ANewPeriodHoldsFromTheRunningFieldOn) {
    FieldClock clock(Moment(0), 0, kt);
    EXPECT_EQ(clock.setKt(milliseconds(25), 16683333), 16U);
    EXPECT_EQ(clock.nextBoundary(milliseconds(25)), Moment(36683333));
    EXPECT_EQ(shown(clock.at(Moment(36683333))), "36683333+0");
}

TEST(FieldClock, PeriodsThatCannotBeKeptChangeNothing) {
    FieldClock clock(Moment(0), 0, kt);
    for (unsigned const period : {0U, 999999U, 1000000001U, 4294967295U}) {
        EXPECT_EQ(clock.setKt(Moment(0), period), 20U);
        EXPECT_EQ(clock.getKt(), kt);
    }
    EXPECT_EQ(clock.setKt(Moment(0), 1000000), 1U);
    EXPECT_EQ(clock.setKt(Moment(0), 1000000000), 1000U);
}

TEST(FieldClock, SetShowsTheTimeAndHasABoundaryAfterTheWait) {
    FieldClock clock(Moment(12345), 0, kt);
    auto const now = milliseconds(1234);
    clock.setClock(now, {700 * std::uint64_t{kt}, 3000}, 40000 - 3000);
    EXPECT_EQ(shown(clock.at(now)), "14000000000+3000");
    EXPECT_EQ(clock.nextBoundary(now), now + Moment(17000000 - 500));
    EXPECT_EQ(shown(clock.at(now + Moment(37000000))), "14040000000+0");
}

// 59.94 Hz: two fields are 33366 microseconds and two thirds.
TEST(FieldClock, WhatTheMicrosecondsLeaveOfAFieldIsPutRight) {
    FieldClock clock(Moment(0), 0, 16683333);
    clock.setClock(Moment(0), {1000000000, 1000}, 32366);
    auto const boundary = Moment(32366000 - 500);
    EXPECT_EQ(clock.at(boundary).fieldTime, 1000000000U + 2 * 16683333U);
    EXPECT_EQ(clock.at(boundary).fieldOffset, 0U);
}

TEST(FieldClock, ATrimMakesEachFieldLongerAndTheClockSlower) {
    FieldClock clock(Moment(0), 0, kt);
    EXPECT_EQ(clock.trim(Moment(0), 100), 100);
    EXPECT_EQ(clock.nextBoundary(Moment(0)), Moment(20100000));
    EXPECT_EQ(shown(clock.at(Moment(201000000))), "200000000+0");
    EXPECT_EQ(clock.trim(Moment(201000000), -50), -50);
    EXPECT_EQ(clock.nextBoundary(Moment(201000000)), Moment(201000000 + 19950000));
    EXPECT_EQ(clock.trim(Moment(201000000), 20000), 10000);
    EXPECT_EQ(clock.trim(Moment(201000000), -20000), -10000);
    clock.setKt(Moment(201000000), kt);
    EXPECT_EQ(clock.nextBoundary(Moment(201000000)), Moment(221000000));
}

TEST(FieldClock, IsSetBackOnceAndAtOnce) {
    FieldClock clock(Moment(0), 1000000000, kt);
    clock.setBack(milliseconds(15), 4);
    EXPECT_EQ(shown(clock.at(milliseconds(15))), "1000000000+11000");
    EXPECT_EQ(clock.nextBoundary(milliseconds(15)), milliseconds(24));
    clock.setBack(milliseconds(15), 0);
    EXPECT_EQ(clock.nextBoundary(milliseconds(15)), milliseconds(24));
}

TEST(FieldClock, DriftIsInTheOscillatorAlone) {
    for (double const ppm : {-100.0, 0.0, 50.0, 100.0}) {
        FieldClock clock(Moment(0), 0, kt);
        clock.setDrift(Moment(0), ppm);
        auto const hour = clock.at(seconds(3600));
        auto const reading = static_cast<double>(hour.fieldTime) + hour.fieldOffset * 1000.0;
        EXPECT_NEAR(reading, 3600e9 * (1 + ppm / 1e6), 1001) << ppm;
        auto const boundary = clock.nextBoundary(seconds(3600));
        EXPECT_EQ(clock.at(boundary).fieldTime, hour.fieldTime + kt);
        EXPECT_EQ(clock.at(boundary - Moment(1)).fieldTime, hour.fieldTime);
    }
}

TEST(FieldClock, AChangeDoesNotReachBack) {
    FieldClock clock(Moment(0), 0, kt);
    auto const before = clock.at(seconds(7));
    clock.setDrift(seconds(7), 100);
    clock.trim(seconds(7), 0);
    EXPECT_EQ(clock.at(seconds(7)), before);
    clock.shift(seconds(7), milliseconds(-3));
    EXPECT_EQ(clock.at(seconds(7)).fieldOffset, before.fieldOffset + 3000);
}

TEST(PanelFieldInterrupt, IsOneInTheProcessAndATimer) {
    auto* const interrupt = sal::PanelFieldInterrupt::getInstance();
    EXPECT_EQ(interrupt, sal::PanelFieldInterrupt::getInstance());
    EXPECT_NE(dynamic_cast<sal::Timer*>(interrupt), nullptr);
    EXPECT_TRUE(interrupt->enable());
    EXPECT_TRUE(interrupt->enable());
    interrupt->waitOnEvent();
}

TEST(PanelFieldInterrupt, ComesBehindEachBoundary) {
    sal::MachineFieldInterrupt interrupt;
    interrupt.setKt(5000000);
    EXPECT_TRUE(interrupt.enable());
    interrupt.waitOnEvent();
    TimeStampType last;
    interrupt.getNow(last);
    for (int field = 0; field < 10; ++field) {
        interrupt.waitOnEvent();
        TimeStampType now;
        interrupt.getNow(now);
        EXPECT_GT(now.fieldTime, last.fieldTime);
        EXPECT_EQ((now.fieldTime - last.fieldTime) % 5000000, 0U);
        last = now;
    }
}

TEST(PanelFieldInterrupt, IsHeardOfByAllThatWait) {
    sal::MachineFieldInterrupt interrupt;
    auto const wait = [&] { interrupt.waitOnEvent(); };
    auto first = std::async(std::launch::async, wait);
    auto second = std::async(std::launch::async, wait);
    EXPECT_EQ(first.wait_for(milliseconds(0)), std::future_status::timeout);
    interrupt.enable();
    first.get();
    second.get();
}

// The thread sleeps towards the end of a field of a second when the clock is set.
TEST(PanelFieldInterrupt, AClockThatIsSetTurnsTheSleepThatIsUnderWay) {
    sal::MachineFieldInterrupt interrupt;
    interrupt.setKt(1000000000);
    interrupt.enable();
    interrupt.waitOnEvent();
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(interrupt.setClock({5000000000, 0}, 10000));
    interrupt.waitOnEvent();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(900));
    TimeStampType now;
    interrupt.getNow(now);
    EXPECT_EQ(now.fieldTime, 5000000000U);
}

TEST(PanelFieldInterrupt, TakesASignedTrimInAnUnsignedParameter) {
    sal::MachineFieldInterrupt interrupt;
    EXPECT_EQ(interrupt.adjustKtMicro(static_cast<unsigned>(-5)), static_cast<unsigned>(-5));
    EXPECT_EQ(interrupt.adjustKtMicro(7), 7U);
    EXPECT_TRUE(interrupt.setAdjustment(3));
    EXPECT_EQ(interrupt.setKt(16683335), 16U);
}
