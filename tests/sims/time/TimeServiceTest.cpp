// The service over the loopback network. Waits for lines and datagrams, never for time.

#include "sims/time/TimeService.h"

#include "sims/time/DatagramSocket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace TimeSim {
namespace {

using std::chrono::hours;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::chrono::seconds patience{20};

class TimeServiceTest : public testing::Test {
  protected:
    void start(TimeServiceOptions options = {}) {
        service.emplace(std::move(options));
        service->start();
    }

    DatagramSocket panel() { return DatagramSocket::asking("127.0.0.1", service->port()); }

    static void ask(DatagramSocket& from, std::uint32_t number) {
        ASSERT_TRUE(from.send(writeRequest({7, number})));
    }

    /// The next datagram, whatever it is; empty if none comes.
    static std::optional<std::string> hear(DatagramSocket& by) {
        awaitReadable(by.handle(), -1, patience);
        auto datagram = by.receive();
        return datagram ? std::optional(std::move(datagram->bytes)) : std::nullopt;
    }
    /// The number echoed in the next datagram, a reply.
    static std::uint32_t heardNumber(DatagramSocket& by) {
        auto const reply = readReply(hear(by).value_or(""));
        return reply ? reply->echo.fieldOffset : 0;
    }

    void doom(TimeFault fault, std::size_t count = 1) {
        service->operate([&](TimeKeeper& keeper, Moment) { keeper.faults().doom(fault, count); });
    }

    /// The service's lines from the last one with this text on, without the panel's address.
    std::vector<std::string> told(DatagramSocket const& by) {
        auto const address = "127.0.0.1:" + std::to_string(by.port());
        auto texts = service->record().texts();
        for (auto& text : texts) {
            if (auto const at = text.find(address); at != std::string::npos) {
                text.replace(at, address.size(), "PANEL");
            }
        }
        return texts;
    }

    std::optional<TimeService> service;
};

TEST_F(TimeServiceTest, RepliesByTheMachinesClock) {
    auto const begin = steadyNow();
    start({.keeper = TimeKeeper(FieldClock(milliseconds(20), begin, begin))});
    auto asking = panel();
    auto const before = steadyNow();
    ask(asking, 5);
    auto const reply = readReply(hear(asking).value_or(""));
    auto const after = steadyNow();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->echo, (FieldTime{7, 5}));
    EXPECT_EQ((static_cast<std::int64_t>(reply->frame.fieldTime) - begin.count()) % 20000000, 0);
    EXPECT_GE(reply->frame.nanoseconds(), (before - microseconds(1)).count());
    EXPECT_LE(reply->frame.nanoseconds(), after.count());
}

TEST_F(TimeServiceTest, TellsEveryDatagram) {
    // The clock stands at 0.
    start(
        {.keeper = TimeKeeper(FieldClock(milliseconds(20), hours(1000000))), .sumEvery = hours(1)});
    auto asking = panel();
    doom(TimeFault::lost);
    doom(TimeFault::wrongEcho);
    ask(asking, 1);
    ask(asking, 2);
    EXPECT_EQ(heardNumber(asking), 3U);  // the wrong echo of 2
    ASSERT_TRUE(asking.send("what?"));
    ASSERT_TRUE(service->record().waitFor("no request"));
    ASSERT_TRUE(asking.send(writeRequest({0xFFFFFFFFFFFFFFFFU, 0xFFFFFFFFU})));
    ASSERT_TRUE(service->record().waitFor("time-reply", 2));
    service->stop();
    EXPECT_THAT(
        told(asking),
        ElementsAre("time-listening address=127.0.0.1 port=" + std::to_string(service->port()) +
                        " period=20000000",
                    "time-panel from=PANEL", "time-request from=PANEL fieldTime=7 fieldOffset=1",
                    "time-silence to=PANEL reason=\"lost\"",
                    "time-request from=PANEL fieldTime=7 fieldOffset=2",
                    "time-reply to=PANEL fieldTime=0 fieldOffset=0 faults=wrong-echo",
                    "time-silence to=PANEL reason=\"no request: 5 bytes\"",
                    "time-request from=PANEL fieldTime=18446744073709551615 "
                    "fieldOffset=4294967295",
                    "time-reply to=PANEL fieldTime=0 fieldOffset=0",
                    "time-traffic datagrams=4 replies=2 faulty=1 silences=2", "time-stopped"));
}

TEST_F(TimeServiceTest, TellsOnlyTheFirstOfAPanelAndASum) {
    start({.telling = Telling::few, .sumEvery = hours(1)});
    auto first = panel(), second = panel();
    for (std::uint32_t number = 1; number <= 50; ++number) {
        ask(first, number);
        EXPECT_EQ(heardNumber(first), number);
    }
    ask(second, 1);
    EXPECT_EQ(heardNumber(second), 1U);
    service->stop();
    auto const texts = told(first);
    ASSERT_EQ(texts.size(), 5U);
    EXPECT_EQ(texts[1], "time-panel from=PANEL");
    EXPECT_EQ(texts[2], "time-panel from=127.0.0.1:" + std::to_string(second.port()));
    EXPECT_EQ(texts[3], "time-traffic datagrams=51 replies=51 faulty=0 silences=0");
}

TEST_F(TimeServiceTest, TheSumComesByItselfToo) {
    start({.telling = Telling::few, .sumEvery = milliseconds(1)});
    auto asking = panel();
    ask(asking, 1);
    EXPECT_TRUE(service->record().waitFor("time-traffic datagrams=1 replies=1"));
}

TEST_F(TimeServiceTest, MayTellNothing) {
    start({.telling = Telling::none, .sumEvery = milliseconds(1)});
    auto asking = panel();
    ask(asking, 1);
    EXPECT_EQ(heardNumber(asking), 1U);
    service->tell(Telling::all);
    ask(asking, 2);
    EXPECT_TRUE(service->record().waitFor("time-request"));
    EXPECT_EQ(service->record().count("time-request"), 1U);
    EXPECT_EQ(service->record().count("time-panel"), 0U);
}

TEST_F(TimeServiceTest, RepliesGoInTheirOrder) {
    start();
    auto asking = panel();
    ask(asking, 1);
    EXPECT_EQ(heardNumber(asking), 1U);
    doom(TimeFault::held);
    doom(TimeFault::stale);
    ask(asking, 2);
    ASSERT_TRUE(service->record().waitFor("reason=\"held\""));
    ask(asking, 3);
    EXPECT_EQ(heardNumber(asking), 2U);  // stale
    EXPECT_EQ(heardNumber(asking), 3U);
    EXPECT_EQ(heardNumber(asking), 2U);  // held
}

TEST_F(TimeServiceTest, OtherLengthsAreSentAsTheyAre) {
    start();
    auto asking = panel();
    doom(TimeFault::cut, 20);
    doom(TimeFault::stretched, 20);
    for (std::uint32_t number = 1; number <= 40; ++number) {
        ask(asking, number);
        auto const heard = hear(asking);
        ASSERT_TRUE(heard.has_value());
        EXPECT_EQ(heard->size() < datagramSize, number <= 20);
        EXPECT_NE(heard->size(), datagramSize);
    }
    EXPECT_TRUE(service->record().waitFor(" bytes=", 40));
}

TEST_F(TimeServiceTest, ADelayedReplyComesNoEarlier) {
    start();
    service->operate([](TimeKeeper& keeper, Moment) {
        keeper.faults().setDelays({milliseconds(10), milliseconds(20), nanoseconds(0)});
    });
    auto asking = panel();
    auto const before = steadyNow();
    ask(asking, 1);
    EXPECT_EQ(heardNumber(asking), 1U);
    EXPECT_GE(steadyNow() - before, milliseconds(30));
}

TEST_F(TimeServiceTest, AReplyWithLessDelayOvertakes) {
    start();
    auto asking = panel();
    service->operate([](TimeKeeper& keeper, Moment) {
        keeper.faults().setDelays({{}, hours(1), {}});
    });
    ask(asking, 1);
    ASSERT_TRUE(service->record().waitFor("time-request"));
    service->operate([](TimeKeeper& keeper, Moment) { keeper.faults().setDelays({}); });
    ask(asking, 2);
    EXPECT_EQ(heardNumber(asking), 2U);
}

TEST_F(TimeServiceTest, OnlySoManyRepliesWait) {
    start({.queueLimit = 2});
    service->operate([](TimeKeeper& keeper, Moment) {
        keeper.faults().setDelays({{}, hours(1), {}});
    });
    auto asking = panel();
    for (std::uint32_t number = 1; number <= 3; ++number) {
        ask(asking, number);
    }
    EXPECT_TRUE(service->record().waitFor("reason=\"too many replies wait\""));
    service->stop();  // at once, whatever waits
    EXPECT_EQ(service->record().count("time-reply"), 0U);
}

TEST_F(TimeServiceTest, ManyPanelsAtOnceAllGetTheirReplies) {
    start({.telling = Telling::none});
    constexpr int panels = 4;
    std::vector<int> good(panels);
    std::vector<std::thread> threads;
    for (int index = 0; index < panels; ++index) {
        threads.emplace_back([this, &good, index] {
            auto asking = panel();
            for (std::uint32_t number = 1; number <= 100; ++number) {
                ask(asking, number);
                good[static_cast<std::size_t>(index)] += heardNumber(asking) == number ? 1 : 0;
            }
        });
    }
    for (int count = 0; count < 100; ++count) {
        service->operate([](TimeKeeper& keeper, Moment now) { keeper.clock().setDrift(now, 5); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, std::vector<int>(panels, 100));
}

TEST_F(TimeServiceTest, StopsAndStartsOnTheSamePort) {
    start();
    auto const port = service->port();
    service->start();  // it runs already
    service->stop();
    service->stop();
    service->start();
    EXPECT_EQ(service->port(), port);
    auto asking = panel();
    ask(asking, 1);
    EXPECT_EQ(heardNumber(asking), 1U);
}

TEST_F(TimeServiceTest, APortInUseIsNamed) {
    start();
    TimeService other({.port = service->port()});
    try {
        other.open();
        FAIL();
    } catch (FrameSim::StartError const& error) {
        EXPECT_EQ(std::string(error.what()),
                  "cannot listen on 127.0.0.1:" + std::to_string(service->port()) +
                      ": Address already in use");
    }
    TimeService nowhere({.address = "no address"});
    EXPECT_THROW(nowhere.start(), FrameSim::StartError);
    EXPECT_TRUE(nowhere.record().texts().empty());
}

}  // namespace
}  // namespace TimeSim
