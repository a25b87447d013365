// The observer's passes, one by one, by a clock that is moved by hand.
#include "DriverFixture.h"

#include <gtest/gtest.h>

#include <future>
#include <stdexcept>

using namespace FrameDriver::Testing;

namespace {

class Connection : public DriverFixture {
  protected:
    void loadInstallation() {
        writeInstallation();
        writeSubscriptions("Subscriptions.xml",
                           "<subscription xsi:type=\"parameterSubscription\"><paramId>10</paramId>"
                           "<deviceId>0x62000000</deviceId><flag>immediate</flag></subscription>");
        writeDictionary("FIDs-to-frame.xml",
                        "<conversion><from xsi:type=\"fid\"><id>PANEL.INIT.COMPLETE</id>"
                        "<parameter name=\"VERSION\">{@v}</parameter>"
                        "<parameter name=\"DATE\">{@d}</parameter></from>"
                        "<to xsi:type=\"sid\"><id>INIT</id><value>{@v}/{@d}</value></to>"
                        "</conversion>"
                        "<conversion><from xsi:type=\"fid\"><id>PANEL.CONNECTION.LOST</id></from>"
                        "<to xsi:type=\"sid\"><id>LOST</id><value>1</value></to></conversion>");
        load();
        EXPECT_EQ(clock.sleeping(), 50);
        EXPECT_EQ(timeClock.sleeping(), 1000);
        sinks.take();
        frame().takeCalls();
        log.take();
    }
    /// From the sleep ahead of one look at the state to the sleep ahead of the next.
    void pass() {
        EXPECT_EQ(clock.next(), 1000);
        EXPECT_EQ(clock.next(), 50);
    }
    static constexpr char const* subscribed =
        "subscribe(pid=10, did=62000000, callback=1, flag=1, 0, 0)";
};

}  // namespace

TEST_F(Connection, TheFrameIsThereAtTheStart) {
    directory.write("Version", "745=1.2\n");
    loadInstallation();
    pass();
    EXPECT_EQ(sinks.take(), (Lines{"SID CONNECTED_MF = 10.0.0.2"}));
    EXPECT_EQ(frame().takeCalls(), (Lines{"connect(\"10.0.0.2\", 5000)"}));
    EXPECT_EQ(log.take(), (Lines{"warning: Connecting to the frame at 10.0.0.2"}));
    pass();
    EXPECT_EQ(sinks.take(),
              (Lines{"SID SYSTEM.REBOOT_INDICATION = 09:05", "SID INIT = 1.2/Mar  8 2022"}));
    EXPECT_EQ(frame().takeCalls(), (Lines{subscribed}));
    EXPECT_EQ(log.take(),
              (Lines{"info: Frame connection complete.", "info: Subscribing to frame parameter."}));
}

TEST_F(Connection, InitCarriesBuddyBuildWithoutAGoodVersion) {
    loadInstallation();
    pass();
    sinks.take();
    pass();
    EXPECT_EQ(sinks.take().back(), "SID INIT = BUDDY BUILD/Mar  8 2022");
}

TEST_F(Connection, TheFrameIsAbsentAndTriedOncePerPass) {
    loadInstallation();
    frame().setResult("connect", 0);
    for (int round = 0; round < 3; ++round) {
        pass();
        EXPECT_EQ(sinks.take(), (Lines{"SID CONNECTED_MF = 10.0.0.2"}));
        EXPECT_EQ(frame().takeCalls(), (Lines{"connect(\"10.0.0.2\", 5000)"}));
    }
}

TEST_F(Connection, NothingIsRepeatedWhileItLasts) {
    loadInstallation();
    pass();
    pass();
    sinks.take();
    frame().takeCalls();
    log.take();
    for (int round = 0; round < 5; ++round)
        pass();
    EXPECT_EQ(sinks.take(), Lines{});
    EXPECT_EQ(frame().takeCalls(), Lines{});
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Connection, ALostLinkIsToldOncePerPassInWhichItIsStillLost) {
    loadInstallation();
    pass();
    pass();
    sinks.take();
    frame().takeCalls();
    log.take();
    // A client that stays lost after its disconnect, as none should.
    frame().onCall([](std::string const& call) {
        if (call == "disconnect()")
            RecordedClient::latest().setConnectionState(eConnectionLost);
    });
    frame().setConnectionState(eConnectionLost);
    for (int round = 0; round < 2; ++round) {
        pass();
        frame().setConnectionState(eConnectionLost);
        EXPECT_EQ(sinks.take(), (Lines{"SID SYSTEM.REBOOT_INDICATION = INV", "SID LOST = 1"}));
        EXPECT_EQ(frame().takeCalls(), (Lines{"disconnect()"}));
        EXPECT_EQ(log.take(),
                  (Lines{"info: Disconnecting from the frame.", "info: CPL client disconnect",
                         "info: TimeClient changed state to Disconnected"}));
    }
}

TEST_F(Connection, ALostLinkIsMadeAnew) {
    loadInstallation();
    pass();
    pass();
    frame().setConnectionState(eConnectionLost);
    pass();
    sinks.take();
    frame().takeCalls();
    pass();
    EXPECT_EQ(frame().takeCalls(), (Lines{"connect(\"10.0.0.2\", 5000)"}));
    pass();
    EXPECT_EQ(frame().takeCalls(), (Lines{subscribed}));
    EXPECT_EQ(sinks.take(),
              (Lines{"SID CONNECTED_MF = 10.0.0.2", "SID SYSTEM.REBOOT_INDICATION = 09:05",
                     "SID INIT = BUDDY BUILD/Mar  8 2022"}));
}

TEST_F(Connection, ALinkThatComesBackUnseenRunsNoSequence) {
    loadInstallation();
    pass();
    pass();
    frame().takeCalls();
    sinks.take();
    frame().setConnectionState(eConnectionLost);
    frame().onCall([](std::string const& call) {
        if (call == "disconnect()")
            RecordedClient::latest().setConnectionState(eConnected);
    });
    pass();
    frame().setConnectionState(eConnected);
    pass();
    EXPECT_EQ(frame().takeCalls(), (Lines{"disconnect()"}));
}

TEST_F(Connection, OtherStatesMeanNothing) {
    loadInstallation();
    for (int const state : {0, 4, 99, -1}) {
        frame().setConnectionState(static_cast<ClientConnectionState>(state));
        pass();
    }
    EXPECT_EQ(sinks.take(), Lines{});
    EXPECT_EQ(frame().takeCalls(), Lines{});
}

TEST_F(Connection, WithoutAnAddressEveryPassWarnsAndTriesNothing) {
    writeInstallation();
    writeSettings({{"Simulator Conversion Manifest", "Configuration/SimulatorManifest.xml"}});
    load();
    sinks.take();
    frame().takeCalls();
    log.take();
    for (int round = 0; round < 2; ++round) {
        pass();
        EXPECT_EQ(log.take(),
                  (Lines{"warning: Settings file does not contain a switcher address."}));
    }
    EXPECT_EQ(sinks.take(), Lines{});
    EXPECT_EQ(frame().takeCalls(), Lines{});
    EXPECT_EQ(driver->getFrameAddress(), "");
}

TEST_F(Connection, NoAttemptWhileConnected) {
    loadInstallation();
    frame().setConnectionState(eConnected);
    driver->connectToFrame();
    EXPECT_EQ(log.take(), (Lines{"warning: Connecting to the frame at 10.0.0.2",
                                 "warning: The client is not in the correct state to start a new "
                                 "connection: 2"}));
    EXPECT_EQ(frame().takeCalls(), Lines{});
    EXPECT_EQ(sinks.take(), Lines{});
}

TEST_F(Connection, AChangedSubscriptionListTakesEffectAtTheNextConnection) {
    loadInstallation();
    pass();
    pass();
    frame().takeCalls();
    writeSubscriptions("Subscriptions.xml",
                       "<subscription xsi:type=\"listSubscription\"><listId>12</listId>"
                       "<deviceId>0x62000000</deviceId></subscription>");
    frame().setConnectionState(eConnectionLost);
    pass();
    pass();
    frame().takeCalls();
    pass();
    EXPECT_EQ(frame().takeCalls(),
              (Lines{"subscribe(lid=12, number=1, did=62000000, callback=1, flag=3, 0, 0)"}));
}

TEST_F(Connection, ASubscriptionListThatCannotBeReadLeavesTheOthers) {
    loadInstallation();
    writeManifest("<moduleConfiguration><cplSubscriptionList>absent.xml</cplSubscriptionList>"
                  "</moduleConfiguration><moduleConfiguration>"
                  "<cplSubscriptionList>Subscriptions.xml</cplSubscriptionList>"
                  "</moduleConfiguration>");
    HandClock ownClock;
    QuillaneQFD own(ownClock);
    own.initialize();
    log.take();
    frame().takeCalls();
    own.subscribeToFrame();
    EXPECT_EQ(frame().takeCalls(), (Lines{subscribed}));
    auto const lines = log.take();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "info: Subscribing to frame parameter.");
    EXPECT_EQ(lines[1].rfind("error: A fatal error occurred while parsing the xml file. ", 0), 0U)
        << lines[1];
    ownClock.release();
}

TEST_F(Connection, AnExceptionEndsTheObserverAndTheDriverGoesOnWithoutIt) {
    class Thrower : public RecordingSinks {
      public:
        void setState(std::string const& name, std::string const& value) override {
            RecordingSinks::setState(name, value);
            if (name == "INIT") {
                reached.set_value();
                throw std::runtime_error("no such state");
            }
        }
        std::promise<void> reached;
    } thrower;
    loadInstallation();
    configuration().setStateSink(&thrower);
    pass();
    frame().takeCalls();
    clock.release();
    thrower.reached.get_future().wait();
    driver->handleFID("PANEL.CONNECTION.LOST", {});
    EXPECT_EQ(thrower.take().back(), "SID LOST = 1");
    frame().setConnectionState(eNotConnected);
    auto const calls = frame().takeCalls();
    EXPECT_EQ(calls, (Lines{subscribed}));
    endDriver();
    EXPECT_TRUE(log.has("error: An exception ended the thread 'Task': no such state"));
}

TEST(FrameConnectionObserver, WhilePausedNeitherLooksNorActs) {
    HandClock clock;
    FrameConnectionObserver observer(clock);  // without a driver: a look would be a crash
    observer.pause();
    observer.start(nullptr);
    EXPECT_EQ(clock.sleeping(), 50);
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(clock.next(), 50);
    observer.stop(nullptr);
    clock.release();
    EXPECT_TRUE(observer.waitUntilEnded(boost::posix_time::pos_infin));
}
