// The frame's field clock, by times that the test gives.

#include "sims/time/FieldClock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace TimeSim {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr nanoseconds twenty = milliseconds(20);

std::optional<std::int64_t> periodOf(std::string_view rate) {
    auto const period = fieldPeriod(rate);
    return period ? std::optional(period->count()) : std::nullopt;
}

TEST(FieldPeriod, IsAWholeNumberOfNanoseconds) {
    struct Row {
        std::string rate;
        std::optional<std::int64_t> period;
    };
    Row const rows[] = {
        {"59.94", 16683333},  // 1001/60000 s, not 1/59.94 s
        {"50", 20000000},         {"60", 16666667},      {"60.0", 16666667},
        {"29.97", 33366667},      {"23.98", 41708333},   {"23.976", 41708333},
        {"47.95", 20854167},      {"47.952", 20854167},  {"119.88", 8341667},
        {"24", 41666667},         {"66.7", 14992504},    {"1", 1000000000},
        {"1000", 1000000},        {"", std::nullopt},    {"0.99", std::nullopt},
        {"1000.1", std::nullopt}, {"-50", std::nullopt}, {"50Hz", std::nullopt},
        {" 50", std::nullopt},    {"5e1", std::nullopt}, {"nan", std::nullopt},
        {"inf", std::nullopt},
    };
    for (auto const& [rate, period] : rows) {
        SCOPED_TRACE("'" + rate + "'");
        EXPECT_EQ(periodOf(rate), period);
    }
}

TEST(FieldClock, ShowsTheLastBoundaryAndTheMicrosecondsSince) {
    FieldClock const clock(twenty, seconds(7), seconds(100));
    struct Row {
        nanoseconds after;
        FieldTime shown;
    };
    Row const rows[] = {
        {nanoseconds(0), {100000000000, 0}},
        {nanoseconds(999), {100000000000, 0}},
        {nanoseconds(1000), {100000000000, 1}},
        {nanoseconds(19999999), {100000000000, 19999}},
        {nanoseconds(20000000), {100020000000, 0}},
        {seconds(3600), {3700000000000, 0}},
        {milliseconds(3600007), {3700000000000, 7000}},
        {-seconds(1), {100000000000, 0}},  // before its beginning it stands
    };
    for (auto const& [after, shown] : rows) {
        SCOPED_TRACE(after.count());
        EXPECT_EQ(clock.at(seconds(7) + after), shown);
    }
}

TEST(FieldClock, FieldsOfAnOddPeriodAreAllOfTheSameLength) {
    FieldClock const clock(nanoseconds(16683333));
    std::set<std::uint64_t> boundaries;
    for (nanoseconds now{}; now < seconds(10); now += milliseconds(5)) {
        boundaries.insert(clock.at(now).fieldTime);
    }
    ASSERT_EQ(boundaries.size(), 600U);
    std::uint64_t expected = 0;
    for (auto const boundary : boundaries) {
        EXPECT_EQ(boundary, expected);
        expected += 16683333;
    }
}

TEST(FieldClock, DriftIsSeenAgainstAnotherClockAndNotInThePeriod) {
    FieldClock clock(twenty);
    clock.setDrift(Moment(0), 100);
    EXPECT_EQ(clock.drift(), 100);
    // 100 ppm of a hundred seconds are ten milliseconds.
    EXPECT_EQ(clock.at(seconds(100)), (FieldTime{100000000000, 10000}));
    clock.setDrift(seconds(100), -100);
    EXPECT_EQ(clock.at(seconds(100)), (FieldTime{100000000000, 10000}));
    EXPECT_EQ(clock.at(seconds(200)), (FieldTime{200000000000, 0}));
}

TEST(FieldClock, DriftOfAYearIsExact) {
    FieldClock clock(twenty);
    clock.setDrift(Moment(0), 0.5);
    auto const year = seconds(31536000);
    EXPECT_EQ(clock.at(year).nanoseconds(), nanoseconds(year).count() + 15768000000);
}

TEST(FieldClock, DriftIsKeptWithinBounds) {
    FieldClock clock;
    clock.setDrift(Moment(0), 1e9);
    EXPECT_EQ(clock.drift(), 100000);
    clock.setDrift(Moment(0), -1e9);
    EXPECT_EQ(clock.drift(), -100000);
}

TEST(FieldClock, ANewPeriodBeginsWithTheRunningField) {
    FieldClock clock(twenty);
    clock.setPeriod(milliseconds(50), milliseconds(16));  // the field began at 40
    EXPECT_EQ(clock.period(), milliseconds(16));
    EXPECT_EQ(clock.at(milliseconds(50)), (FieldTime{40000000, 10000}));
    EXPECT_EQ(clock.at(milliseconds(57)), (FieldTime{56000000, 1000}));
    EXPECT_EQ(clock.at(milliseconds(72)), (FieldTime{72000000, 0}));
}

TEST(FieldClock, APeriodThatHasPassedAlreadyLeavesNoTimeOut) {
    FieldClock clock(twenty);
    clock.setPeriod(milliseconds(59), milliseconds(16));
    EXPECT_EQ(clock.at(milliseconds(59)), (FieldTime{56000000, 3000}));
}

TEST(FieldClock, APeriodIsNeverNothing) {
    FieldClock clock(nanoseconds(-5));
    EXPECT_EQ(clock.period(), nanoseconds(1000));
    clock.setPeriod(Moment(0), nanoseconds(0));
    EXPECT_EQ(clock.period(), nanoseconds(1000));
}

TEST(FieldClock, AShiftMovesTheBoundariesAndNotTheClock) {
    FieldClock clock(twenty);
    struct Row {
        nanoseconds by;
        FieldTime shown;  // at 50 ms
    };
    Row const rows[] = {
        {milliseconds(3), {43000000, 7000}},   {milliseconds(-3), {37000000, 13000}},
        {milliseconds(63), {43000000, 7000}},  {milliseconds(15), {35000000, 15000}},
        {milliseconds(20), {40000000, 10000}},
    };
    for (auto const& [by, shown] : rows) {
        SCOPED_TRACE(by.count());
        auto shifted = clock;
        shifted.shift(milliseconds(50), by);
        EXPECT_EQ(shifted.at(milliseconds(50)), shown);
    }
}

TEST(FieldClock, ARestartedClockBeginsAFieldAtItsReading) {
    FieldClock clock(twenty);
    clock.setDrift(Moment(0), 1000);
    clock.restart(seconds(50), nanoseconds(3));
    EXPECT_EQ(clock.at(seconds(50)), (FieldTime{3, 0}));
    EXPECT_EQ(clock.at(seconds(50) + milliseconds(30)), (FieldTime{20000003, 10030}));
}

TEST(FieldClock, AStampErrorIsTheSameForTheSameBoundaryAndSeed) {
    FieldClock clock(twenty);
    clock.setStampError(nanoseconds(500), 7);
    auto const boundary = clock.at(milliseconds(65)).fieldTime;
    EXPECT_EQ(clock.at(milliseconds(79)).fieldTime, boundary);
    EXPECT_NE(boundary, 60000000U);
    EXPECT_NEAR(static_cast<double>(boundary), 6e7, 500);
    auto other = clock;
    other.setStampError(nanoseconds(500), 8);
    EXPECT_NE(other.at(milliseconds(65)).fieldTime, boundary);
    clock.setStampError(nanoseconds(0), 7);
    EXPECT_EQ(clock.at(milliseconds(65)).fieldTime, 60000000U);
}

TEST(FieldClock, AStampErrorStaysUnderHalfAPeriodAndNoOffsetIsNegative) {
    FieldClock clock(twenty);
    clock.setStampError(seconds(5), 1);
    bool late = false;
    for (int field = 1; field < 200; ++field) {
        auto const exact = nanoseconds(twenty * field);
        auto const shown = clock.at(exact);
        EXPECT_LT(std::abs(static_cast<std::int64_t>(shown.fieldTime) - exact.count()), 10000000);
        EXPECT_LT(shown.fieldOffset, 10000U);
        late = late || shown.fieldOffset == 0;
    }
    EXPECT_TRUE(late);
}

}  // namespace
}  // namespace TimeSim
