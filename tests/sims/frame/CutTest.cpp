// A connection ends at any byte of any message, exactly there.
#include "ServerFixture.h"
#include "sims/frame/StreamMeter.h"

#include <numeric>

namespace FrameSim {
namespace {

std::string message(std::size_t bodySize) {
    std::string const rest(5 + bodySize, 'x');
    return std::string(3, '\0') + static_cast<char>(rest.size()) + rest;
}

TEST(StreamMeter, CountsMessagesInAnyPieces) {
    auto const stream = message(0) + message(7) + message(100);
    for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
        StreamMeter meter;
        for (std::size_t at = 0; at < stream.size(); at += piece) {
            auto const some = std::string_view(stream).substr(at, piece);
            EXPECT_EQ(meter.pass(some), some.size());
        }
        EXPECT_EQ(meter.crossed().messages, 3U) << piece;
        EXPECT_EQ(meter.crossed().bytes, stream.size()) << piece;
        EXPECT_EQ(meter.crossed().lengths, (std::vector<std::uint32_t>{9, 16, 109})) << piece;
    }
}

TEST(StreamMeter, CutsAtEachByteInAnyPieces) {
    auto const stream = message(0) + message(7) + message(1);
    std::size_t const starts[] = {0, 9, 25};
    std::size_t const lengths[] = {9, 16, 10};
    for (std::size_t index = 0; index < 3; ++index) {
        for (std::size_t byte = 0; byte <= lengths[index] + 3; ++byte) {
            for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
                StreamMeter meter;
                ASSERT_TRUE(meter.cutAt(index + 1, byte));
                std::size_t passed = 0;
                for (std::size_t at = 0; at < stream.size(); at += piece) {
                    passed += meter.pass(std::string_view(stream).substr(at, piece));
                }
                EXPECT_EQ(passed, starts[index] + std::min(byte, lengths[index]));
                EXPECT_TRUE(meter.isCut());
            }
        }
    }
}

TEST(StreamMeter, APlaceThatIsPastIsNone) {
    StreamMeter meter;
    meter.pass(message(7) + message(7).substr(0, 5));
    EXPECT_FALSE(meter.cutAt(1, 3));
    EXPECT_FALSE(meter.cutAt(2, 4));
    EXPECT_TRUE(meter.cutAt(2, 5));
    EXPECT_EQ(meter.pass({}), 0U);
    EXPECT_TRUE(meter.isCut());
    EXPECT_FALSE(meter.cutAt(9, 0));
}

TEST(StreamMeter, BytesThatAreNoMessagesAreOnlyCounted) {
    StreamMeter meter;
    EXPECT_EQ(meter.pass("\xff\xff\xff\xff and so on"), 14U);
    EXPECT_EQ(meter.pass("more"), 4U);
    EXPECT_EQ(meter.crossed().messages, 0U);
    EXPECT_EQ(meter.crossed().bytes, 18U);
    EXPECT_FALSE(meter.cutAt(1, 0));
}

TEST(StreamMeter, KeepsALimitedNumberOfLengths) {
    StreamMeter meter;
    for (std::size_t i = 0; i < Crossed::lengthsKept + 10; ++i) {
        meter.pass(message(0));
    }
    EXPECT_EQ(meter.crossed().messages, Crossed::lengthsKept + 10);
    EXPECT_EQ(meter.crossed().lengths.size(), Crossed::lengthsKept);
}

class ACut : public ServerTest {
  protected:
    void SetUp() override { start(); }

    /// Greets, subscribes and sets, all in one piece.
    std::unique_ptr<TestClient> talk() {
        server->frame().assign({10, program1}, word(1));
        auto client = std::make_unique<TestClient>(server->port());
        ++connections;
        std::string bytes;
        cplwire::Hello hello;
        hello.name = "p";
        cplwire::encode(bytes, hello, 1);
        cplwire::encode(bytes, cplwire::SubscribeParameter{10, program1, 7, 3}, 1);
        cplwire::encode(bytes, cplwire::Set{10, program1, 0, 2, std::string_view("\0\x05", 2)}, 2);
        client->sendBytes(bytes);
        return client;
    }
    /// What comes of it to the end.
    std::string talkToTheEnd() {
        auto heard = talk()->bytesUntilClosed();
        EXPECT_TRUE(told("#" + std::to_string(connections) + " closed"));
        return heard;
    }
    /// What crosses if nothing is cut.
    ConnectionCount reference() {
        auto const client = talk();
        EXPECT_EQ(client->news(), "welcome sample switcher");
        EXPECT_EQ(client->news(), "update 7 10 24000000 1");
        EXPECT_EQ(client->news(), "update 7 10 24000000 5");
        auto const all = server->crossed();
        EXPECT_TRUE(all.back().open);
        EXPECT_EQ(all.back().toPanel.messages, 5U);
        EXPECT_EQ(all.back().fromPanel.messages, 3U);
        return all.back();
    }
    ConnectionCount lastCount() {
        auto all = server->crossed();
        EXPECT_FALSE(all.empty());
        EXPECT_FALSE(all.back().open);
        return all.back();
    }
    /// The stream's bytes ahead of that place.
    static std::size_t bytesAhead(Crossed const& whole, std::size_t number, std::size_t byte) {
        return std::accumulate(whole.lengths.begin(),
                               whole.lengths.begin() + static_cast<std::ptrdiff_t>(number - 1),
                               byte);
    }
    std::uint32_t connections = 0;
};

TEST_F(ACut, ToThePanelLetsExactlySoManyBytesCross) {
    auto const whole = reference().toPanel;
    std::string all;
    for (std::size_t number = whole.messages; number > 0; --number) {
        for (std::size_t byte = whole.lengths[number - 1] + 1; byte-- > 0;) {
            SCOPED_TRACE(std::to_string(number) + ", byte " + std::to_string(byte));
            ASSERT_TRUE(server->cut({.way = Way::toPanel, .message = number, .byte = byte}));
            auto const heard = talkToTheEnd();
            if (all.empty()) {
                all = heard;
                ASSERT_EQ(all.size(), whole.bytes);
            }
            auto const ahead = bytesAhead(whole, number, byte);
            ASSERT_EQ(heard, all.substr(0, ahead));
            EXPECT_EQ(lastCount().toPanel.bytes, ahead);
            EXPECT_TRUE(told("#" + std::to_string(connections) + " closed reason=\"cut at byte " +
                             std::to_string(byte) + " of message " + std::to_string(number) +
                             " to the panel\""));
        }
    }
}

TEST_F(ACut, FromThePanelLetsExactlySoManyBytesCross) {
    auto const whole = reference().fromPanel;
    for (std::size_t number = 1; number <= whole.messages; ++number) {
        for (std::size_t byte = 0; byte <= whole.lengths[number - 1]; ++byte) {
            SCOPED_TRACE(std::to_string(number) + ", byte " + std::to_string(byte));
            ASSERT_TRUE(server->cut({.way = Way::fromPanel, .message = number, .byte = byte}));
            talkToTheEnd();
            auto const count = lastCount();
            EXPECT_EQ(count.fromPanel.bytes, bytesAhead(whole, number, byte));
            bool const isWhole = byte == whole.lengths[number - 1];
            auto const messages = isWhole ? number : number - 1;
            EXPECT_EQ(count.fromPanel.messages, messages);
            // Each message that has crossed whole is dealt with and answered: by one, two, two.
            EXPECT_EQ(count.toPanel.messages, messages == 0 ? 0 : 2 * messages - 1);
            EXPECT_EQ(server->frame().value({10, program1}), word(messages == 3 ? 5 : 1));
            EXPECT_TRUE(told("#" + std::to_string(connections) + " closed reason=\"cut at byte " +
                             std::to_string(byte) + " of message " + std::to_string(number) +
                             " from the panel\""));
        }
    }
}

TEST_F(ACut, MayBeOrderedForAConnectionThatStandsOrWillCome) {
    EXPECT_TRUE(server->cut({.message = 2, .byte = 0, .client = 2}));
    auto const first = panel();
    auto const second = panel();
    EXPECT_TRUE(server->cut({.way = Way::fromPanel, .message = 3, .byte = 2, .client = 1}));
    EXPECT_FALSE(server->cut({.message = 1, .byte = 5, .client = 1})) << "the welcome has crossed";
    EXPECT_EQ(first->subscribe(10, program1, 4), 0);
    first->send(cplwire::Ping{});
    EXPECT_EQ(first->news(), "closed");
    EXPECT_FALSE(server->cut({.message = 9, .byte = 0, .client = 1})) << "it is no more";
    EXPECT_EQ(second->news(), "closed");
}

TEST_F(ACut, OfTheNextConnectionsMayWaitInALimitedNumber) {
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(server->cut({.message = 1, .byte = 0, .client = 100000}));
    }
    EXPECT_FALSE(server->cut({.message = 1, .byte = 0, .client = 100000}));
    server->heal();
    EXPECT_TRUE(server->cut({.message = 1, .byte = 0, .client = 100000}));
}

TEST_F(ACut, LeavesTheOthersAlone) {
    auto const other = panel("bystander");
    ++connections;
    ASSERT_TRUE(server->cut({.message = 2, .byte = 4}));
    talkToTheEnd();
    EXPECT_EQ(other->subscribe(10, program1, 3), 0);
    EXPECT_EQ(other->news(), "update 7 10 24000000 5");
}

TEST_F(ACut, CountsOfEndedConnectionsAreKeptForSixtyFour) {
    for (int i = 0; i < 70; ++i) {
        panel()->close();
        EXPECT_TRUE(told("#" + std::to_string(i + 1) + " closed"));
    }
    auto const last = panel();
    auto const all = server->crossed();
    ASSERT_EQ(all.size(), 65U);
    EXPECT_EQ(all.front().client, 7U);
    EXPECT_EQ(all.back().client, 71U);
}

}  // namespace
}  // namespace FrameSim
