#include "StandInTest.h"

#include <atomic>
#include <future>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using namespace cplwire;
using namespace std::string_literals;

class Loss : public StandInTest {};

std::string rawMessage(int type, std::string const& body) {
    auto const length = 5 + body.size();
    return "\0\0"s + static_cast<char>(length >> 8U) + static_cast<char>(length) +
           static_cast<char>(type) + "\0\0\0\0"s + body;
}

TEST_F(Loss, BytesThatMakeNoSenseEndTheConnectionWithOneLine) {
    struct Row {
        std::string bytes;
        std::string reason;
    };
    auto const bytes = [](auto const& message) { return ScriptedFrame::bytesOf(message); };
    std::string const impossible = "a message of impossible length";
    std::string const nonsense = "a message that makes no sense";
    std::vector<Row> const rows = {
        {"\0\0\0\0"s, impossible},
        {"\0\0\0\4"s, impossible},
        {"\0\x10\0\1"s, impossible},  // one more than the bound
        {"\xff\xff\xff\xff", impossible},
        {"GET / HTTP/1.1\r\n", impossible},
        {rawMessage(0, ""), nonsense},
        {rawMessage(99, "abc"), nonsense},
        {rawMessage(255, ""), nonsense},
        {rawMessage(20, "\0\0\0"s), nonsense},                     // an acknowledgement, too short
        {rawMessage(20, "\0\0\0\0\0"s), nonsense},                 // and too long
        {rawMessage(30, "\0\1\0\1\0\0\0\1\0\1\0\2x"s), nonsense},  // an update, cut off
        {rawMessage(30, "\0\1\0\1\0\0\0\1\0\1\0\2xyz"s), nonsense},  // and one with more behind it
        {rawMessage(31, ""), nonsense},
        {rawMessage(32, "\0"s), nonsense},
        {rawMessage(40, "x"), nonsense},
        {rawMessage(41, "x"), nonsense},
        {bytes(Hello{}), nonsense},
        {bytes(Welcome{}), nonsense},
        {bytes(Refusal{}), nonsense},
        {bytes(Set{}), nonsense},
        {bytes(Bye{}), "the frame said goodbye"},
    };
    frame.listen();
    for (auto const& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        LogLines lines;
        ASSERT_TRUE(connect());
        // What comes behind doesn't count any more.
        frame.sendBytes(row.bytes + bytes(Bye{}) + row.bytes);
        EXPECT_TRUE(frame.waitForEnd());
        EXPECT_EQ(lines.all(), Texts{"warning: connection lost: " + row.reason});
        EXPECT_EQ(client().getConnectionState(), eConnectionLost);
        EXPECT_TRUE(client().disconnect());
        EXPECT_EQ(client().getConnectionState(), eNotConnected);
    }
}

TEST_F(Loss, EveryWayAConnectionMayEndHasItsLine) {
    frame.listen();
    ASSERT_TRUE(connect());
    frame.closeConnection();
    ASSERT_TRUE(log.waitForCount(1));
    client().disconnect();
    ASSERT_TRUE(connect());
    frame.cut();
    ASSERT_TRUE(log.waitForCount(2));
    EXPECT_EQ(log.all(), (Texts{"warning: connection lost: the frame closed it",
                                "warning: connection lost: the socket failed"}));
}

TEST_F(Loss, AFrozenFrameIsFound) {
    static_assert(ClientTimings().silenceLimit + ClientTimings().pingAfter < 3s);
    timings.pingAfter = 50ms;
    timings.silenceLimit = 200ms;
    listenAndConnect();
    frame.freeze();
    EXPECT_EQ(log.waitForOne(), "warning: connection lost: the frame is silent");
    EXPECT_EQ(client().getConnectionState(), eConnectionLost);
}

TEST_F(Loss, AFrameThatIsOnlyQuietIsNot) {
    timings.pingAfter = 5ms;
    std::atomic<int> pings{0};
    Gate enough;
    Ending const ending(*this);
    frame.setScript([&](RawMessage const& message) -> std::optional<std::string> {
        if (message.type == Type::Ping && ++pings == 10)
            enough.open();
        return std::nullopt;
    });
    listenAndConnect();
    EXPECT_TRUE(enough.wait());
    EXPECT_EQ(client().getConnectionState(), eConnected);
    EXPECT_EQ(log.all(), Texts{});
}

TEST_F(Loss, NewsIsASignOfLifeAsGoodAsAPong) {
    timings.pingAfter = 20ms;
    timings.silenceLimit = 400ms;
    int pings = 0;
    auto const id = enroll();
    Ending const ending(*this);
    frame.setScript([&](RawMessage const& message) -> std::optional<std::string> {
        if (message.type != Type::Ping)
            return std::nullopt;
        return ScriptedFrame::bytesOf(update(id, static_cast<std::uint16_t>(++pings)));
    });
    listenAndConnect();
    EXPECT_GE(heard->waitFor(40).size(), 40U);  // twice the limit, at least
    EXPECT_EQ(log.all(), Texts{});
}

TEST_F(Loss, ThePingOfAFrameIsAnswered) {
    std::atomic<std::uint32_t> answered{0};
    Ending const ending(*this);
    frame.setScript([&](RawMessage const& message) -> std::optional<std::string> {
        if (message.type == Type::Pong)
            answered = message.sequence;
        return std::nullopt;
    });
    listenAndConnect();
    frame.send(Ping{}, 0xA1B2C3D4);
    EXPECT_TRUE(frame.waitFor("pong"));
    EXPECT_EQ(answered, 0xA1B2C3D4);
}

TEST_F(Loss, WhoWaitsForAnAcknowledgementIsToldAtOnce) {
    frame.setScript([](RawMessage const& message) {
        return message.type == Type::Set ? std::optional(std::string()) : std::nullopt;
    });
    listenAndConnect();
    client().setSendTimeOut(60000);
    auto waiting = std::async(std::launch::async, [this] { return setNumber(1); });
    ASSERT_EQ(frame.waitForMessages(2).size(), 2U);
    frame.cut();
    ASSERT_EQ(waiting.wait_for(patience), std::future_status::ready);
    EXPECT_EQ(waiting.get(), eStatusNotConnected);
}

TEST_F(Loss, ADisconnectLetsTheFrameCloseFirst) {
    listenAndConnect();
    EXPECT_TRUE(client().disconnect());
    EXPECT_TRUE(frame.waitForEnd());
    EXPECT_EQ(frame.waitForMessages(2), (Texts{"hello 1 stand-in", "bye"}));
    EXPECT_FALSE(frame.endedByReset());
    EXPECT_EQ(log.all(), Texts{});
}

TEST_F(Loss, AFrameThatDoesntCloseAfterAByeIsResetInTheEnd) {
    timings.byeLimit = 20ms;
    frame.setScript([](RawMessage const& message) {
        return message.type == Type::Bye ? std::optional(std::string()) : std::nullopt;
    });
    listenAndConnect();
    EXPECT_TRUE(client().disconnect());
    EXPECT_TRUE(frame.waitForEnd());
    EXPECT_TRUE(frame.endedByReset());
    EXPECT_EQ(log.all(), Texts{});
}

}  // namespace
