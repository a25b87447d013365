// What samples say, by numbers that can be worked out by hand.

#include "sims/time/TimeMeter.h"

#include "sims/time/FieldClock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace TimeSim {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;

TEST(Spread, SumsUp) {
    Spread spread;
    EXPECT_EQ(spread.count(), 0U);
    EXPECT_EQ(spread.deviation(), 0);
    spread.add(-3);
    EXPECT_EQ(spread.lowest(), -3);
    EXPECT_EQ(spread.highest(), -3);
    EXPECT_EQ(spread.deviation(), 0);
    for (double const value : {1.0, 5.0, 5.0}) {
        spread.add(value);
    }
    EXPECT_EQ(spread.count(), 4U);
    EXPECT_DOUBLE_EQ(spread.mean(), 2);
    EXPECT_EQ(spread.lowest(), -3);
    EXPECT_EQ(spread.highest(), 5);
    EXPECT_DOUBLE_EQ(spread.deviation(), 3.8297084310253524);  // sqrt(44 / 3)
}

TEST(Spread, KeepsTheLastDigitOfAPeriod) {
    Spread spread;
    for (int index = 0; index < 100000; ++index) {
        spread.add(16683333 + index % 2);
    }
    EXPECT_NEAR(spread.mean(), 16683333.5, 1e-6);
    EXPECT_NEAR(spread.deviation(), 0.5, 1e-5);
}

TEST(Spread, TwoAddedAreOneOfAll) {
    Spread all, one, other;
    for (int index = 0; index < 50; ++index) {
        all.add(index * index);
        (index < 20 ? one : other).add(index * index);
    }
    one.add(other);
    one.add(Spread());
    EXPECT_EQ(one.count(), all.count());
    EXPECT_DOUBLE_EQ(one.mean(), all.mean());
    EXPECT_DOUBLE_EQ(one.deviation(), all.deviation());
    EXPECT_EQ(one.lowest(), 0);
    EXPECT_EQ(one.highest(), 49 * 49);
    Spread empty;
    empty.add(all);
    EXPECT_EQ(empty.lowest(), 0);
    EXPECT_EQ(empty.count(), 50U);
}

TEST(Trend, IsTheSlopeOfALine) {
    Trend trend;
    EXPECT_EQ(trend.slope(), 0);
    trend.add(5, 7);
    trend.add(5, 9);
    EXPECT_EQ(trend.slope(), 0);
    Trend line;
    for (int x = 0; x < 100; ++x) {
        line.add(1e6 + x, -2.5 * x + (x % 2));
    }
    EXPECT_NEAR(line.slope(), -2.5, 1e-3);
}

/// Samples of a frame whose clock is 5 s ahead, by a way of 300 us there and 100 us back.
TimeSample sampled(FieldClock const& clock, Moment sent) {
    return {sent, sent + microseconds(400), clock.at(sent + microseconds(300))};
}

TEST(TimeMeter, ReadsRoundTripOffsetAndPeriod) {
    FieldClock const clock(milliseconds(20), Moment(0), seconds(5));
    TimeMeter meter;
    struct Row {
        nanoseconds sent;
        std::optional<nanoseconds> period;
    };
    for (auto const& [sent, period] :
         {Row{milliseconds(8), {}}, Row{milliseconds(15), {}},
          Row{milliseconds(21), milliseconds(20)}, Row{milliseconds(25), {}},
          Row{milliseconds(36), {}},  // more than 10 ms later: nothing is known
          Row{milliseconds(45), milliseconds(20)}, Row{milliseconds(55), {}},
          Row{milliseconds(64), milliseconds(20)}, Row{milliseconds(78), {}},
          Row{milliseconds(99), {}}}) {  // two boundaries may have passed
        SCOPED_TRACE(sent.count());
        auto const reading = meter.take(sampled(clock, sent));
        EXPECT_EQ(reading.since, sent - milliseconds(8));
        EXPECT_EQ(reading.roundTrip, microseconds(400));
        EXPECT_EQ(reading.offset, nanoseconds(0));
        EXPECT_EQ(reading.period, period);
    }
    // Half of what the way there is longer than the way back.
    EXPECT_EQ(meter.firstOffset(), seconds(5) + microseconds(100));
}

TEST(TimeMeter, SeesDriftAsAnOffsetThatGrows) {
    FieldClock clock(milliseconds(20));
    clock.setDrift(Moment(0), 100);
    TimeMeter meter;
    meter.take(sampled(clock, seconds(0)));
    EXPECT_EQ(meter.take(sampled(clock, seconds(10))).offset, milliseconds(1));
}

TEST(TimeMeter, AClockThatGoesBackHasNoPeriod) {
    FieldClock clock(milliseconds(20), Moment(0), seconds(5));
    TimeMeter meter;
    meter.take(sampled(clock, milliseconds(100)));
    clock.restart(milliseconds(101), nanoseconds(0));
    auto const reading = meter.take(sampled(clock, milliseconds(102)));
    EXPECT_EQ(reading.period, std::nullopt);
    EXPECT_EQ(reading.offset, -seconds(5) - milliseconds(101));
}

TEST(TimeHistory, KeepsSoManyStretchesByMakingThemLonger) {
    TimeHistory history(milliseconds(10));
    for (std::size_t index = 0; index < TimeHistory::limit; ++index) {
        history.at(milliseconds(10) * index + milliseconds(9)).asked += 1;
    }
    EXPECT_EQ(history.stretch(), milliseconds(10));
    EXPECT_EQ(history.surveys().size(), TimeHistory::limit);
    history.at(seconds(15)).lost += 1;
    EXPECT_EQ(history.stretch(), milliseconds(40));
    ASSERT_EQ(history.surveys().size(), 376U);
    EXPECT_EQ(history.surveys()[0].asked, 4U);
    EXPECT_EQ(history.surveys()[119].asked, 4U);
    EXPECT_EQ(history.surveys()[120].asked, 0U);
    EXPECT_EQ(history.surveys()[375].lost, 1U);
}

TEST(TimeHistory, AnOddNumberOfStretchesLosesNothing) {
    TimeHistory history(milliseconds(1));
    for (int index = 0; index < 7; ++index) {
        history.at(milliseconds(index)).asked += 1;
    }
    history.at(milliseconds(480));
    EXPECT_EQ(history.surveys()[0].asked, 2U);
    EXPECT_EQ(history.surveys()[3].asked, 1U);
}

}  // namespace
}  // namespace TimeSim
