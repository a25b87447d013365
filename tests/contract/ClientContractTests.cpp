// What the driver needs of a frame client library, whatever is behind its header and whichever
// frame it talks to.
#include "Gate.h"
#include "LogLines.h"
#include "RecordingCallback.h"
#include "ScriptedFrame.h"
#include "SimulatedFrame.h"
#include "Sockets.h"
#include "platform/cplclient/CPLClient.h"
#include "tests/support/NoStack.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

struct FrameKind {
    char const* name;
    std::unique_ptr<ContractFrame> (*make)();
};

void PrintTo(FrameKind const& kind, std::ostream* out) { *out << kind.name; }

class ClientContract : public ::testing::TestWithParam<FrameKind> {
  protected:
    static constexpr char const* here = "127.0.0.1";

    void openAndConnect() {
        frame->listen();
        ASSERT_TRUE(client.open(here, 0));
        ASSERT_TRUE(client.connect(here, frame->port()));
    }
    unsigned short enroll(boost::shared_ptr<RecordingCallback> const& target) {
        return client.registerCallback(target, 0);
    }
    Status subscribeAll(unsigned short id) {
        std::vector<std::pair<PIDType, unsigned>> all;
        for (int pid = pidInt16; pid <= pidString; ++pid)
            all.emplace_back(PIDType(pid), contractDid);
        return client.subscribe(all, id, eSubscribeUpdate, 0, 0);
    }
    template <typename T>
    Status set(ContractPid pid, T value) {
        return client.set(PIDType(pid), contractDid, eSetAbsolute, value, 0);
    }

    LogLines log;
    std::atomic<int> inner{-1};
    Gate inside;
    Gate goOn;
    std::unique_ptr<ContractFrame> frame = GetParam().make();
    boost::shared_ptr<RecordingCallback> heard = boost::make_shared<RecordingCallback>();
    CPLClient client{"contract"};
};

TEST_P(ClientContract, ANewClientIsNotConnectedAndSendsNothing) {
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_EQ(set(pidInt32, 1), eStatusClosed);
    EXPECT_FALSE(client.connect(here, frame->port()));
    EXPECT_FALSE(client.disconnect());
    EXPECT_FALSE(client.close());
    ASSERT_TRUE(client.open(here, 0));
    EXPECT_FALSE(client.open(here, 0));
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_EQ(set(pidInt32, 1), eStatusNotConnected);
    EXPECT_EQ(log.all(), Texts{});
}

TEST_P(ClientContract, WithoutAThreadItNeitherOpensNorConnectsAndLaterItDoes) {
    frame->listen();
    std::string const noThread = "error: no thread is to be had: Resource temporarily unavailable";
    {
        FrameDriver::Testing::NoStack const noStack;
        EXPECT_FALSE(client.open(here, 0));
    }
    EXPECT_EQ(log.all(), Texts{noThread});
    EXPECT_FALSE(client.close()) << "it isn't open";
    ASSERT_TRUE(client.open(here, 0));
    {
        FrameDriver::Testing::NoStack const noStack;
        EXPECT_FALSE(client.connect(here, frame->port()));
    }
    EXPECT_EQ(log.all(), (Texts{noThread, noThread}));
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_TRUE(client.connect(here, frame->port()));
    EXPECT_EQ(set(pidInt32, 1), eStatusOk);
}

TEST_P(ClientContract, ConnectsDisconnectsAndConnectsAgain) {
    openAndConnect();
    EXPECT_EQ(client.getConnectionState(), eConnected);
    EXPECT_FALSE(client.connect(here, frame->port()));
    EXPECT_TRUE(client.disconnect());
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_FALSE(client.disconnect());
    EXPECT_TRUE(client.connect(here, frame->port()));
    EXPECT_EQ(set(pidInt32, 1), eStatusOk);
    EXPECT_EQ(log.all(), Texts{});
}

TEST_P(ClientContract, ARefusedConnectionLeavesTheClientUnconnected) {
    ASSERT_TRUE(client.open(here, 0));
    EXPECT_FALSE(client.connect(here, frame->port()));
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_EQ(log.all(), Texts{"info: no connection to 127.0.0.1:" + std::to_string(frame->port()) +
                               ": connect: Connection refused"});
    frame->listen();
    EXPECT_TRUE(client.connect(here, frame->port()));
}

TEST_P(ClientContract, EveryKindOfValueGoesOutAndComesBackInTheMachinesOrder) {
    openAndConnect();
    auto const id = std::to_string(enroll(heard));
    ASSERT_EQ(subscribeAll(static_cast<unsigned short>(std::stoi(id))), eStatusOk);
    EXPECT_EQ(set(pidInt16, short{-2}), eStatusOk);
    EXPECT_EQ(set(pidInt32, int{-3}), eStatusOk);
    EXPECT_EQ(set(pidUInt16, static_cast<unsigned short>(0x1234)), eStatusOk);
    EXPECT_EQ(set(pidUInt32, 0x12345678U), eStatusOk);
    EXPECT_EQ(set(pidBool, true), eStatusOk);
    EXPECT_EQ(set(pidFloat, 1.5F), eStatusOk);
    EXPECT_EQ(set(pidString, "a\x92z"), eStatusOk);
    EXPECT_EQ(heard->waitFor(7), (Texts{
                                     "update " + id + " 1 24000000 0 feff",
                                     "update " + id + " 2 24000000 1 fdffffff",
                                     "update " + id + " 3 24000000 2 3412",
                                     "update " + id + " 4 24000000 3 78563412",
                                     "update " + id + " 5 24000000 4 01",
                                     "update " + id + " 6 24000000 5 0000c03f",
                                     "update " + id + " 7 24000000 7 61927a",
                                 }));
}

TEST_P(ClientContract, EventsListItemsAndTheOtherSubscriptionsAreAcknowledged) {
    openAndConnect();
    auto const id = enroll(heard);
    char data[] = {1, 2, 3};
    EXPECT_EQ(client.event(EIDType(1), contractDid, data, sizeof data, 0), eStatusOk);
    EXPECT_EQ(client.setList(eListItemAction(1), eListIDType(contractLid), contractDid, 1,
                             DeviceEventListItem{7, "clip", 9}, 0),
              eStatusOk);
    EXPECT_EQ(client.subscribe(PIDType(1), contractDid, id, eSubscribeAppend, 0, 0), eStatusOk);
    EXPECT_EQ(
        client.subscribe(eListIDType(contractLid), 1, contractDid, id, eSubscribeUpdate, 0, 0),
        eStatusOk);
    EXPECT_EQ(client.subscribe({}, id, eSubscribeAppend, 0, 0), eStatusOk);
    EXPECT_EQ(client.cancelSubscriptions(eUnsubscribeAll, eParameterService, 0), eStatusOk);
}

TEST_P(ClientContract, ASendInsideACallbackIsAcknowledged) {
    openAndConnect();
    heard->onNews = [this](std::string const&) {
        if (inner == -1)
            inner = set(pidBool, true);
    };
    ASSERT_EQ(subscribeAll(enroll(heard)), eStatusOk);
    EXPECT_EQ(set(pidInt32, 5), eStatusOk);
    EXPECT_EQ(heard->waitFor(2).size(), 2U);
    EXPECT_EQ(inner, eStatusOk);
    EXPECT_NE(heard->lastThread(), std::this_thread::get_id());
}

TEST_P(ClientContract, ACutConnectionIsLostUntilItIsDisconnected) {
    openAndConnect();
    frame->cut();
    EXPECT_EQ(log.waitForOne().substr(0, 26), "warning: connection lost: ");
    EXPECT_EQ(client.getConnectionState(), eConnectionLost);
    EXPECT_EQ(set(pidInt32, 1), eStatusNotConnected);
    EXPECT_FALSE(client.connect(here, frame->port()));
    EXPECT_TRUE(client.disconnect());
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_TRUE(client.connect(here, frame->port()));
    EXPECT_EQ(set(pidInt32, 1), eStatusOk);
    EXPECT_EQ(log.all().size(), 1U);
}

TEST_P(ClientContract, ASendToAFrozenFrameTimesOut) {
    openAndConnect();
    client.setSendTimeOut(50);
    EXPECT_EQ(set(pidInt32, 1), eStatusOk);
    frame->freeze();
    EXPECT_EQ(set(pidInt32, 2), eStatusTimeOut);
    EXPECT_EQ(client.getConnectionState(), eConnected);
}

TEST_P(ClientContract, ReconnectsAtOnceFromTheSameLocalPort) {
    frame->listen();
    ASSERT_TRUE(client.open(here, freePort(here)));
    for (int attempt = 0; attempt < 20; ++attempt) {
        SCOPED_TRACE(attempt);
        ASSERT_TRUE(client.connect(here, frame->port()));
        ASSERT_EQ(set(pidInt32, attempt), eStatusOk);
        ASSERT_TRUE(client.disconnect());
    }
    EXPECT_EQ(log.all(), Texts{});
}

TEST_P(ClientContract, ReconnectsFromTheSameLocalPortAfterACut) {
    frame->listen();
    ASSERT_TRUE(client.open(here, freePort(here)));
    for (int attempt = 1; attempt <= 5; ++attempt) {
        SCOPED_TRACE(attempt);
        ASSERT_TRUE(client.connect(here, frame->port()));
        frame->cut();
        ASSERT_TRUE(log.waitForCount(static_cast<std::size_t>(attempt)));
        ASSERT_TRUE(client.disconnect());
    }
}

TEST_P(ClientContract, OpensAgainAfterAClose) {
    openAndConnect();
    EXPECT_TRUE(client.close());
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_EQ(set(pidInt32, 1), eStatusClosed);
    ASSERT_TRUE(client.open(here, 0));
    ASSERT_TRUE(client.connect(here, frame->port()));
    ASSERT_EQ(subscribeAll(enroll(heard)), eStatusOk);
    EXPECT_EQ(set(pidInt32, 8), eStatusOk);
    EXPECT_EQ(heard->waitFor(1).size(), 1U);
}

TEST_P(ClientContract, CloseMayComeInTheMiddleOfTraffic) {
    openAndConnect();
    ASSERT_EQ(subscribeAll(enroll(heard)), eStatusOk);
    auto const traffic = [this](ContractPid pid) {
        int value = 0;
        Status status = eStatusOk;
        while (status == eStatusOk)
            status = set(pid, ++value);
        return status;
    };
    auto first = std::async(std::launch::async, traffic, pidInt32);
    auto second = std::async(std::launch::async, traffic, pidInt32);
    EXPECT_GE(heard->waitFor(20).size(), 20U);
    EXPECT_TRUE(client.close());
    for (auto* each : {&first, &second}) {
        auto const status = each->get();
        EXPECT_TRUE(status == eStatusClosed || status == eStatusNotConnected) << status;
    }
    EXPECT_EQ(log.all(), Texts{});
}

TEST_P(ClientContract, SendersConnectionsAndCallbacksGetAlong) {
    frame->listen();
    ASSERT_TRUE(client.open(here, 0));
    heard->onNews = [this](std::string const&) { set(pidBool, true); };
    std::atomic<bool> stop{false};
    auto const traffic = [&](ContractPid pid) {
        for (int value = 0; !stop; ++value)
            set(pid, value);
    };
    auto first = std::async(std::launch::async, traffic, pidInt32);
    auto second = std::async(std::launch::async, traffic, pidInt32);
    for (int round = 0; round < 10; ++round) {
        ASSERT_TRUE(client.connect(here, frame->port()));
        auto const id = enroll(heard);
        EXPECT_EQ(subscribeAll(id), eStatusOk);
        heard->waitFor(heard->all().size() + 10);
        client.unregisterCallback(id);
        ASSERT_TRUE(client.disconnect());
    }
    stop = true;
    first.get();
    second.get();
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
}

TEST_P(ClientContract, AnUnregisteredCallbackHearsNoMoreThanWhatItIsHearing) {
    openAndConnect();
    heard->onNews = [this](std::string const&) {
        inside.open();
        goOn.wait();
    };
    auto const other = boost::make_shared<RecordingCallback>();
    auto const id = enroll(heard);
    ASSERT_EQ(subscribeAll(id), eStatusOk);
    ASSERT_EQ(subscribeAll(enroll(other)), eStatusOk);
    for (int value = 1; value <= 3; ++value)
        EXPECT_EQ(set(pidInt32, value), eStatusOk);
    ASSERT_TRUE(inside.wait());
    client.unregisterCallback(id);
    goOn.open();
    EXPECT_EQ(other->waitFor(3).size(), 3U);
    EXPECT_EQ(heard->all().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Frames, ClientContract,
                         ::testing::Values(FrameKind{"Scripted",
                                                     []() -> std::unique_ptr<ContractFrame> {
                                                         return std::make_unique<ScriptedFrame>();
                                                     }},
                                           FrameKind{"Simulated",
                                                     []() -> std::unique_ptr<ContractFrame> {
                                                         return std::make_unique<SimulatedFrame>();
                                                     }}),
                         [](auto const& each) { return std::string(each.param.name); });

}  // namespace
