#include "Sockets.h"
#include "StandInTest.h"

#include <future>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using namespace cplwire;
using namespace std::string_literals;

class Handshake : public StandInTest {
  protected:
    std::string failure(std::string const& reason) const {
        return "info: no connection to 127.0.0.1:" + std::to_string(frame.port()) + ": " + reason;
    }
};

std::string prefix(std::uint32_t length) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(length >> shift);
    return bytes;
}

TEST_F(Handshake, TheClientSaysItsName) {
    frame.listen();
    client().setName("panel \x92");
    EXPECT_TRUE(connect());
    EXPECT_TRUE(client().disconnect());
    client().setName("");
    EXPECT_TRUE(connect());
    EXPECT_EQ(frame.waitForMessages(3), (Texts{"hello 1 panel \x92", "bye", "hello 1 "}));
}

TEST_F(Handshake, ANameThatDoesNotFitIsCut) {
    frame.listen();
    client().setName(std::string(100000, 'x'));
    EXPECT_TRUE(connect());
    EXPECT_EQ(frame.waitForMessages(1), Texts{"hello 1 " + std::string(499, 'x')});
}

TEST_F(Handshake, LeavesFromTheAddressAndPortGiven) {
    frame.listen();
    CPLClient bound("bound");
    auto const port = freePort("127.0.0.2");
    ASSERT_TRUE(bound.open("127.0.0.2", port));
    ASSERT_TRUE(bound.connect(here, frame.port()));
    EXPECT_EQ(frame.peer(), "127.0.0.2:" + std::to_string(port));
}

TEST_F(Handshake, ALocalAddressThatCantBeReadIsNoOpening) {
    for (char const* address : {"panel", "1.2.3", "127.0.0.1 ", "::1"}) {
        CPLClient unopened("x");
        EXPECT_FALSE(unopened.open(address, 0));
        EXPECT_FALSE(unopened.connect(here, frame.port()));
    }
    EXPECT_EQ(log.all(), (Texts{
                             "error: the local address 'panel' can't be read",
                             "error: the local address '1.2.3' can't be read",
                             "error: the local address '127.0.0.1 ' can't be read",
                             "error: the local address '::1' can't be read",
                         }));
    CPLClient opened("x");
    EXPECT_TRUE(opened.open(nullptr, 0));
}

TEST_F(Handshake, ALocalPortThatIsTakenIsNoConnection) {
    frame.listen();
    auto const taken = boundSocket(here);
    CPLClient bound("bound");
    ASSERT_TRUE(bound.open(here, portOf(taken)));
    EXPECT_FALSE(bound.connect(here, frame.port()));
    EXPECT_EQ(log.all(), Texts{failure("bind: Address already in use")});
}

TEST_F(Handshake, TakesNamesForAddresses) {
    frame.listen();
    EXPECT_TRUE(client().connect("localhost", frame.port()));
}

TEST_F(Handshake, AnAddressThatIsNoneIsNoConnection) {
    EXPECT_FALSE(client().connect("300.1.1.1", 5000));
    EXPECT_EQ(log.all(),
              Texts{"info: no connection to 300.1.1.1:5000: the address can't be resolved"});
}

// The system takes the connection and the frame never answers.
TEST_F(Handshake, ASilentFrameIsGivenUp) {
    timings.connectLimit = 100ms;
    frame.freeze();
    frame.listen();
    EXPECT_FALSE(connect());
    EXPECT_EQ(client().getConnectionState(), eNotConnected);
    EXPECT_EQ(log.all(), Texts{failure("no answer to the greeting")});
}

TEST_F(Handshake, ACloseWaitsForAConnectThatIsUnderWay) {
    timings.connectLimit = 300ms;
    Gate greeted;
    Ending const ending(*this);
    frame.setScript([&](RawMessage const&) {
        greeted.open();
        return std::string();
    });
    frame.listen();
    client();
    auto connecting = std::async(std::launch::async, [this] { return connect(); });
    ASSERT_TRUE(greeted.wait());
    EXPECT_TRUE(client().close());
    EXPECT_FALSE(connecting.get());
    EXPECT_EQ(client().getConnectionState(), eNotConnected);
    EXPECT_EQ(log.all(), Texts{failure("no answer to the greeting")});
}

TEST_F(Handshake, AFrameThatClosesInsteadIsNone) {
    frame.setScript([this](RawMessage const&) {
        frame.closeConnection();
        return std::string();
    });
    frame.listen();
    EXPECT_FALSE(connect());
    EXPECT_EQ(log.all(), Texts{failure("closed instead of an answer to the greeting")});
}

TEST_F(Handshake, AnyAnswerButAWelcomeEndsIt) {
    struct Row {
        std::string answer;
        std::string reason;
    };
    auto const bytes = [](auto const& message) { return ScriptedFrame::bytesOf(message); };
    std::string const noFrame = "that is no frame of this protocol's version";
    std::string const impossible = "the answer to the greeting is of impossible length";
    std::vector<Row> const rows = {
        {bytes(Welcome{2, "later"}), noFrame},
        {bytes(Acknowledge{}), noFrame},
        {bytes(Hello{}), noFrame},
        {bytes(Refusal{1, "too many panels"}), "refused: too many panels"},
        {bytes(Refusal{2, "this frame speaks version 2"}), "refused: this frame speaks version 2"},
        {prefix(5) + '\3' + "\0\0\0\0"s, "refused: "},  // a refusal without a body
        {prefix(5) + '\2' + "\0\0\0\0"s, noFrame},      // a welcome without a body
        {prefix(0), impossible},
        {prefix(4) + "\2\0\0\0"s, impossible},
        {prefix(513), impossible},
        {prefix(0xFFFFFFFF), impossible},
        {"HTTP/1.1 400 Bad Request\r\n\r\n", impossible},
    };
    std::string answer;
    Ending const ending(*this);
    frame.setScript([&](RawMessage const&) { return answer; });
    frame.listen();
    Texts expected;
    for (auto const& row : rows) {
        answer = row.answer;
        EXPECT_FALSE(connect());
        EXPECT_TRUE(frame.waitForEnd());
        expected.push_back(failure(row.reason));
    }
    EXPECT_EQ(log.all(), expected);
    EXPECT_EQ(client().getConnectionState(), eNotConnected);
}

TEST_F(Handshake, AWelcomeMayComeByteByByte) {
    frame.setScript([](RawMessage const& message) {
        return message.type == Type::Hello ? std::optional(std::string()) : std::nullopt;
    });
    frame.listen();
    client();
    auto connecting = std::async(std::launch::async, [this] { return connect(); });
    ASSERT_EQ(frame.waitForMessages(1).size(), 1U);
    for (char const byte : ScriptedFrame::bytesOf(Welcome{}))
        ASSERT_TRUE(frame.sendBytes({&byte, 1}));
    EXPECT_TRUE(connecting.get());
    EXPECT_EQ(setNumber(1), eStatusOk);
}

TEST_F(Handshake, NewsInOnePieceWithTheWelcomeIsHeardAtOnce) {
    timings.pingAfter = timings.silenceLimit = 600s;  // no other message to bring it along
    auto const id = enroll();
    Ending const ending(*this);
    frame.setScript([&](RawMessage const& message) {
        return message.type != Type::Hello
                   ? std::nullopt
                   : std::optional(ScriptedFrame::bytesOf(Welcome{}) +
                                   ScriptedFrame::bytesOf(update(id, 9, std::string(600, 'x'))));
    });
    listenAndConnect();
    EXPECT_EQ(heard->waitFor(1).size(), 1U);
}

}  // namespace
