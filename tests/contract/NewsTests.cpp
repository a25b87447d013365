#include "StandInTest.h"
#include "WireText.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using namespace cplwire;
using namespace std::string_literals;

class News : public StandInTest {};

TEST_F(News, ValuesComeInTheMachinesOrderByTheirTag) {
    struct Row {
        std::uint16_t tag;
        std::string wire;
        std::string machine;
    };
    std::vector<Row> const rows = {
        {0, "\x12\x34", "3412"},
        {1, "\x12\x34\x56\x78", "78563412"},
        {2, "\x12\x34", "3412"},
        {3, "\x12\x34\x56\x78", "78563412"},
        {4, "\x01", "01"},
        {5, "\x3f\xc0\0\0"s, "0000c03f"},
        {7, "abcd", "61626364"},
        {7, "a\x92", "6192"},
        {7, "", ""},
        {8, "\1\2\3\4\5\6\7\x08", "0807060504030201"},
        {11, "\1\2\3\4", "04030201"},
        {12, "\1\2\3\4", "04030201"},
        {14, "\1\2\3\4", "04030201"},
        {15, "\1\2\3\4", "04030201"},
        {16, "\1\2\3\4", "04030201"},
        {17, "\1\2\3\4", "04030201"},
        {18, "\1\2", "0201"},
        // A number of another width than its kind's is nobody's, and stays as it is.
        {1, "\1\2", "0102"},
        {0, "\1\2\3\4", "01020304"},
        {6, "\1\2\3\4", "01020304"},
        {19, "\1\2", "0102"},
        {65535, "\1\2", "0102"},
    };
    auto const id = enroll();
    listenAndConnect();
    Texts expected;
    for (auto const& row : rows) {
        frame.send(ParameterUpdate{id, 5, 0xA1B2C3D4, row.tag, row.wire});
        expected.push_back("update " + std::to_string(id) + " 5 a1b2c3d4 " +
                           std::to_string(row.tag) + " " + row.machine);
    }
    EXPECT_EQ(heard->waitFor(rows.size()), expected);
}

TEST_F(News, UpdatesAndRepliesGoToTheCallbackTheyNameAndListsToAll) {
    auto const other = boost::make_shared<RecordingCallback>();
    auto const first = enroll();
    auto const second = enroll(other);
    listenAndConnect();
    frame.send(update(second, 1));
    frame.send(update(static_cast<unsigned short>(second + 1), 2));
    ParameterReply reply;
    static_cast<ParameterUpdate&>(reply) = update(first, 3);
    frame.send(reply);
    frame.send(ListUpdate{2, "payload"});
    frame.send(ListUpdate{0, ""});
    EXPECT_EQ(heard->waitFor(3), (Texts{"reply " + std::to_string(first) + " 3 24000000 1 01000000",
                                        "list 2 " + hex("payload"), "list 0 "}));
    EXPECT_EQ(other->waitFor(3),
              (Texts{"update " + std::to_string(second) + " 1 24000000 1 01000000",
                     "list 2 " + hex("payload"), "list 0 "}));
}

TEST_F(News, TheLongestValueAndTheLongestListArrive) {
    auto const id = enroll();
    listenAndConnect();
    std::string const value(65535, 'v');
    std::string const payload(maximumLength - headerSize - 2, 'p');
    frame.send(ParameterUpdate{id, 1, 2, 7, value});
    frame.send(ListUpdate{65535, payload});
    EXPECT_EQ(heard->waitFor(2),
              (Texts{"update " + std::to_string(id) + " 1 00000002 7 " + hex(value),
                     "list 65535 " + hex(payload)}));
}

TEST_F(News, TenThousandComeInOrder) {
    auto const id = enroll();
    listenAndConnect();
    std::string burst;
    Texts expected;
    for (unsigned i = 0; i < 10000; ++i) {
        std::string const value = {static_cast<char>(i >> 8U), static_cast<char>(i)};
        encode(burst, ParameterUpdate{id, 1, 2, 7, value});
        expected.push_back("update " + std::to_string(id) + " 1 00000002 7 " + hex(value));
    }
    frame.sendBytes(burst);
    EXPECT_EQ(heard->waitFor(10000), expected);
}

TEST_F(News, AMessageMayComeByteByByte) {
    auto const id = enroll();
    listenAndConnect();
    for (char const byte : ScriptedFrame::bytesOf(update(id, 1)))
        ASSERT_TRUE(frame.sendBytes({&byte, 1}));
    EXPECT_EQ(heard->waitFor(1), Texts{"update " + std::to_string(id) + " 1 24000000 1 01000000"});
}

TEST_F(News, AnExceptionOutOfACallbackIsLoggedAndTheNextOneComes) {
    heard->onNews = [](std::string const& text) {
        if (text.find(" 1 24") != std::string::npos)
            throw std::runtime_error("boom");
        if (text.find(" 2 24") != std::string::npos)
            throw 5;
    };
    auto const id = enroll();
    listenAndConnect();
    for (std::uint16_t pid = 1; pid <= 3; ++pid)
        frame.send(update(id, pid));
    EXPECT_EQ(heard->waitFor(1), Texts{"update " + std::to_string(id) + " 3 24000000 1 01000000"});
    EXPECT_EQ(log.all(), (Texts{"error: an exception left a callback: boom",
                                "error: an exception of unknown type left a callback"}));
}

TEST_F(News, MoreThanCanWaitCostsTheConnection) {
    timings.queueBytes = 10000;
    holdFirst();
    auto const id = enroll();
    listenAndConnect();
    frame.send(update(id, 1));
    ASSERT_TRUE(inside.wait());
    std::string flood;
    for (int i = 0; i < 1000; ++i)
        encode(flood, ListUpdate{0, ""});
    frame.sendBytes(flood);
    EXPECT_EQ(log.waitForOne(), "warning: connection lost: too much news is waiting");
    EXPECT_EQ(client().getConnectionState(), eConnectionLost);
    EXPECT_TRUE(frame.waitForEnd());
    goOn.open();
    EXPECT_GT(heard->waitFor(10).size(), 9U);  // what had been queued is still told
    EXPECT_EQ(log.all().size(), 1U);
}

TEST_F(News, AcknowledgementsPassNewsThatWaits) {
    holdFirst();
    auto const id = enroll();
    listenAndConnect();
    frame.send(update(id, 1));
    ASSERT_TRUE(inside.wait());
    for (int i = 0; i < 100; ++i)
        frame.send(update(id, 2));
    EXPECT_EQ(setNumber(1), eStatusOk);
    goOn.open();
    EXPECT_EQ(heard->waitFor(101).size(), 101U);
}

TEST_F(News, NoCallBeginsAfterAClose) {
    holdFirst();
    auto const other = boost::make_shared<RecordingCallback>();
    enroll();
    enroll(other);
    listenAndConnect();
    for (int i = 0; i < 100; ++i)
        frame.send(ListUpdate{});
    ASSERT_TRUE(inside.wait());
    EXPECT_EQ(setNumber(1), eStatusOk);  // so all the news is in the queue
    EXPECT_TRUE(client().close());
    goOn.open();
    made.reset();  // waits for the call that goes on
    EXPECT_EQ(heard->all().size(), 1U);
    EXPECT_EQ(other->all().size(), 0U);
}

TEST_F(News, ADisconnectDropsWhatWaits) {
    holdFirst();
    auto const id = enroll();
    listenAndConnect();
    for (int i = 0; i < 100; ++i)
        frame.send(update(id, 1));
    ASSERT_TRUE(inside.wait());
    EXPECT_EQ(setNumber(1), eStatusOk);
    EXPECT_TRUE(client().disconnect());
    ASSERT_TRUE(connect());
    goOn.open();
    frame.send(update(id, 2));
    auto const id2 = std::to_string(id);
    EXPECT_EQ(heard->waitFor(2), (Texts{"update " + id2 + " 1 24000000 1 01000000",
                                        "update " + id2 + " 2 24000000 1 01000000"}));
}

// Calls come one at a time, the last one of before included.
TEST_F(News, AReopenedClientWaitsForTheCallThatStillRuns) {
    holdFirst();
    auto const id = enroll();
    auto const other = boost::make_shared<RecordingCallback>();
    auto const second = enroll(other);
    std::atomic<bool> released{false};
    std::atomic<bool> tooEarly{false};
    Ending const ending(*this);
    other->onNews = [&](std::string const&) { tooEarly = !released; };
    listenAndConnect();
    frame.send(update(id, 1));
    ASSERT_TRUE(inside.wait());
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(client().close());
        EXPECT_TRUE(client().open(here, 0));
    }
    ASSERT_TRUE(connect());
    frame.send(update(second, 2));
    for (int roundTrip = 0; roundTrip < 100; ++roundTrip)  // time enough to come too early
        EXPECT_EQ(setNumber(roundTrip), eStatusOk);
    released = true;
    goOn.open();
    EXPECT_EQ(other->waitFor(1).size(), 1U);
    EXPECT_FALSE(tooEarly);
}

TEST_F(News, ACallbackMayEndEverything) {
    struct Row {
        char const* name;
        void (*act)(std::unique_ptr<CPLClient>&, unsigned short);
    };
    static constexpr Row rows[] = {
        {"unregister", [](auto& link, unsigned short id) { link->unregisterCallback(id); }},
        {"disconnect", [](auto& link, unsigned short) { link->disconnect(); }},
        {"close", [](auto& link, unsigned short) { link->close(); }},
        {"destroy", [](auto& link, unsigned short) { link.reset(); }},
    };
    frame.listen();
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        auto link = std::make_unique<CPLClient>(row.name);
        auto const callback = boost::make_shared<RecordingCallback>();
        auto const id = link->registerCallback(callback, 0);
        callback->onNews = [&](std::string const&) { row.act(link, id); };
        link->open(here, 0);
        ASSERT_TRUE(link->connect(here, frame.port()));
        frame.send(update(id, 1));
        EXPECT_EQ(callback->waitFor(1).size(), 1U);
        link.reset();
        EXPECT_TRUE(frame.waitForEnd());
    }
    EXPECT_EQ(log.all(), Texts{});
}

TEST_F(News, ACallbackIsKeptAsLongAsItRuns) {
    auto const fence = boost::make_shared<RecordingCallback>();
    Gate in;
    Gate out;
    Ending const ending(*this);
    auto shortLived = boost::make_shared<RecordingCallback>();
    shortLived->onNews = [&](std::string const&) {
        in.open();
        out.wait();
    };
    auto const id = enroll(shortLived);
    auto const fenceId = enroll(fence);
    boost::weak_ptr<RecordingCallback> const watched = shortLived;
    shortLived.reset();
    listenAndConnect();
    frame.send(update(id, 1));
    frame.send(update(fenceId, 2));
    ASSERT_TRUE(in.wait());
    client().unregisterCallback(id);
    EXPECT_FALSE(watched.expired());
    out.open();
    EXPECT_EQ(fence->waitFor(1).size(), 1U);
    EXPECT_TRUE(watched.expired());
}

TEST_F(News, IdentifiersAreTheirOwnersUntilTheyAreGivenBack) {
    auto const first = enroll();
    auto const second = enroll();
    EXPECT_NE(first, second);
    client().unregisterCallback(first);
    client().unregisterCallback(first);
    client().unregisterCallback(0xFFFF);
    for (int i = 0; i < 70000; ++i) {
        auto const id = enroll();
        ASSERT_NE(id, 0);
        ASSERT_NE(id, 0xFFFF);
        ASSERT_NE(id, second);
        client().unregisterCallback(id);
    }
    EXPECT_EQ(client().registerCallback(boost::shared_ptr<CCallback>(), 0), 0xFFFF);
}

TEST_F(News, ThereMayBeAThousandCallbacks) {
    for (int i = 0; i < 1000; ++i)
        ASSERT_NE(enroll(), 0xFFFF);
    EXPECT_EQ(enroll(), 0xFFFF);
}

}  // namespace
