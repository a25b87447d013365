#include "StandInTest.h"

#include <atomic>
#include <future>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace std::chrono_literals;
using namespace cplwire;

class Send : public StandInTest {};

TEST_F(Send, EachCallIsOneMessage) {
    listenAndConnect();
    auto& link = client();
    PIDType const pid{0x12345};
    char data[] = {0, 1, '\x92'};
    link.set(pid, 0xA1B2C3D4, eSetRelative, short{-2}, 0);
    link.set(pid, 1, eSetAbsolute, static_cast<unsigned short>(0xFFFE), 0);
    link.set(pid, 1, eSetDetent, int{-2}, 0);
    link.set(pid, 1, eSetDefault, 0x80000001U, 0);
    link.set(pid, 1, eSetToggle, true, 0);
    link.set(pid, 1, eSetFactoryDefault, -1.5F, 0);
    link.set(pid, 1, eCpl2SetType(99), "ab\x92", 0);
    link.set(pid, 1, eSetAbsolute, static_cast<char const*>(nullptr), 0);
    link.event(EIDType(-1), 2, data, sizeof data, 0);
    link.event(EIDType(7), 2, nullptr, 0, 0);
    link.event(EIDType(7), 2, data, -1, 0);
    link.subscribe(PIDType(5), 6, 7, eSubscribeImmediate, 0, 0);
    link.subscribe(eListIDType(5), 65535, 6, 7, eSubscribeReplace, 0, 0);
    link.subscribe({{PIDType(1), 2}, {PIDType(-3), 4}}, 7, eSubscribeAppend, 0, 0);
    link.subscribe({}, 7, eSubscribeAppend, 0, 0);
    link.cancelSubscriptions(eUnsubscribeAll, eListService, 0);
    EXPECT_EQ(frame.waitForMessages(17), (Texts{
                                             "hello 1 stand-in",
                                             "set 74565 a1b2c3d4 1 0 fffe",
                                             "set 74565 00000001 0 2 fffe",
                                             "set 74565 00000001 2 1 fffffffe",
                                             "set 74565 00000001 4 3 80000001",
                                             "set 74565 00000001 8 4 01",
                                             "set 74565 00000001 10 5 bfc00000",
                                             "set 74565 00000001 99 7 616292",
                                             "set 74565 00000001 0 7 ",
                                             "event -1 00000002 000192",
                                             "event 7 00000002 ",
                                             "event 7 00000002 ",
                                             "subscribe 5 00000006 7 1",
                                             "subscribeList 5 65535 00000006 7 2",
                                             "subscribeBatch 7 3 1 00000002 -3 00000004",
                                             "subscribeBatch 7 3",
                                             "cancel 3 4",
                                         }));
}

TEST_F(Send, AListItemGoesOutInTheLayoutInWhichItComes) {
    listenAndConnect();
    DeviceEventListItem event;
    event.itemId = 5;
    event.markInTime = 0x01020304;
    event.clipName = std::string("a\x92\0b", 4);  // ends at the NUL
    CameraSourceListItem camera{6,    0x10001, "n",   "h",   3,    4,    true,  false,
                                true, false,   0x105, 0x206, true, true, false, 9};
    client().setList(eListItemAction(1), eListIDType(6), 8, 9, event, 0);
    client().setList(eListItemAction(2), eListIDType(32), 8, 65535, camera, 0);
    client().setList(eListItemAction(2), eListIDType(32), 8, 1, CameraSourceListItem{}, 0);
    EXPECT_EQ(frame.waitForMessages(4), (Texts{
                                            "hello 1 stand-in",
                                            "setList 1 6 00000008 9 5 01020304619200",
                                            "setList 2 32 00000008 65535 6 "
                                            "0001"
                                            "6e00"
                                            "6800"
                                            "0003"
                                            "0004"
                                            "01000100"
                                            "0105"
                                            "0206"
                                            "010100"
                                            "0009",
                                            "setList 2 32 00000008 1 0 0000"
                                            "00"
                                            "00"
                                            "0000"
                                            "0000"
                                            "00000000"
                                            "0000"
                                            "0000"
                                            "000000"
                                            "0000",
                                        }));
}

TEST_F(Send, TheFramesAnswerIsTheResult) {
    std::atomic<int> answer{0};
    Ending const ending(*this);
    frame.setScript([&](RawMessage const& message) {
        return message.type == Type::Set
                   ? std::optional(ScriptedFrame::bytesOf(Acknowledge{answer}, message.sequence))
                   : std::nullopt;
    });
    listenAndConnect();
    for (int const status : {0, 3, 77, -1}) {
        answer = status;
        EXPECT_EQ(setNumber(1), Status(status));
    }
}

TEST_F(Send, AnAnswerThatComesTooLateIsNobodyElses) {
    std::vector<std::uint32_t> sequences;
    Ending const ending(*this);
    frame.setScript([&](RawMessage const& message) -> std::optional<std::string> {
        if (message.type != Type::Set)
            return std::nullopt;
        sequences.push_back(message.sequence);
        if (sequences.size() == 1)
            return std::string();
        return ScriptedFrame::bytesOf(Acknowledge{0}, sequences.front()) +
               ScriptedFrame::bytesOf(Acknowledge{3}, message.sequence);
    });
    listenAndConnect();
    client().setSendTimeOut(30);
    EXPECT_EQ(setNumber(1), eStatusTimeOut);
    client().setSendTimeOut(30000);
    EXPECT_EQ(setNumber(2), eStatusRefused);
    EXPECT_EQ(client().getConnectionState(), eConnected);
}

TEST_F(Send, AnswersMayComeInAnyOrder) {
    std::string held;
    Ending const ending(*this);
    frame.setScript([&](RawMessage const& message) -> std::optional<std::string> {
        if (message.type != Type::Set)
            return std::nullopt;
        auto const value = decode<Set>(message.body).value().value.back();
        auto const own = ScriptedFrame::bytesOf(Acknowledge{value}, message.sequence);
        return held.empty() ? (held = own, std::string()) : own + held;
    });
    listenAndConnect();
    client().setSendTimeOut(30000);
    auto first = std::async(std::launch::async, [this] { return setNumber(1); });
    ASSERT_EQ(frame.waitForMessages(2).size(), 2U);
    EXPECT_EQ(setNumber(2), Status(2));
    EXPECT_EQ(first.get(), Status(1));
}

TEST_F(Send, WithATimeOutOfZeroOrLessNothingIsWaitedFor) {
    frame.setScript([](RawMessage const& message) {
        return message.type == Type::Set ? std::optional(std::string()) : std::nullopt;
    });
    listenAndConnect();
    for (int const timeOut : {0, -5}) {
        client().setSendTimeOut(timeOut);
        EXPECT_EQ(setNumber(timeOut), eStatusOk);
    }
    EXPECT_EQ(frame.waitForMessages(3), (Texts{"hello 1 stand-in", "set 2 24000000 0 1 00000000",
                                               "set 2 24000000 0 1 fffffffb"}));
    frame.cut();
    log.waitForOne();
    EXPECT_EQ(setNumber(1), eStatusNotConnected);
}

TEST_F(Send, WhatDoesntFitIsntSent) {
    listenAndConnect();
    std::string const longest(65535, 'x');
    auto const setText = [this](std::string const& text) {
        return client().set(PIDType(7), 1, eSetAbsolute, text.c_str(), 0);
    };
    EXPECT_EQ(setText(longest + "x"), eStatusTooLarge);
    // 5 bytes of head, 6 ahead of the pairs, 8 each: one pair more than the bound allows.
    std::vector<std::pair<PIDType, unsigned>> many(((1U << 20U) - 11) / 8 + 1);
    EXPECT_EQ(client().subscribe(many, 1, eSubscribeAppend, 0, 0), eStatusTooLarge);
    CameraSourceListItem camera;
    camera.cameraName = longest;
    EXPECT_EQ(client().setList(eListItemAction(1), eListIDType(32), 1, 1, camera, 0),
              eStatusTooLarge);
    many.pop_back();
    client().setSendTimeOut(30000);
    EXPECT_EQ(client().subscribe(many, 1, eSubscribeAppend, 0, 0), eStatusOk);
    EXPECT_EQ(setText(longest), eStatusOk);
    EXPECT_EQ(frame.waitForMessages(3).size(), 3U);
}

TEST_F(Send, AFrameThatTakesNoBytesIsLost) {
    timings.writeLimit = 100ms;
    timings.silenceLimit = 60s;
    timings.pingAfter = 60s;
    listenAndConnect();
    client().setSendTimeOut(0);
    frame.freeze();
    std::string data(32767, 'x');
    Status status = eStatusOk;
    while (status == eStatusOk)
        status = client().event(EIDType(1), 2, data.data(), static_cast<short>(data.size()), 0);
    EXPECT_EQ(status, eStatusNotConnected);
    EXPECT_TRUE(log.waitForCount(1));
    EXPECT_EQ(log.all(), Texts{"warning: connection lost: a message could not be sent"});
    EXPECT_EQ(client().getConnectionState(), eConnectionLost);
}

// The bye can't be sent either, and that must hold nobody up.
TEST_F(Send, ADisconnectGetsPastASenderThatIsStuck) {
    timings.writeLimit = 200ms;
    timings.byeLimit = 50ms;
    timings.silenceLimit = 60s;
    timings.pingAfter = 60s;
    listenAndConnect();
    client().setSendTimeOut(0);
    frame.freeze();
    std::atomic<int> sent{0};
    auto stuck = std::async(std::launch::async, [&] {
        std::string data(32767, 'x');
        while (client().event(EIDType(1), 2, data.data(), static_cast<short>(data.size()), 0) ==
               eStatusOk)
            ++sent;
    });
    while (sent < 20)
        std::this_thread::yield();
    EXPECT_TRUE(client().disconnect());
    stuck.get();
    EXPECT_EQ(client().getConnectionState(), eNotConnected);
}

}  // namespace
