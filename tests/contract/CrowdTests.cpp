// Several clients in one process, and several callbacks on one client.
#include "SimulatedFrame.h"
#include "StandInTest.h"

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace cplwire;

class Crowd : public StandInTest {};

/// A client of its own thread: connects, subscribes, sets in turns with all the others, leaves.
struct Member {
    explicit Member(int index) : number(index), link("member " + std::to_string(index)) {}

    // The last of its own sets comes back to it, after whatever the others did.
    bool visit(std::uint16_t port) {
        if (!link.open("127.0.0.1", 0) || !link.connect("127.0.0.1", port))
            return false;
        auto const id = link.registerCallback(heard, 0);
        bool good =
            link.subscribe(PIDType(pidInt32), contractDid, id, eSubscribeUpdate, 0, 0) == eStatusOk;
        for (int turn = 1; turn <= 20; ++turn)
            good = link.set(PIDType(pidInt32), contractDid, eSetAbsolute, number * 1000 + turn,
                            0) == eStatusOk &&
                   good;
        return good && heard->waitFor(20).size() >= 20 && link.close();
    }

    int const number;
    boost::shared_ptr<RecordingCallback> const heard = boost::make_shared<RecordingCallback>();
    CPLClient link;
};

TEST_F(Crowd, EightClientsAtOnceDoNotDisturbEachOther) {
    SimulatedFrame server;
    server.listen();
    std::vector<std::unique_ptr<Member>> members;
    std::vector<std::future<bool>> visits;
    for (int i = 1; i <= 8; ++i) {
        members.push_back(std::make_unique<Member>(i));
        visits.push_back(std::async(std::launch::async, [&server, own = members.back().get()] {
            return own->visit(server.port());
        }));
    }
    for (auto& visit : visits)
        EXPECT_TRUE(visit.get());
    EXPECT_EQ(log.all(), std::vector<std::string>{});
}

TEST_F(Crowd, CallsComeOneAtATimeWhomeverTheyAreFor) {
    std::atomic<int> running{0};
    std::atomic<bool> overlapped{false};
    std::vector<boost::shared_ptr<RecordingCallback>> callbacks;
    std::vector<unsigned short> identifiers;
    for (int i = 0; i < 3; ++i) {
        callbacks.push_back(boost::make_shared<RecordingCallback>());
        callbacks.back()->onNews = [&](std::string const&) {
            if (++running != 1)
                overlapped = true;
            setNumber(1);  // takes its time
            --running;
        };
        identifiers.push_back(enroll(callbacks.back()));
    }
    listenAndConnect();
    std::string burst;
    for (std::uint16_t round = 0; round < 30; ++round) {
        encode(burst, update(identifiers[round % 3], round));
        encode(burst, ListUpdate{round, ""});
    }
    frame.sendBytes(burst);
    for (auto const& callback : callbacks)
        EXPECT_EQ(callback->waitFor(40).size(), 40U);
    EXPECT_FALSE(overlapped);
}

/// What ends a connection on purpose while a send waits for an acknowledgement that never comes.
TEST_F(Crowd, WhoeverEndsItASendThatWaitsIsToldAtOnce) {
    struct Row {
        char const* name;
        bool (CPLClient::*end)() const;
    };
    static constexpr Row rows[] = {{"disconnect", &CPLClient::disconnect},
                                   {"close", &CPLClient::close}};
    frame.setScript([](RawMessage const& message) {
        return message.type == Type::Set ? std::optional(std::string()) : std::nullopt;
    });
    frame.listen();
    std::size_t expected = 0;
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        CPLClient link(row.name);
        link.setSendTimeOut(60000);
        ASSERT_TRUE(link.open(here, 0));
        ASSERT_TRUE(link.connect(here, frame.port()));
        auto waiting = std::async(std::launch::async, [&link] {
            return link.set(PIDType(2), contractDid, eSetAbsolute, 1, 0);
        });
        ASSERT_EQ(frame.waitForMessages(expected + 2).size(), expected + 2);
        EXPECT_TRUE((link.*row.end)());
        ASSERT_EQ(waiting.wait_for(patience), std::future_status::ready);
        EXPECT_EQ(waiting.get(), eStatusNotConnected);
        EXPECT_TRUE(frame.waitForEnd());
        expected = frame.waitForMessages(expected + 3).size();
    }
    EXPECT_EQ(log.all(), Texts{});
}

// The bye could be lost with the connection if the client reset it at once.
TEST_F(Crowd, ADisconnectWaitsForTheFrameToCloseAfterTheBye) {
    timings.byeLimit = patience;
    frame.setScript([](RawMessage const& message) {
        return message.type == Type::Bye ? std::optional(std::string()) : std::nullopt;
    });
    listenAndConnect();
    auto leaving = std::async(std::launch::async, [this] { return client().disconnect(); });
    ASSERT_TRUE(frame.waitFor("bye"));
    EXPECT_EQ(leaving.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    frame.closeConnection();
    ASSERT_EQ(leaving.wait_for(patience / 2), std::future_status::ready);
    EXPECT_TRUE(leaving.get());
    EXPECT_FALSE(frame.endedByReset());
}

TEST_F(Crowd, ACallbackThatGoesDuringItsCallMayUseTheClient) {
    listenAndConnect();
    auto const other = enroll();
    auto const go = [&](RecordingCallback* leaving) {
        delete leaving;
        client().unregisterCallback(other);
        client().disconnect();
    };
    boost::shared_ptr<RecordingCallback> last(new RecordingCallback, go);
    unsigned short own = 0;
    last->onNews = [&](std::string const&) { client().unregisterCallback(own); };
    own = enroll(last);
    last.reset();
    frame.send(update(own, 1));
    EXPECT_TRUE(frame.waitForEnd());
    client().close();
    EXPECT_EQ(client().getConnectionState(), eNotConnected);
}

}  // namespace
