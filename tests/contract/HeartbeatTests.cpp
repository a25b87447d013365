// The promise that a panel relies on, with the times that it really has.
#include "Sockets.h"
#include "StandInTest.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class Heartbeat : public StandInTest {
  protected:
    // Of a client that has the times it comes with.
    std::string lossWithin(Clock::duration limit) {
        auto const before = Clock::now();
        auto const line = log.waitForOne();
        EXPECT_LT(Clock::now() - before, limit);
        EXPECT_EQ(client().getConnectionState(), eConnectionLost);
        return line;
    }
};

TEST_F(Heartbeat, AFrameThatFreezesIsFoundInLessThanThreeSeconds) {
    listenAndConnect();
    EXPECT_EQ(setNumber(1), eStatusOk);
    frame.freeze();
    EXPECT_EQ(lossWithin(3s), "warning: connection lost: the frame is silent");
}

// Senders fill the sockets, time out, and must not keep the heart from being heard.
TEST_F(Heartbeat, SoItIsWhileOthersAreSending) {
    listenAndConnect();
    client().setSendTimeOut(20);
    std::string const text(60000, 'x');
    std::atomic<int> sent{0};
    auto const send = [&] {
        Status status = eStatusOk;
        while (status == eStatusOk || status == eStatusTimeOut) {
            status = client().set(PIDType(7), 1, eSetAbsolute, text.c_str(), 0);
            ++sent;
        }
        return status;
    };
    auto first = std::async(std::launch::async, send);
    auto second = std::async(std::launch::async, send);
    frame.freeze();
    EXPECT_EQ(lossWithin(3s).substr(0, 26), "warning: connection lost: ");
    EXPECT_EQ(first.get(), eStatusNotConnected);
    EXPECT_EQ(second.get(), eStatusNotConnected);
    EXPECT_EQ(log.all().size(), 1U);
}

// A ping that waited for the sender's turn would keep the reading thread from reading.
TEST_F(Heartbeat, NewsIsHeardWhileASenderIsStuck) {
    timings.pingAfter = 5ms;
    timings.silenceLimit = timings.writeLimit = 600s;
    auto const id = enroll();
    listenAndConnect();
    client().setSendTimeOut(0);
    frame.freeze();
    std::atomic<int> sent{0};
    auto stuck = std::async(std::launch::async, [&] {
        std::string const text(60000, 'x');
        while (client().set(PIDType(7), 1, eSetAbsolute, text.c_str(), 0) == eStatusOk)
            ++sent;
    });
    for (int before = -1; before != sent;) {
        before = sent;
        std::this_thread::sleep_for(100ms);  // it is stuck when nothing has happened for so long
    }
    frame.send(update(id, 1));
    EXPECT_EQ(heard->waitFor(1).size(), 1U);
    frame.cut();
    stuck.get();
}

TEST_F(Heartbeat, AFrameThatNeverAnswersTheGreetingIsGivenUpAfterASecond) {
    frame.freeze();
    frame.listen();
    auto const before = Clock::now();
    EXPECT_FALSE(connect());
    EXPECT_GE(Clock::now() - before, 900ms);
    EXPECT_LT(Clock::now() - before, 2s);
}

// With its queue full the system drops what would begin another connection, as an absent host
// drops everything.
TEST_F(Heartbeat, SoIsAHostThatDoesNotAnswerAtAll) {
    auto const listener = boundSocket();
    ASSERT_EQ(::listen(listener.get(), 0), 0);
    auto const target = std::to_string(portOf(listener));
    timings.connectLimit = 200ms;
    std::vector<std::unique_ptr<CPLClient>> crowd;
    std::vector<std::future<bool>> attempts;
    for (int i = 0; i < 4; ++i) {
        crowd.push_back(std::make_unique<CPLClient>("crowd"));
        ASSERT_TRUE(crowd.back()->open(here, 0));
        attempts.push_back(std::async(std::launch::async, [&, own = crowd.back().get()] {
            return own->connect(here, portOf(listener));
        }));
    }
    for (auto& attempt : attempts)
        EXPECT_FALSE(attempt.get());
    auto const lines = log.all();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_NE(std::count(lines.begin(), lines.end(),
                         "info: no connection to 127.0.0.1:" + target + ": connect: no answer"),
              0);
}

}  // namespace
