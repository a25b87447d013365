// A frame that comes, goes, stalls and moves, and what the panel shows meanwhile.

#include "Studio.h"
#include "platform/logging/LogManager.h"

#include <atomic>
#include <chrono>
#include <string>

namespace FrameDriver::Testing {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Connection : public Studio {
  protected:
    /// The panel is right about what the frame holds now.
    void expectShown(std::string const& preset) {
        EXPECT_TRUE(shows("FRAME.CONNECTED", "ON"));
        EXPECT_TRUE(shows("ME1.PST.SRC" + preset, "ON"));
        EXPECT_TRUE(shows("ME1.PST.SOURCE", preset));
    }
    void expectDark() {
        EXPECT_TRUE(shows("SYSTEM.REBOOT_INDICATION", "INV"));
        EXPECT_TRUE(shows("FRAME.CONNECTED", "OFF"));
        EXPECT_TRUE(shows("ME1.PST.SRC2", "OFF"));
        EXPECT_TRUE(shows("ME1.PGM.SRC1", "OFF"));
        EXPECT_TRUE(reads("SOURCE3.NAME", ""));
    }
};

TEST_F(Connection, AFrameThatIsAbsentAtFirstIsFoundWhenItComes) {
    startPanel();
    EXPECT_TRUE(shows("CONNECTED_MF", frameAddress.text()));
    EXPECT_EQ(panel->record().sid("FRAME.CONNECTED"), "OFF");
    raise("ME1.PST.SRC5");  // goes nowhere, and harms nothing
    frame->start();
    expectShown("2");
    auto const time = panel->record().sid("SYSTEM.REBOOT_INDICATION").value_or("none");
    EXPECT_TRUE(time.size() == 5 && time[2] == ':') << time;
}

TEST_F(Connection, AFrameThatRefusesIsAskedAgain) {
    frame->start();
    frame->refuse(true);
    startPanel();
    // The second attempt is made, so the first one has failed.
    ASSERT_TRUE(
        log.waitFor("warning: Connecting to the frame at " + frameAddress.text(), 2, patience));
    EXPECT_TRUE(shows("CONNECTED_MF", frameAddress.text()));
    EXPECT_EQ(panel->record().sid("FRAME.CONNECTED"), "OFF");
    frame->refuse(false);
    expectShown("2");
}

TEST_F(Connection, AFrameThatStopsAndComesBackOtherwiseIsShownAsItIsNow) {
    startBoth();
    frame->stop();
    expectDark();
    operatorSets(10, 0x24000100, 6);
    operatorSets(40, 0x18000003, 12);
    frame->start();
    expectShown("6");
    EXPECT_TRUE(shows("AUX4.SRC12", "ON"));
    EXPECT_TRUE(shows("ME1.PST.SRC2", "OFF"));
    EXPECT_TRUE(reads("SOURCE3.NAME", "Camera 3"));
    raise("ME1.PST.SRC9");
    EXPECT_TRUE(shows("ME1.PST.SRC9", "ON"));
}

TEST_F(Connection, ACutLineIsJoinedAgain) {
    startBoth();
    for (std::size_t time = 1; time <= 3; ++time) {
        frame->disconnect();
        ASSERT_TRUE(frameTells("closed reason=\"cut off\"", time));
        ASSERT_TRUE(frameTells("#" + std::to_string(time + 1) + " < hello"));
        // It was dark in between: the record of what was shown says so.
        EXPECT_TRUE(shows("FRAME.CONNECTED", "ON"));
    }
    operatorSets(10, 0x24000100, 6);
    expectShown("6");
    EXPECT_EQ(frame->clients().size(), 1U);
}

// The client library finds a silent frame within three seconds, and the observer looks about
// every 1050 ms.
TEST_F(Connection, AFrozenFrameIsNoticed) {
    startBoth();
    std::atomic<steady_clock::rep> noticed{0};
    auto* const logging = Brindlemoor::Utilities::Logging::LogManager::getInstance();
    auto const sink = logging->addSink([&noticed](auto const& line) {
        if (line.category == "CPLClient" && noticed == 0)
            noticed = steady_clock::now().time_since_epoch().count();
    });
    auto const start = steady_clock::now();
    frame->freeze(true);
    EXPECT_TRUE(shows("SYSTEM.REBOOT_INDICATION", "INV"));
    auto const shown = steady_clock::now() - start;
    logging->removeSink(sink);
    ASSERT_NE(noticed, 0);
    EXPECT_LT(steady_clock::duration(noticed) - start.time_since_epoch(), milliseconds(3000));
    EXPECT_LT(shown, milliseconds(3000 + 1050 + 500));
    expectDark();
    operatorSets(10, 0x24000100, 6);
    frame->freeze(false);
    expectShown("6");
}

TEST_F(Connection, ASlowFrameIsWaitedFor) {
    installation.setTimeOut(20000);
    startBoth();
    frame->delay(milliseconds(300));
    auto const start = steady_clock::now();
    raise("ME1.PST.SRC5");
    EXPECT_GE(steady_clock::now() - start, milliseconds(300));
    expectShown("5");
    EXPECT_NE(panel->record().sid("SYSTEM.REBOOT_INDICATION"), "INV");
}

TEST_F(Connection, AFrameThatIsTooSlowIsNotWaitedForAndStillShown) {
    installation.setTimeOut(2000);
    startBoth();
    panel.reset();
    installation.setTimeOut(50);
    startPanel();
    EXPECT_TRUE(log.has("info: CPL Send Ack Read Timeout = 50ms"));
    ASSERT_TRUE(shows("FRAME.CONNECTED", "ON"));
    ASSERT_TRUE(reads("SOURCE16.NAME", "Remote 2"));
    frame->delay(milliseconds(1500));
    auto const start = steady_clock::now();
    raise("ME1.PST.SRC5");
    auto const took = steady_clock::now() - start;
    EXPECT_GE(took, milliseconds(50));
    EXPECT_LT(took, milliseconds(1500));
    expectShown("5");
}

TEST_F(Connection, AtTheNextStartTheDriverGoesWhereTheSettingsSay) {
    LoopbackAddress const otherAddress;
    auto const other = makeFrame(otherAddress.text());
    other->frame().set({10, 0x24000100}, 0,
                       FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, 11));
    other->start();
    startBoth();
    installation.setFrameAddress(otherAddress.text());
    // What was read at the start counts while the driver runs.
    frame->disconnect();
    ASSERT_TRUE(frameTells("#2 < hello"));
    panel->stop();
    EXPECT_TRUE(frameTells("#2 closed reason=\"bye\""));
    frame->stop();

    startPanel();
    EXPECT_TRUE(shows("CONNECTED_MF", otherAddress.text()));
    expectShown("11");
    raise("ME1.PST.SRC7");
    EXPECT_EQ(other->record().count("< set pid=10 did=24000100"), 1U);
    panel.reset();  // ahead of the frame that it is joined to
}

TEST_F(Connection, StoppingSaysGoodbyeAndNothingIsHeardFromTheFrameAnyMore) {
    startBoth();
    panel->stop();
    EXPECT_TRUE(frameTells("#1 closed reason=\"bye\""));
    EXPECT_TRUE(log.has("info: Driver deinitialize complete."));
    auto const heard = panel->record().count();
    operatorSets(10, 0x24000100, 6);
    EXPECT_EQ(panel->record().count(), heard);
}

TEST_F(Connection, StoppingWhileTheFrameTalksIsClean) {
    startBoth();
    for (int source = 0; source <= 16; ++source)
        operatorSets(10, 0x24000000, source);
    panel->stop();
    EXPECT_TRUE(log.has("info: Driver deinitialize complete."));
}

}  // namespace
}  // namespace FrameDriver::Testing
