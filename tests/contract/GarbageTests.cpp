// A frame that sends nonsense: the connection is over, with one line, whatever the nonsense is.
#include "StandInTest.h"
#include "sims/frame/FrameServer.h"
#include "sims/frame/ModelFile.h"

#include <random>
#include <string>

namespace {

using namespace cplwire;
using namespace std::string_literals;
using FrameSim::Garbage;

class Nonsense : public StandInTest {
  protected:
    std::string randomBytes(std::size_t count) {
        std::string bytes;
        while (bytes.size() < count)
            bytes += static_cast<char>(random() % 3 == 0 ? random() : random() % 16);
        return bytes;
    }
    static std::string news() {
        auto const bytes = [](auto const& message) { return ScriptedFrame::bytesOf(message); };
        ParameterUpdate update;
        update.callback = 1;
        update.dataType = 2;
        update.value = std::string_view("\0\1", 2);
        auto const payload = "\0\x17\0\1\x35\0\0\0"s;
        return bytes(update) + bytes(Acknowledge{}) + bytes(ListUpdate{0, payload}) +
               bytes(Ping{}) + bytes(update) + bytes(Pong{});
    }
    /// Sends them and hangs up. Somewhere on the way the client has had enough, or at the end.
    void expectOneLine(std::string const& bytes) {
        LogLines lines;
        ASSERT_TRUE(connect());
        frame.sendBytes(bytes);
        frame.closeConnection();
        EXPECT_TRUE(frame.waitForEnd());
        ASSERT_TRUE(lines.waitForCount(1));
        EXPECT_TRUE(client().disconnect());
        ASSERT_EQ(lines.all().size(), 1U) << testing::PrintToString(lines.all());
        EXPECT_EQ(lines.all()[0].find("warning: connection lost: "), 0U) << lines.all()[0];
    }

    std::mt19937 random{2024};
};

TEST_F(Nonsense, RandomBytesAreOneLine) {
    frame.listen();
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        expectOneLine(randomBytes(1 + random() % 300));
    }
}

TEST_F(Nonsense, NewsWithSpoiledBytesIsOneLine) {
    frame.listen();
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        auto bytes = news();
        for (auto spoiled = 1 + random() % 4; spoiled > 0; --spoiled)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        expectOneLine(bytes);
    }
}

TEST_F(Nonsense, NewsThatEndsAtAnyByteIsOneLine) {
    frame.listen();
    auto const bytes = news();
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        SCOPED_TRACE(size);
        expectOneLine(bytes.substr(0, size));
    }
}

TEST_F(Nonsense, RandomAnswersToTheGreetingAreNoConnectionAndOneLine) {
    std::string answer;
    Ending const ending(*this);
    frame.setScript([&](RawMessage const&) { return answer; });
    frame.listen();
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        // A length that can be, of a message that isn't whole, would only be waited for.
        answer = "\0\0\0"s + static_cast<char>(5 + random() % 20) + randomBytes(60);
        answer[4] = static_cast<char>(3 + random() % 250);
        LogLines lines;
        EXPECT_FALSE(connect());
        EXPECT_TRUE(frame.waitForEnd());
        ASSERT_EQ(lines.all().size(), 1U) << testing::PrintToString(lines.all());
        EXPECT_EQ(lines.all()[0].find("info: no connection to "), 0U) << lines.all()[0];
    }
}

/// The simulator's own kinds of nonsense.
class SimulatedNonsense : public ::testing::Test {
  protected:
    static FrameSim::FrameServerOptions options() {
        FrameSim::FrameServerOptions given;
        given.model = FrameSim::sampleSwitcher();
        return given;
    }
    void SetUp() override {
        server.start();
        ASSERT_TRUE(client.open("127.0.0.1", 0));
    }
    bool connect() { return client.connect("127.0.0.1", server.port()); }

    FrameSim::FrameServer server{options()};
    CPLClient client{"panel"};
};

TEST_F(SimulatedNonsense, OfEveryKindEndsTheConnectionWithOneLine) {
    for (auto const kind : {Garbage::random, Garbage::length, Garbage::version, Garbage::type}) {
        SCOPED_TRACE(static_cast<int>(kind));
        LogLines lines;
        ASSERT_TRUE(connect());
        EXPECT_EQ(server.sendGarbage(kind), 1U);
        auto const expected = kind == Garbage::version || kind == Garbage::type
                                  ? "a message that makes no sense"
                                  : "a message of impossible length";
        EXPECT_TRUE(lines.waitFor("warning: connection lost: "s + expected));
        EXPECT_EQ(client.getConnectionState(), eConnectionLost);
        EXPECT_TRUE(client.disconnect());
        EXPECT_EQ(lines.all().size(), 1U);
    }
}

TEST_F(SimulatedNonsense, AWelcomeByAnotherVersionIsNoConnection) {
    LogLines lines;
    server.welcomeVersion(2);
    EXPECT_FALSE(connect());
    ASSERT_EQ(lines.all().size(), 1U);
    EXPECT_NE(lines.all()[0].find("that is no frame of this protocol's version"),
              std::string::npos);
    server.welcomeVersion(std::nullopt);
    EXPECT_TRUE(connect());
}

}  // namespace
