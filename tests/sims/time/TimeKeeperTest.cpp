// Requests in, replies out, at times that the test gives.

#include "sims/time/TimeKeeper.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace TimeSim {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr nanoseconds twenty = milliseconds(20);

/// One reply as a text: when it is due, in microseconds, the panel's fieldTime and fieldOffset
/// echoed, the frame's, and what is wrong with it.
std::string shown(OutgoingReply const& outgoing) {
    auto text = "@" + std::to_string(outgoing.due.count() / 1000);
    if (auto const reply = readReply(outgoing.bytes)) {
        text += " echo " + std::to_string(reply->echo.fieldTime) + "+" +
                std::to_string(reply->echo.fieldOffset) + " frame " +
                std::to_string(reply->frame.fieldTime) + "+" +
                std::to_string(reply->frame.fieldOffset);
    } else {
        text += " " + std::to_string(outgoing.bytes.size()) + " bytes";
    }
    return outgoing.faults.empty() ? text : text + " " + outgoing.faults;
}

std::vector<std::string> shown(TimeAnswer const& answer) {
    if (answer.replies.empty()) {
        return {answer.silence};
    }
    EXPECT_EQ(answer.silence, "");
    std::vector<std::string> texts;
    for (auto const& each : answer.replies) {
        texts.push_back(shown(each));
    }
    return texts;
}

class TimeKeeperTest : public testing::Test {
  protected:
    using Texts = std::vector<std::string>;

    /// The panel's request number `number`, which is its fieldOffset, at that many milliseconds.
    Texts ask(std::uint32_t number, std::string_view panel = {}) {
        return shown(keeper.answer(writeRequest({1000, number}), milliseconds(number), panel));
    }

    TimeKeeper keeper{FieldClock(twenty)};
};

TEST_F(TimeKeeperTest, RepliesTheEchoAndTheClockAtArrival) {
    EXPECT_EQ(ask(0), Texts{"@0 echo 1000+0 frame 0+0"});
    EXPECT_EQ(ask(33), Texts{"@33000 echo 1000+33 frame 20000000+13000"});
}

TEST_F(TimeKeeperTest, SaysNothingToWhatIsNoRequest) {
    auto const request = writeRequest({1000, 1});
    struct Row {
        std::string datagram;
        std::string silence;
    };
    Row const rows[] = {
        {"", "no request: 0 bytes"},
        {request.substr(0, 27), "no request: 27 bytes"},
        {request + "x", "no request: 29 bytes"},
        {"\x02" + request.substr(1), "no request: type 2"},
        {"\x01\x01" + request.substr(2), "no request: type 257"},
    };
    for (auto const& [datagram, silence] : rows) {
        EXPECT_EQ(shown(keeper.answer(datagram, Moment(0))), Texts{silence});
    }
}

TEST_F(TimeKeeperTest, GoesAndComes) {
    keeper.setPresent(false);
    EXPECT_EQ(ask(1), Texts{"off"});
    keeper.setPresent(true);
    EXPECT_EQ(ask(45), Texts{"@45000 echo 1000+45 frame 40000000+5000"});
}

TEST_F(TimeKeeperTest, SilenceIsNoFaultThatCountsARequest) {
    keeper.faults().doom(TimeFault::lost, 1);
    keeper.setSilent(true);
    EXPECT_EQ(ask(1), Texts{"silent"});
    keeper.setSilent(false);
    EXPECT_EQ(ask(2), Texts{"lost"});
    EXPECT_EQ(ask(3), Texts{"@3000 echo 1000+3 frame 0+3000"});
}

TEST_F(TimeKeeperTest, TheClockIsReadBetweenTheTwoDelays) {
    keeper.faults().setDelays({milliseconds(2), milliseconds(5), nanoseconds(0)});
    EXPECT_EQ(ask(19), Texts{"@26000 echo 1000+19 frame 20000000+1000"});
}

TEST_F(TimeKeeperTest, AStaleReplyComesBeforeTheProperOne) {
    keeper.faults().doom(TimeFault::stale, 3);
    EXPECT_EQ(ask(1), Texts{"@1000 echo 1000+1 frame 0+1000"});  // there is none before it
    EXPECT_EQ(ask(2),
              (Texts{"@2000 echo 1000+1 frame 0+1000 stale", "@2000 echo 1000+2 frame 0+2000"}));
    keeper.setStaleCount(2);
    EXPECT_EQ(ask(3),
              (Texts{"@3000 echo 1000+2 frame 0+2000 stale", "@3000 echo 1000+2 frame 0+2000 stale",
                     "@3000 echo 1000+3 frame 0+3000"}));
}

TEST_F(TimeKeeperTest, AHeldReplyComesBehindTheNext) {
    keeper.faults().doom(TimeFault::held, 2);
    EXPECT_EQ(ask(1), Texts{"held"});
    EXPECT_EQ(ask(2), Texts{"@2000 echo 1000+1 frame 0+1000 held"});
    EXPECT_EQ(ask(3),
              (Texts{"@3000 echo 1000+3 frame 0+3000", "@3000 echo 1000+2 frame 0+2000 held"}));
    EXPECT_EQ(ask(4), Texts{"@4000 echo 1000+4 frame 0+4000"});
}

TEST_F(TimeKeeperTest, TheEchoIsWrongInTheOffsetOnly) {
    keeper.faults().doom(TimeFault::wrongEcho, 1);
    EXPECT_EQ(ask(7), Texts{"@7000 echo 1000+8 frame 0+7000 wrong-echo"});
}

TEST_F(TimeKeeperTest, AReplyMayComeTwice) {
    keeper.faults().doom(TimeFault::doubled, 1);
    EXPECT_EQ(ask(7),
              (Texts{"@7000 echo 1000+7 frame 0+7000", "@7000 echo 1000+7 frame 0+7000 doubled"}));
}

TEST_F(TimeKeeperTest, AReplyOfAnotherLengthIsThatOfThePropersBytes) {
    auto const whole = writeReply({{1000, 7}, {0, 7000}});
    for (auto const fault : {TimeFault::cut, TimeFault::stretched}) {
        keeper.faults().doom(fault, 50);
        for (int index = 0; index < 50; ++index) {
            auto const answer = keeper.answer(writeRequest({1000, 7}), milliseconds(7));
            ASSERT_EQ(answer.replies.size(), 1U);
            auto const& [due, bytes, faults] = answer.replies.front();
            EXPECT_EQ(faults, name(fault));
            EXPECT_EQ(bytes.size() < whole.size(), fault == TimeFault::cut);
            EXPECT_NE(bytes.size(), whole.size());
            EXPECT_EQ(bytes, (whole + std::string(36, '\0')).substr(0, bytes.size()));
        }
    }
}

TEST_F(TimeKeeperTest, SeveralFaultsAtOnceAreAllTold) {
    keeper.faults().setChance(TimeFault::wrongEcho, 100);
    keeper.faults().setChance(TimeFault::cut, 100);
    auto const answer = keeper.answer(writeRequest({1000, 7}), milliseconds(7));
    ASSERT_EQ(answer.replies.size(), 1U);
    EXPECT_EQ(answer.replies.front().faults, "wrong-echo+cut");
}

TEST_F(TimeKeeperTest, EachPanelGetsItsOwnOldReplies) {
    keeper.faults().doom(TimeFault::held, 2);
    EXPECT_EQ(ask(1, "a"), Texts{"held"});
    EXPECT_EQ(ask(2, "b"), Texts{"held"});
    EXPECT_EQ(ask(3, "a"),
              (Texts{"@3000 echo 1000+3 frame 0+3000", "@3000 echo 1000+1 frame 0+1000 held"}));
    keeper.faults().doom(TimeFault::stale, 1);
    EXPECT_EQ(ask(4, "b"),
              (Texts{"@4000 echo 1000+2 frame 0+2000 stale", "@4000 echo 1000+4 frame 0+4000",
                     "@4000 echo 1000+2 frame 0+2000 held"}));
}

TEST_F(TimeKeeperTest, ForgetsThePanelNotHeardLongest) {
    ask(1, "first");
    ask(1, "second");
    for (std::size_t index = 0; index < TimeKeeper::panelLimit - 2; ++index) {
        ask(2, "panel " + std::to_string(index));
    }
    ask(3, "first");
    ask(4, "one too many");  // "second" goes
    keeper.faults().doom(TimeFault::stale, 2);
    EXPECT_EQ(ask(5, "first").size(), 2U);
    EXPECT_EQ(ask(5, "second").size(), 1U);
}

TEST_F(TimeKeeperTest, APeriodMayWander) {
    keeper.wander(Moment(0), milliseconds(5), seconds(1));
    struct Row {
        nanoseconds now;
        nanoseconds period;
    };
    for (auto const& [now, period] :
         {Row{milliseconds(999), twenty}, Row{seconds(1), milliseconds(25)},
          Row{milliseconds(1999), milliseconds(25)}, Row{seconds(2), twenty},
          Row{seconds(5), milliseconds(25)}}) {
        SCOPED_TRACE(now.count());
        keeper.answer(writeRequest({}), now);
        EXPECT_EQ(keeper.clock().period(), period);
    }
    keeper.wander(seconds(5), nanoseconds(0), seconds(1));
    EXPECT_EQ(keeper.clock().period(), twenty);
    keeper.answer(writeRequest({}), seconds(60));
    EXPECT_EQ(keeper.clock().period(), twenty);
}

TEST_F(TimeKeeperTest, WhenARequestComesDoesNotChangeWhenThePeriodDoes) {
    auto often = keeper;
    keeper.wander(Moment(0), milliseconds(1), milliseconds(70));
    often.wander(Moment(0), milliseconds(1), milliseconds(70));
    for (auto now = milliseconds(0); now < seconds(3); now += milliseconds(7)) {
        often.answer(writeRequest({}), now);
    }
    EXPECT_EQ(shown(often.answer(writeRequest({}), seconds(3))),
              shown(keeper.answer(writeRequest({}), seconds(3))));
}

TEST_F(TimeKeeperTest, TheSameSeedGivesTheSameReplies) {
    auto const run = [](std::uint64_t seed) {
        TimeKeeper each(FieldClock(twenty), seed);
        for (auto const* const fault : {"lost", "stale", "held", "doubled", "wrong-echo", "cut"}) {
            each.faults().setChance(timeFault(fault).value(), 25);
        }
        each.faults().setDelays({{}, {}, milliseconds(3)});
        Texts texts;
        for (std::uint32_t index = 0; index < 100; ++index) {
            auto const more = shown(each.answer(writeRequest({1, index}), milliseconds(index)));
            texts.insert(texts.end(), more.begin(), more.end());
        }
        return texts;
    };
    EXPECT_EQ(run(1), run(1));
    EXPECT_NE(run(1), run(2));
}

/// What a panel does with it: the period from two boundaries, the frame's time from half of the
/// round trip.
TEST_F(TimeKeeperTest, APanelOnAnEvenWayFindsTheFramesClockExactly) {
    keeper.faults().setDelays({milliseconds(4), milliseconds(4), nanoseconds(0)});
    auto const answer = keeper.answer(writeRequest({0, 100000}), milliseconds(100));
    auto const reply = readReply(answer.replies.at(0).bytes);
    ASSERT_TRUE(reply.has_value());
    nanoseconds const sent = milliseconds(100);
    nanoseconds const received = answer.replies.at(0).due;
    EXPECT_EQ(reply->frame.nanoseconds() + (received - sent).count() / 2,
              keeper.clock().at(received).nanoseconds());
}

}  // namespace
}  // namespace TimeSim
