#include "ScriptedField.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

using namespace FrameDriver::Testing;

namespace {

using Answer = ScriptedConnection::Answer;

class TimeClient : public testing::Test {
  protected:
    TimeClient() { record.take(); }

    timeClient::Setup setup() {
        timeClient::Setup parts;
        parts.driver = &link;
        parts.interrupt = &interrupt;
        parts.localAddress = "10.0.0.1";
        parts.frameAddress = "10.0.0.2";
        auto owned = std::make_unique<ScriptedConnection>(record);
        connection = owned.get();
        parts.connection = std::move(owned);
        parts.clock = &clock;
        return parts;
    }
    std::int32_t sample() { return client.getSample(t1, t2, t3); }
    void answer(Answer const& next, int times = 1) {
        for (int i = 0; i < times; ++i)
            connection->answers.push_back(next);
    }
    /// A good sample, for adjustClock: both clocks as given.
    std::int32_t adjust(TimeStampType const& panel, TimeStampType const& frame) {
        interrupt.readings = {panel};
        answer({1, frame});
        return client.adjustClock();
    }
    /// Three answers that make a measurement: two from one field, one from the next.
    void answerField(std::uint64_t first, std::uint64_t length, std::uint32_t offset = 100) {
        for (auto const field : {first, first, first + length})
            answer({1, {field, offset}});
    }

    Record record;
    ScriptedInterrupt interrupt{record};
    ScriptedClock clock{record};
    ScriptedLink link;
    ScriptedConnection* connection = nullptr;
    OpenTimeClient client{setup()};
    LogCapture log;
    TimeStampType t1, t2, t3;
};

constexpr std::uint32_t kt = 16683335;

}  // namespace

TEST_F(TimeClient, TheRequestIsOf28BytesWithThePanelsStamp) {
    interrupt.readings = {{0x1122334455667788U, 0x99AABBCCU}};
    answer({1, {5, 6}});
    EXPECT_EQ(sample(), 0);
    EXPECT_EQ(std::string(connection->sent.begin(), connection->sent.end()),
              std::string("\1\0\0\0\x88\x77\x66\x55\x44\x33\x22\x11\xCC\xBB\xAA\x99", 16) +
                  std::string(12, '\0'));
}

TEST_F(TimeClient, ASampleIsTheEchoTheFramesClockAndThePanelsAtTheReply) {
    interrupt.readings = {{1000, 1}, {2000, 2}};
    answer({1, {5000, 6}});
    EXPECT_EQ(sample(), 0);
    EXPECT_EQ(shown(t1) + " " + shown(t2) + " " + shown(t3), "1000+1 5000+6 2000+2");
    EXPECT_EQ(record.take(), (Lines{"write", "read"}));
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(TimeClient, AReplyToAnOlderRequestIsPassedOverWithoutANewRequest) {
    answer({1, {5, 6}, 1});
    answer({1, {7, 8}});
    EXPECT_EQ(sample(), 0);
    EXPECT_EQ(shown(t2), "7+8");
    EXPECT_EQ(record.take(), (Lines{"write", "read", "read"}));
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(TimeClient, AShortReplyIsPassedOverLikeAnOlderOne) {
    for (std::size_t const size : {std::size_t{0}, std::size_t{16}, std::size_t{27}}) {
        SCOPED_TRACE(size);
        interrupt.readings = {{0, 0}};  // what a missing echo would read as
        answer({1, {5, 6}, 0, size});
        answer({1, {7, 8}});
        EXPECT_EQ(sample(), 0);
        EXPECT_EQ(shown(t2), "7+8");
    }
}

TEST_F(TimeClient, TenRepliesThatDoNotMatchAreNoSample) {
    answer({1, {5, 6}, 1}, 10);
    answer({1, {5, 6}});
    EXPECT_EQ(sample(), -1);
    EXPECT_EQ(connection->answers.size(), 1U);
    EXPECT_EQ(record.take().size(), 11U);
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(TimeClient, NineRepliesThatDoNotMatchLeaveRoomForTheRightOne) {
    answer({1, {5, 6}, 1}, 9);
    answer({1, {5, 6}});
    EXPECT_EQ(sample(), 0);
}

TEST_F(TimeClient, AFailedReadIsToldAndTheRequestMadeAnew) {
    struct {
        std::int32_t status;
        char const* line;
    } const rows[] = {{0, "error: Packet read not successful: packetReadStatus=0 bytesRead=0"},
                      {-1, "error: Packet read not successful: packetReadStatus=-1 bytesRead=0"},
                      {-4, "error: Packet read not successful: packetReadStatus=-4 bytesRead=0"}};
    for (auto const& row : rows) {
        SCOPED_TRACE(row.line);
        answer({row.status});
        answer({1, {5, 6}});
        EXPECT_EQ(sample(), 0);
        EXPECT_EQ(record.take(), (Lines{"write", "read", "sleep 6", "write", "read"}));
        EXPECT_EQ(log.take(), Lines{row.line});
    }
}

TEST_F(TimeClient, WithoutAnyReplyItGivesUpAfterTenRounds) {
    EXPECT_EQ(sample(), -1);
    EXPECT_EQ(log.take(), Lines(10, "error: Packet read not successful: packetReadStatus=0 "
                                    "bytesRead=0"));
    EXPECT_EQ(record.take().size(), 30U);
}

TEST_F(TimeClient, ARequestThatIsRefusedIsNoSample) {
    for (int const result : {0, -1, -4}) {
        connection->writeResult = result;
        EXPECT_EQ(sample(), -1);
        EXPECT_EQ(record.take(), (Lines{"write"}));
        EXPECT_EQ(log.take(), (Lines{"error: TimeKeeper can't write on UDP port"}));
    }
}

TEST_F(TimeClient, AWriteThatThrowsIsToldAndTheReadGoesOn) {
    connection->writeError = true;
    answer({1, {7, 8}});
    EXPECT_EQ(sample(), 0);
    EXPECT_EQ(log.take(), (Lines{"error: An error occurred while the TimeClient connection wrote a "
                                 "message to the server."}));
    EXPECT_EQ(record.take(), (Lines{"write", "read"}));
}

TEST_F(TimeClient, TheFirstMeasurementSetsTheClock) {
    interrupt.readings = {{1000000, 40}, {1000000, 40}, {1000000, 40}, {1000000, 40},
                          {1000000, 40}, {1000000, 40}, {1000000, 40}, {1000000, 240}};
    answer({1, {50 * std::uint64_t{kt}, 9}});
    answerField(100 * std::uint64_t{kt}, kt);
    client.initTime();
    EXPECT_EQ(record.take(), (Lines{"write", "read", "write", "read", "sleep 2", "write", "read",
                                    "sleep 2", "write", "read", "setKt(16683335)",
                                    "setClock(" + std::to_string(101 * std::uint64_t{kt}) +
                                        "+200, " + std::to_string(kt / 500 - 200) + ")"}));
    EXPECT_EQ(log.take(), (Lines{"info: Field period set to 16683335 mKtms=16"}));
}

TEST_F(TimeClient, ThePeriodIsAcceptedBetweenTheBoundsAndNotAtThem) {
    struct {
        std::uint64_t length;
        bool good;
    } const rows[] = {
        {15000000, false}, {15000001, true},
        {24999999, true},  {25000000, false},
        {1, false},        {33366670, false},
        {kt, true},        {(std::uint64_t{1} << 32U) + kt, true}};  // the low 32 bits count
    for (auto const& row : rows) {
        SCOPED_TRACE(row.length);
        OpenTimeClient fresh(setup());
        answer({1, {1, 1}});
        answerField(1000000000, row.length);
        answer({1, {1, 1}});
        answerField(1000000000, kt + 1);  // the way out
        connection->answers.erase(connection->answers.begin() + 4);
        fresh.initTime();
        auto const period = std::to_string(static_cast<std::uint32_t>(row.length));
        EXPECT_EQ(log.take(),
                  row.good
                      ? (Lines{"info: Field period set to " + period + " mKtms=" +
                               std::to_string(static_cast<std::uint32_t>(row.length) / 1000000)})
                      : (Lines{"info: mKt is out of range " + period,
                               "info: Field period set to 16683336 mKtms=16"}));
    }
}

TEST_F(TimeClient, APeriodOutOfRangeIsMeasuredAgainATenthOfASecondLater) {
    answer({1, {1, 1}});
    answerField(1000000000, 25000000);
    answerField(2000000000, kt);
    client.initTime();
    auto const calls = record.take();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "sleep 100"), 1);
}

TEST_F(TimeClient, AFailedSampleWithinAMeasurementIsOutOfRange) {
    answer({1, {1, 1}});
    answer({1, {100000000, 1}});
    answer({0}, 10);
    answerField(2000000000, kt);
    client.initTime();
    EXPECT_TRUE(log.has("info: mKt is out of range " +
                        std::to_string(static_cast<std::uint32_t>(0U - 100000000U))));
}

TEST_F(TimeClient, TheSamePeriodAgainTouchesNothing) {
    answer({1, {1, 1}});
    answerField(1000000000, kt);
    client.initTime();
    record.take();
    log.take();
    answer({1, {1, 1}});
    answerField(2000000000, kt);
    client.initTime();
    for (auto const& call : record.take())
        EXPECT_FALSE(call.starts_with("set")) << call;
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(TimeClient, APeriodThatChangesByOneNanosecondSetsAnew) {
    for (std::uint32_t const period : {kt, kt + 1}) {
        answer({1, {1, 1}});
        answerField(1000000000, period);
        client.initTime();
        auto const calls = record.take();
        ASSERT_GE(calls.size(), 2U);
        EXPECT_EQ(calls.end()[-2], "setKt(" + std::to_string(period) + ")");
        EXPECT_TRUE(calls.back().starts_with("setClock(" + std::to_string(1000000000U + period) +
                                             "+100, "));
    }
}

// A frame that has just begun to count: the offset is above the absolute time.
TEST_F(TimeClient, AnOffsetAboveTheFramesWholeTimeStepsIntoTheNextField) {
    interrupt.readings = {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 80000}};
    answer({1, {1, 1}});
    for (std::uint64_t const field : {std::uint64_t{0}, std::uint64_t{0}, std::uint64_t{kt}})
        answer({1, {field, 100}});
    client.initTime();
    // 100 and half of 80000 is 40100, above 33366: a field of 16683 is taken off.
    EXPECT_EQ(record.take().back(), "setClock(33366670+23417, 9949)");
}

TEST_F(TimeClient, AnOffsetBelowZeroStepsIntoTheNextField) {
    interrupt.readings = {{0, 500}, {0, 500}, {0, 500}, {0, 500},
                          {0, 500}, {0, 500}, {0, 500}, {0, 0}};
    answer({1, {1, 1}});
    answerField(1000000000, kt, 100);
    client.initTime();
    // 100 less 250 is -150.
    auto const offset = static_cast<std::uint32_t>(-150 - 16683);
    EXPECT_EQ(record.take().back(), "setClock(" + std::to_string(1000000000 + 2 * kt) + "+" +
                                        std::to_string(offset) + ", " +
                                        std::to_string(33366U - offset) + ")");
}

TEST_F(TimeClient, AFrameThatIsAwayIsWaitedForAndToldOnce) {
    answer({0}, 20);
    answer({1, {1, 1}});
    answerField(1000000000, kt);
    client.initTime();
    auto const calls = record.take();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "sleep 1000"), 2);
    auto const lines = log.take();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "warning: First getSample failed in initTime"),
              1);
    EXPECT_EQ(lines.size(), 22U);
}

TEST_F(TimeClient, EveryHundredMeasurementsTheLinkIsLookedAt) {
    link.state = eNotConnected;
    client.mState = timeClient::Disconnected;
    answer({1, {1, 1}});
    answer({1, {9, 1}, 1}, 100 * 10);  // a hundred failed samples
    answer({1, {9, 1}, 1}, 10);
    answerField(1000000000, kt);
    client.initTime();
    EXPECT_EQ(log.take(), (Lines{"warning: WARNING: briefly lost UDP link at 10.0.0.2 on port 1506",
                                 "info: Field period set to 16683335 mKtms=16"}));
    auto const calls = record.take();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "remote 10.0.0.2:1506"), 1);
}

TEST_F(TimeClient, AnAdjustmentLeavesItsReckoningInTheLog) {
    client.setState(timeClient::Running);
    log.take();
    EXPECT_EQ(adjust({1000000000, 9000}, {1000000000, 1000}), 0);
    EXPECT_EQ(log.take(), (Lines{"info: t3-t2=8000  (fields=0)  - adjustment=8000 - "
                                 "mRunAverage=4000 ~setAdj(4)  microAdjust=4",
                                 "info: microAdjustment=4"}));
    EXPECT_EQ(record.take(), (Lines{"write", "read", "setAdjustment(4)", "adjustKtMicro(4)"}));
}

TEST_F(TimeClient, APanelBehindTheFrameIsNotSetForwardButTrimmed) {
    client.setState(timeClient::Running);
    log.take();
    EXPECT_EQ(adjust({1000000000, 1000}, {1000000000, 12999}), 0);
    EXPECT_EQ(log.take(), (Lines{"info: t3-t2=-11999  (fields=0)  - adjustment=0 - mRunAverage=0 "
                                 "~setAdj(0)  microAdjust=-5",
                                 "info: microAdjustment=4294967291"}));
    EXPECT_EQ(record.take(), (Lines{"write", "read", "setAdjustment(0)", "adjustKtMicro(-5)"}));
}

TEST_F(TimeClient, AFieldApartIsNoAdjustmentAndNothingIsLogged) {
    client.setState(timeClient::Running);
    log.take();
    struct {
        std::uint64_t panel, frame;
        int result;
    } const rows[] = {{1000000000 + kt, 1000000000, -1},
                      {1000000000, 1000000000 + kt, -1},
                      {1000000000 + kt - 1, 1000000000, 0},
                      {0, std::numeric_limits<std::uint64_t>::max(), -1}};
    for (auto const& row : rows) {
        SCOPED_TRACE(row.panel);
        EXPECT_EQ(adjust({row.panel, 0}, {row.frame, 0}), row.result);
        EXPECT_EQ(log.take().empty(), row.result != 0);
    }
}

TEST_F(TimeClient, WithoutASampleThereIsNoAdjustment) {
    EXPECT_EQ(client.adjustClock(), -1);
    for (auto const& call : record.take())
        EXPECT_FALSE(call.starts_with("setAdjustment")) << call;
}

TEST_F(TimeClient, TheAverageIsKeptInBoundsAndCountsWhatWasOutside) {
    client.setState(timeClient::Running);  // 0 to 16683
    for (int sampled = 1; sampled <= 3; ++sampled) {
        EXPECT_EQ(adjust({1000000000, 60000}, {1000000000, 0}), 0);
        EXPECT_EQ(client.getRunAverage(), 16683);
        EXPECT_EQ(client.getOutOfBoundsCount(), sampled);
    }
    EXPECT_EQ(adjust({1000000000, 0}, {1000000000, 0}), 0);
    EXPECT_EQ(client.getRunAverage(), 8341);
    EXPECT_EQ(client.getOutOfBoundsCount(), 2);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(adjust({1000000000, 0}, {1000000000, 0}), 0);
    EXPECT_EQ(client.getOutOfBoundsCount(), 0);
}

TEST_F(TimeClient, EachChangeOfStateIsTold) {
    struct {
        std::int32_t state, then;
        char const* line;
    } const rows[] = {{0, 0, "info: TimeClient changed state to Init"},
                      {1, 1, "info: TimeClient changed state to Sync"},
                      {2, 2, "info: TimeClient changed state to Running"},
                      {3, 3, "info: TimeClient changed state to Disconnected"},
                      {4, 0, "error: TimeClient state 4 not valid!"},
                      {-1, 0, "error: TimeClient state -1 not valid!"}};
    for (auto const& row : rows) {
        client.setState(row.state);
        EXPECT_EQ(log.take(), Lines{row.line});
        EXPECT_EQ(client.getState(), row.then);
    }
}

TEST_F(TimeClient, OnlySyncClearsTheAverageAndOnlyRunningTheTally) {
    client.setState(timeClient::Running);
    adjust({1000000000, 60000}, {1000000000, 0});
    client.setState(timeClient::Init);
    EXPECT_EQ(client.getRunAverage(), 16683);
    client.setState(timeClient::Running);
    EXPECT_EQ(client.getRunAverage(), 16683);
    EXPECT_EQ(client.getOutOfBoundsCount(), 0);
    adjust({1000000000, 60000}, {1000000000, 0});
    client.setState(timeClient::Sync);
    EXPECT_EQ(client.getRunAverage(), 0);
    EXPECT_EQ(client.getOutOfBoundsCount(), 1);
}

TEST_F(TimeClient, WithoutALinkARoundIsASleepOfASecond) {
    link.state = eConnectionLost;
    client.doRound();
    EXPECT_EQ(record.take(), (Lines{"sleep 1000"}));
    EXPECT_EQ(client.getState(), timeClient::Disconnected);
}

TEST_F(TimeClient, WithALinkItPointsTheConnectionAtTheFrameAndGoesToInit) {
    link.address = "10.0.0.7";
    client.doRound();
    EXPECT_EQ(record.take(),
              (Lines{"local 10.0.0.1:1506", "remote 10.0.0.7:1506", "receive time-out 100000"}));
    EXPECT_EQ(log.take(), (Lines{"info: TimeClient conntecting to 10.0.0.7 at UDP port 1506",
                                 "info: TimeClient changed state to Init"}));
    EXPECT_EQ(client.getState(), timeClient::Init);
}

TEST_F(TimeClient, InitMeasuresAndStays) {
    client.setState(timeClient::Init);
    for (int round = 0; round < 2; ++round) {
        answer({1, {1, 1}});
        answerField(1000000000, kt);
        client.doRound();
        EXPECT_EQ(record.take().back(), "sleep 10000");
        EXPECT_EQ(client.getState(), timeClient::Init);
    }
}

TEST_F(TimeClient, TheTenthGoodSampleInSyncMovesToRunning) {
    client.setState(timeClient::Sync);
    interrupt.readings = {{1000000000, 0}};
    for (int good = 1; good <= 10; ++good) {
        answer({1, {1000000000, 0}});
        EXPECT_EQ(client.getState(), timeClient::Sync);
        client.doRound();
        EXPECT_EQ(record.take().front(), "sleep 100");
    }
    EXPECT_EQ(client.getState(), timeClient::Running);
}

TEST_F(TimeClient, ABadSampleInSyncGoesToInit) {
    client.setState(timeClient::Sync);
    client.doRound();
    EXPECT_EQ(client.getState(), timeClient::Init);
}

TEST_F(TimeClient, FiveSamplesOutOfBoundsInRunningGoToInitAndFourDoNot) {
    client.setState(timeClient::Running);
    interrupt.readings = {{1000000000, 60000}};
    for (int outside = 1; outside <= 5; ++outside) {
        EXPECT_EQ(client.getState(), timeClient::Running);
        answer({1, {1000000000, 0}});
        client.doRound();
        EXPECT_EQ(record.take().front(), "sleep 2000");
        EXPECT_EQ(client.getOutOfBoundsCount(), outside);
    }
    EXPECT_EQ(client.getState(), timeClient::Init);
}

TEST_F(TimeClient, ABadSampleInRunningGoesToInit) {
    client.setState(timeClient::Running);
    client.doRound();
    EXPECT_EQ(client.getState(), timeClient::Init);
}

TEST_F(TimeClient, AnUnknownStateIsToldAndLeft) {
    client.mState = 7;
    client.doRound();
    EXPECT_EQ(log.take(), (Lines{"error: TimeKeeper state7not valid in run!",
                                 "info: TimeClient changed state to Init"}));
}

TEST_F(TimeClient, DisconnectedWhileRunningEndsTheTrimmingAndStartsOver) {
    client.setState(timeClient::Running);
    link.state = eConnectionLost;
    EXPECT_TRUE(client.disconnected());
    record.take();
    client.doRound();
    EXPECT_EQ(record.take(), (Lines{"sleep 1000"}));
    link.state = eConnected;
    client.doRound();
    EXPECT_EQ(client.getState(), timeClient::Init);
    EXPECT_EQ(record.take().size(), 3U);
}

TEST_F(TimeClient, RunOpensWaitsForABoundaryWorksUntilStoppedAndCloses) {
    link.state = eNotConnected;
    int left = 3;
    clock.onSleep = [&](long) {
        if (--left == 0)
            client.stop(nullptr);
    };
    client.run();
    EXPECT_EQ(record.take(),
              (Lines{"open", "waitOnEvent", "sleep 1000", "sleep 1000", "sleep 1000", "close"}));
}

TEST_F(TimeClient, AConnectionThatDoesNotOpenEndsTheThread) {
    connection->openResult = -1;
    client.run();
    EXPECT_EQ(record.take(), (Lines{"open"}));
}

TEST_F(TimeClient, AnExceptionOfTheOpeningEndsTheThreadWithALine) {
    connection->openError = true;
    client.start(nullptr);
    EXPECT_TRUE(client.waitUntilEnded(boost::posix_time::seconds(20)));
    EXPECT_EQ(log.take(), (Lines{"error: An exception ended the thread 'TimeClient': no socket"}));
}

TEST_F(TimeClient, AStopIsNotLookedAtUntilTheFrameAnswers) {
    int sleeps = 0;
    clock.onSleep = [&](long milliseconds) {
        if (milliseconds == 1000 && ++sleeps == 3) {
            answer({1, {1, 1}});
            answerField(1000000000, kt);
        }
    };
    client.setState(timeClient::Init);
    client.stop(nullptr);
    client.run();
    EXPECT_EQ(sleeps, 3);
    auto const calls = record.take();
    EXPECT_EQ(calls.back(), "close");
    EXPECT_EQ(calls.end()[-2], "sleep 10000");
}

TEST_F(TimeClient, TheDestructorEndsAThreadThatWaitsForADeadFrame) {
    auto parts = setup();
    parts.clock = nullptr;
    auto own = std::make_unique<OpenTimeClient>(std::move(parts));
    own->setState(timeClient::Init);
    own->start(nullptr);
    EXPECT_TRUE(log.waitFor("error: Packet read not successful: packetReadStatus=0 bytesRead=0", 3,
                            std::chrono::seconds(20)));
    own.reset();
    EXPECT_FALSE(log.has("error: timeClient not stopped!"));
}

TEST_F(TimeClient, TheDestructorTellsOfAThreadThatTakesItsTime) {
    auto own = std::make_unique<OpenTimeClient>(setup());
    std::atomic<bool> asleep{false};
    clock.onSleep = [&](long) {
        asleep = true;
        log.waitFor("error: timeClient not stopped!", 1, std::chrono::seconds(20));
    };
    link.state = eNotConnected;
    own->start(nullptr);
    while (!asleep)
        std::this_thread::yield();
    own.reset();
    EXPECT_TRUE(log.has("error: timeClient not stopped!"));
}

TEST_F(TimeClient, ThereIsOneInTheProcessAndItIsNotStartedByItsMaking) {
    record.take();
    EXPECT_EQ(getTimeClient(), nullptr);
    EXPECT_TRUE(createTimeClient(&link, &interrupt, "10.0.0.1", "10.0.0.2", 1506));
    auto* const first = getTimeClient();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(record.take(), (Lines{"enable"}));
    EXPECT_FALSE(createTimeClient(&link, &interrupt, "10.0.0.8", "10.0.0.9", 1));
    EXPECT_EQ(record.take(), Lines{});
    EXPECT_EQ(getTimeClient(), first);
    EXPECT_FALSE(first->isRunning());
    EXPECT_EQ(first->getName(), "TimeClient");
    EXPECT_EQ(first->getPeriod(), 1000000);
    EXPECT_EQ(first->getState(), timeClient::Disconnected);
    destroyTimeClient();
    EXPECT_EQ(getTimeClient(), nullptr);
}
