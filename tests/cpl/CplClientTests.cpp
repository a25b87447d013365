#include "cpl/CplClient.h"
#include "cpl/DataValue.h"
#include "cpl/Issue.h"
#include "cpl/SendEventMessage.h"
#include "cpl/SetListMessage.h"
#include "cpl/SetMessage.h"
#include "cpl/Subscription.h"
#include "foundation/Exceptions.h"
#include "tests/support/LogCapture.h"
#include "tests/support/cplclient/RecordedClient.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/time.h>
#include <thread>
#include <vector>

namespace FrameDriver::CPL {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using Testing::LogCapture;
using Testing::ParameterRecord;
using Testing::RecordedClient;
using Lines = std::vector<std::string>;

class CplClientTest : public testing::Test {
  protected:
    Lines sent(Message const& message) {
        library.takeCalls();
        client.send(&message);
        return library.takeCalls();
    }

    CplClient client{"Panel 1"};
    RecordedClient& library = RecordedClient::latest();
};

class Recorder : public IssueHandler {
  public:
    void handleIssue(Issue* issue) override { lines.push_back(issue->toString()); }
    Lines lines;
};

TEST_F(CplClientTest, TheLibrarysClientHasAFixedNameOfItsOwn) {
    EXPECT_EQ(library.name(), "cplclient");
    EXPECT_EQ(client.getClientName(), "Panel 1");
    EXPECT_EQ(CplClient().getClientName(), "");
    EXPECT_TRUE(client.isReady());
    EXPECT_EQ(library.calls(), Lines{});
}

TEST_F(CplClientTest, ANewNameReachesTheLibraryWithOpen) {
    client.setClientName("Panel 2");
    client.setClientName(client.getClientName());
    EXPECT_EQ(library.calls(), Lines{});
    EXPECT_TRUE(client.open("127.0.0.1", 6202));
    EXPECT_EQ(library.calls(),
              (Lines{"setName(\"Panel 2\")", "open(\"127.0.0.1\", 6202)", "registerCallback(0)"}));
}

TEST_F(CplClientTest, OpenIsTrueEvenIfTheLibraryRefuses) {
    library.setResult("open", 0);
    EXPECT_TRUE(client.open("nonsense", 1));
    EXPECT_EQ(library.callbacks().size(), 1u);
}

TEST_F(CplClientTest, ConnectAndDisconnectGiveTheLibrarysAnswer) {
    LogCapture log;
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_TRUE(client.connect("10.0.0.1", 5000));
    EXPECT_EQ(client.getConnectionState(), eConnected);
    EXPECT_TRUE(client.disconnect());
    library.setResult("connect", 0);
    library.setResult("disconnect", 0);
    EXPECT_FALSE(client.connect("10.0.0.2", 5001));
    EXPECT_EQ(client.getConnectionState(), eNotConnected);
    EXPECT_FALSE(client.disconnect());
    EXPECT_EQ(library.calls(), (Lines{"connect(\"10.0.0.1\", 5000)", "disconnect()",
                                      "connect(\"10.0.0.2\", 5001)", "disconnect()"}));
    EXPECT_EQ(log.lines(), (Lines{"info: CPL client disconnect", "info: CPL client disconnect"}));
}

TEST_F(CplClientTest, CloseWithdrawsTheRegistration) {
    client.open("", 0);
    client.open("", 0);  // the later identifier counts
    library.takeCalls();
    client.close();
    EXPECT_EQ(library.calls(), (Lines{"unregisterCallback(2)", "close()"}));
    EXPECT_EQ(library.callbacks(), std::vector<unsigned short>{1});
}

TEST_F(CplClientTest, CloseOfAClientNeverOpenedUnregistersFFFF) {
    client.close();
    EXPECT_EQ(library.calls(), (Lines{"unregisterCallback(65535)", "close()"}));
}

TEST_F(CplClientTest, ForwardsTheTimeOutAndCancelsEverything) {
    client.setSendTimeOut(250);
    client.cancelAllSubscriptions();
    EXPECT_EQ(library.calls(),
              (Lines{"setSendTimeOut(250)", "cancelSubscriptions(flags=3, service=3, 0)"}));
}

TEST_F(CplClientTest, IssuesReachTheHandlersFromOpenOn) {
    Recorder recorder;
    client.addIssueHandler(&recorder);
    ParameterRecord record(17, 0x10, String, "on");
    EXPECT_FALSE(library.parameterUpdate(record));
    client.open("", 0);
    EXPECT_TRUE(library.parameterUpdate(record));
    EXPECT_TRUE(library.parameterUpdate(record, 7));  // names another registration
    EXPECT_EQ(recorder.lines, Lines{"Parameter Issue (pid=17, did=10, val=on, flag=0)"});
}

TEST_F(CplClientTest, OpenWithoutHandlersLosesNothingButTheIssues) {
    client.open("", 0);
    ParameterRecord record(17, 0x10, String, "on");
    EXPECT_TRUE(library.parameterUpdate(record));
    Recorder recorder;
    client.addIssueHandler(&recorder);
    EXPECT_TRUE(library.parameterUpdate(record));
    EXPECT_EQ(recorder.lines.size(), 1u);
}

struct Setting {
    int tag;
    char const* text;
    char const* call;
};

TEST_F(CplClientTest, ASetMessageGoesToTheOverloadOfItsKind) {
    Setting const settings[] = {
        {Int16, "-3", "set<short>(pid=17, did=8000213, flag=4, value=-3, 0)"},
        {Int32, "-70000", "set<int>(pid=17, did=8000213, flag=4, value=-70000, 0)"},
        {UInt16, "65535", "set<unsigned short>(pid=17, did=8000213, flag=4, value=65535, 0)"},
        {UInt32, "4294967295",
         "set<unsigned int>(pid=17, did=8000213, flag=4, value=4294967295, 0)"},
        {Bool, "true", "set<bool>(pid=17, did=8000213, flag=4, value=true, 0)"},
        {Float, "0.5", "set<float>(pid=17, did=8000213, flag=4, value=0.5, 0)"},
        {String, "a b", "set<char const*>(pid=17, did=8000213, flag=4, value=\"a b\", 0)"},
        {Clock, "0.5", "set<float>(pid=17, did=8000213, flag=4, value=0.5, 0)"},
        {Degree, "0.5", "set<float>(pid=17, did=8000213, flag=4, value=0.5, 0)"},
        {Percent, "0.5", "set<float>(pid=17, did=8000213, flag=4, value=0.5, 0)"},
        {Revolution, "0.5", "set<float>(pid=17, did=8000213, flag=4, value=0.5, 0)"},
        {ScreenUnit, "0.5", "set<float>(pid=17, did=8000213, flag=4, value=0.5, 0)"},
        {SPercent, "0.5", "set<float>(pid=17, did=8000213, flag=4, value=0.5, 0)"},
        {State, "65535", "set<short>(pid=17, did=8000213, flag=4, value=-1, 0)"},
    };
    for (Setting const& setting : settings) {
        SetMessage message(PIDType{17}, 0x08000213, eSetDefault);
        message.setData(readValue(setting.text, dataTypeRow(setting.tag).read));
        message.setDataType(setting.tag);
        EXPECT_EQ(sent(message), Lines{setting.call});
    }
}

TEST_F(CplClientTest, ADoubleReachesTheFloatOverloadWithItsFirstFourBytes) {
    float const halves[2] = {0.75f, -1.0f};
    double number;
    std::memcpy(&number, halves, sizeof number);
    SetMessage message(PIDType{1}, 2, eSetAbsolute);
    message.setData(&number);
    message.setDataType(Double);
    EXPECT_EQ(sent(message), Lines{"set<float>(pid=1, did=2, flag=0, value=0.75, 0)"});
}

TEST_F(CplClientTest, AMissingValueIsSentAs0) {
    SetMessage message(PIDType{1}, 2, eSetAbsolute);
    message.setDataType(Int32);
    EXPECT_EQ(sent(message), Lines{"set<int>(pid=1, did=2, flag=0, value=0, 0)"});
    message.setDataType(Float);
    EXPECT_EQ(sent(message), Lines{"set<float>(pid=1, did=2, flag=0, value=0, 0)"});
    message.setDataType(String);
    EXPECT_EQ(sent(message), Lines{"set<char const*>(pid=1, did=2, flag=0, value=null, 0)"});
}

TEST(CplClientUnknownType, ThrowsItsText) {
    for (int const tag : {6, 9, 10, 13, 19, 20, -1}) {
        CplClient client;
        SetMessage message(PIDType{1}, 2, eSetAbsolute);
        message.setDataType(tag);
        try {
            client.send(&message);
            ADD_FAILURE() << tag;
        } catch (IllegalArgumentException const& failure) {
            EXPECT_EQ(failure.getMessage(),
                      "The set message provided carries data of an unknown type.");
        }
    }
}

/// Ends the process by a signal, unless `exit` comes first.
void armAlarm() {
    itimerval timer{};
    timer.it_value.tv_usec = 200'000;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

[[noreturn]] void sendTwice(std::int32_t firstTag) {
    CplClient client;
    SetMessage first(PIDType{1}, 2, eSetAbsolute);
    first.setDataType(firstTag);
    try {
        client.send(&first);
    } catch (IllegalArgumentException const&) {
    }
    armAlarm();
    client.cancelAllSubscriptions();
    std::_Exit(0);
}

// Whoever drives the client must keep such messages from it; see the header.
TEST(CplClientDeathTest, AnUnknownTypeLeavesTheLockHeldForEver) {
    EXPECT_EXIT(sendTwice(Int32), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(sendTwice(NoValue), testing::KilledBySignal(SIGALRM), "");
}

TEST_F(CplClientTest, AnEventGoesOutWithAllThatItReserved) {
    SendEventMessage message(EIDType{64}, 0xAB);
    EXPECT_EQ(sent(message), Lines{"event(eid=64, did=ab, data=[], size=0, 0)"});
    message.reserve(4);
    message.addUInt16(0x0AFF);
    EXPECT_EQ(sent(message), Lines{"event(eid=64, did=ab, data=[0a ff 00 00], size=4, 0)"});
}

TEST_F(CplClientTest, SubscriptionsNameTheRegistration) {
    client.open("", 0);
    EXPECT_EQ(sent(ParameterSubscription(PIDType{17}, 0x10, eSubscribeImmediate)),
              Lines{"subscribe(pid=17, did=10, callback=1, flag=1, 0, 0)"});
    EXPECT_EQ(sent(ListSubscription(eListIDType{6}, 2, 0x10, eSubscribeUpdate)),
              Lines{"subscribe(lid=6, number=2, did=10, callback=1, flag=4, 0, 0)"});
}

TEST_F(CplClientTest, ABatchSendsItsParametersToAppendAndLeavesItsListsOut) {
    BatchSubscription const batch({new ParameterSubscription(PIDType{1}, 0xA, eSubscribeReplace),
                                   new ListSubscription(eListIDType{6}, 1, 0xB, eSubscribeReplace),
                                   nullptr,
                                   new ParameterSubscription(PIDType{2}, 0xC, eSubscribeReplace)},
                                  eSubscribeReplace);
    EXPECT_EQ(sent(batch), Lines{"subscribe([1:a, 2:c], callback=65535, flag=3, 0, 0)"});
}

TEST_F(CplClientTest, ABatchOfListsAloneStillCallsTheLibrary) {
    BatchSubscription const batch({new ListSubscription(eListIDType{6}, 1, 2, eSubscribeAppend)},
                                  eSubscribeAppend);
    EXPECT_EQ(sent(batch), Lines{"subscribe([], callback=65535, flag=3, 0, 0)"});
}

TEST_F(CplClientTest, WhatTheLibraryAnswersToASendIsDropped) {
    for (char const* operation : {"set", "event", "setList", "subscribe"})
        library.setResult(operation, eStatusRefused);
    EXPECT_EQ(sent(SendEventMessage(EIDType{1}, 2)).size(), 1u);
    EXPECT_EQ(sent(ParameterSubscription(PIDType{1}, 2, eSubscribeAppend)).size(), 1u);
}

TEST_F(CplClientTest, IssuesAreNotSent) {
    EXPECT_EQ(sent(ParameterIssue(1, 2, 3)), Lines{});
    EXPECT_EQ(sent(ListIssue(6, 1, ListItem(), 1)), Lines{});
}

SetListMessage setList(int lid, ListItem const& item) {
    return SetListMessage(static_cast<eListIDType>(lid), 3, 0x10, eListItemAction{2}, item);
}

void add(ListItem& item, char const* name, int tag, char const* text) {
    item.addParameter(ListItemParameter(name, readValue(text, dataTypeRow(tag).read), tag));
}

TEST_F(CplClientTest, OnlyTwoListsCanBeWritten) {
    for (int const lid : {-1, 0, 5, 7, 31, 33}) {
        EXPECT_EQ(sent(setList(lid, ListItem())), Lines{}) << lid;
    }
}

TEST_F(CplClientTest, AnItemWithoutParametersGoesOutWithItsIdAlone) {
    EXPECT_EQ(sent(setList(6, ListItem(9, 0, 0, 0))),
              Lines{"setList(action=2, lid=6, did=10, number=3, DeviceEventListItem{itemId=9, "
                    "clipName=\"\", markInTime=0}, 0)"});
    EXPECT_EQ(sent(setList(32, ListItem(9, 0, 0, 0))),
              Lines{"setList(action=2, lid=32, did=10, number=3, CameraSourceListItem{itemId=9, "
                    "cameraId=0, cameraName=\"\", headType=\"\", aspectRatio=0, videoMode=0, "
                    "connected=false, colorBarsEnabled=false, autoIrisEnabled=false, "
                    "autoBlackEnabled=false, filter=0, sceneFile=0, redTally=false, "
                    "yellowTally=false, greenTally=false, suiteId=0}, 0)"});
}

TEST_F(CplClientTest, ADeviceEventCarriesItsFieldsByName) {
    ListItem item(1, 0, 0, 0);
    add(item, "MarkIn Time", UInt32, "4000000000");
    EXPECT_EQ(sent(setList(6, item)),
              Lines{"setList(action=2, lid=6, did=10, number=3, DeviceEventListItem{itemId=1, "
                    "clipName=\"\", markInTime=4000000000}, 0)"});
    add(item, "Clip Name", String, "opener");
    add(item, "clip name", String, "other");
    EXPECT_EQ(sent(setList(6, item)),
              Lines{"setList(action=2, lid=6, did=10, number=3, DeviceEventListItem{itemId=1, "
                    "clipName=\"opener\", markInTime=4000000000}, 0)"});
}

TEST_F(CplClientTest, ACameraSourceCarriesItsFieldsByName) {
    ListItem item(1, 0, 0, 0);
    char const* const numbers[] = {"Camera Id", "Aspect Ratio", "Video Mode",
                                   "Filter",    "Scene File",   "Suite ID"};
    for (int i = 0; i < 6; ++i)
        add(item, numbers[i], UInt16, std::to_string(65530 + i).c_str());
    for (char const* name : {"Connected", "Auto Iris Enabled", "Red Tally", "Green Tally"})
        add(item, name, Bool, "true");
    for (char const* name : {"Color Bars Enabled", "Auto Black Enabled", "Yellow Tally"})
        add(item, name, Bool, "false");
    add(item, "Camera Name", String, "CAM 1");
    add(item, "Head Type", String, "studio");
    EXPECT_EQ(sent(setList(32, item)),
              Lines{"setList(action=2, lid=32, did=10, number=3, CameraSourceListItem{itemId=1, "
                    "cameraId=65530, cameraName=\"CAM 1\", headType=\"studio\", "
                    "aspectRatio=65531, videoMode=65532, connected=true, "
                    "colorBarsEnabled=false, autoIrisEnabled=true, autoBlackEnabled=false, "
                    "filter=65533, sceneFile=65534, redTally=true, yellowTally=false, "
                    "greenTally=true, suiteId=65535}, 0)"});
}

TEST_F(CplClientTest, AFieldOfAnotherKindIsReadByTheStructuresWidth) {
    ListItem item(1, 0, 0, 0);
    add(item, "Clip Name", UInt32, "25185");  // the bytes of "ab"
    add(item, "MarkIn Time", Bool, "true");   // one byte, the others count as 0
    EXPECT_EQ(sent(setList(6, item)),
              Lines{"setList(action=2, lid=6, did=10, number=3, DeviceEventListItem{itemId=1, "
                    "clipName=\"ab\", markInTime=1}, 0)"});
    ListItem camera(1, 0, 0, 0);
    add(camera, "Camera Id", UInt32, "65537");  // cut to 16 bits
    EXPECT_NE(sent(setList(32, camera))[0].find("cameraId=1, "), std::string::npos);
}

TEST_F(CplClientTest, AFieldThatIsNotCopiedRepeatsTheOneBeforeIt) {
    ListItem item(1, 0, 0, 0);
    add(item, "Filter", UInt16, "7");
    item.addParameter(ListItemParameter("Scene File", nullptr, Double));
    std::string const call = sent(setList(32, item))[0];
    EXPECT_NE(call.find("filter=7, sceneFile=7, "), std::string::npos) << call;
    // No more of it is read than there is.
    ListItem event(1, 0, 0, 0);
    add(event, "Clip Name", Bool, "true");
    event.addParameter(ListItemParameter("MarkIn Time", nullptr, Double));
    EXPECT_EQ(sent(setList(6, event)),
              Lines{"setList(action=2, lid=6, did=10, number=3, DeviceEventListItem{itemId=1, "
                    "clipName=\"\1\", markInTime=1}, 0)"});
}

TEST_F(CplClientTest, SendsOfSeveralThreadsDoNotOverlap) {
    int inside = 0;  // guarded by the client's lock, which the thread sanitizer checks
    library.onCall([&](std::string const&) {
        EXPECT_EQ(++inside, 1);
        --inside;
    });
    auto const work = [&] {
        for (int i = 0; i < 500; ++i) {
            ParameterSubscription const message(PIDType{1}, 2, eSubscribeAppend);
            client.send(&message);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(library.calls().size(), 1000u);
}

// Without that, whoever sends without a pause to a slow frame has the lock back each time.
TEST_F(CplClientTest, WhoClosesGoesAheadOfWhoSendsWithoutAPause) {
    std::atomic<bool> closed{false};
    library.onCall([](std::string const& line) {
        if (line.starts_with("event"))
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    });
    std::thread sender([&] {
        SendEventMessage const message(EIDType{1}, 2);
        while (!closed)
            client.send(&message);
    });
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(library.waitForCalls(1));
        auto const before = library.calls().size();
        client.close();
        // What was under way, one that came in between the two lines above, and the close.
        EXPECT_LE(library.takeCalls().size(), before + 4);
    }
    closed = true;
    sender.join();
}

TEST_F(CplClientTest, AnIssueMayLeadToASendOnTheCallbacksThread) {
    struct Answerer : IssueHandler {
        explicit Answerer(CplClient& target) : client(target) {}
        void handleIssue(Issue*) override {
            SendEventMessage const answer(EIDType{1}, 2);
            client.send(&answer);
        }
        CplClient& client;
    } answerer(client);
    client.addIssueHandler(&answerer);
    client.open("", 0);
    library.takeCalls();
    ParameterRecord record(1, 2, String, "x");
    std::thread callbackThread([&] { library.parameterUpdate(record); });
    EXPECT_TRUE(library.waitForCall("event(eid=1, did=2, data=[], size=0, 0)"));
    callbackThread.join();
}

}  // namespace
}  // namespace FrameDriver::CPL
