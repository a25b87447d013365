// What the panel shows while the frame comes and goes.
#include "RoadFixture.h"

using namespace FrameDriver::Testing;

namespace {

class Link : public RoadFixture {};

}  // namespace

TEST_F(Link, TheFrameIsAbsentAtTheStartAndComesLater) {
    startPanel();
    EXPECT_TRUE(shows("LOADED", ""));
    EXPECT_TRUE(shows("CONNECTED_MF", frameAddress));
    EXPECT_FALSE(panel->record().sid("FRAME.CONNECTED").value_or("OFF") == "ON");
    startFrame();
    EXPECT_TRUE(connected());
    EXPECT_TRUE(shows("ME1.PGM.SRC1", "ON"));
}

TEST_F(Link, TheFrameGoesAndComesBackWithOtherState) {
    startFrame();
    startPanel();
    ASSERT_TRUE(connected());
    operate(programME1, 7);
    ASSERT_TRUE(shows("ME1.PGM.SRC7", "ON"));
    frame.reset();
    EXPECT_TRUE(shows("FRAME.CONNECTED", "OFF"));
    EXPECT_TRUE(shows("SYSTEM.REBOOT_INDICATION", "INV"));
    EXPECT_TRUE(shows("ME1.PGM.SRC7", "OFF"));
    startFrame();
    operate(programME1, 4);
    EXPECT_TRUE(connected());
    EXPECT_TRUE(shows("ME1.PGM.SRC4", "ON"));
    EXPECT_TRUE(shows("ME1.PGM.SRC7", "OFF"));
}

TEST_F(Link, CutConnectionsAreMadeAnew) {
    startFrame();
    startPanel();
    ASSERT_TRUE(connected());
    frame->disconnect();
    EXPECT_TRUE(shows("FRAME.CONNECTED", "OFF"));
    EXPECT_TRUE(connected());
    panel->raise("ME1.PST.SRC5", {});
    EXPECT_TRUE(shows("ME1.PST.SRC5", "ON"));
}

TEST_F(Link, ARefusingFrameIsTriedUntilItTakesThePanel) {
    startFrame();
    frame->refuse(true);
    startPanel();
    ASSERT_TRUE(shows("CONNECTED_MF", frameAddress));
    frame->refuse(false);
    EXPECT_TRUE(connected());
}

TEST_F(Link, AFrozenFrameIsNoticed) {
    startFrame();
    startPanel();
    ASSERT_TRUE(connected());
    frame->freeze(true);
    EXPECT_TRUE(shows("SYSTEM.REBOOT_INDICATION", "INV"));
    frame->freeze(false);
    EXPECT_TRUE(connected());
}

TEST_F(Link, ADriverStartsOnAnotherFramesAddress) {
    startFrame();
    auto const other = network.address(2);
    auto const elsewhere = makeFrame(other);
    setFrameAddress(other);
    startPanel();
    ASSERT_TRUE(connected());
    EXPECT_TRUE(shows("CONNECTED_MF", other));
    EXPECT_TRUE(elsewhere->record().waitFor("< hello"));
    EXPECT_EQ(frame->record().count("connected from="), 0U);
}

TEST_F(Link, UnloadWhileTheFrameTalksIsClean) {
    startFrame();
    startPanel();
    ASSERT_TRUE(connected());
    for (int source = 0; source < 17; ++source)
        operate(programME1, source);
    panel->stop();
    panel.reset();
}

TEST_F(Link, BrokenFilesLeaveARunningDriver) {
    directory.write("Configuration/Crosspoints/ToPanel.xml", "<dictionary>");
    directory.write("Configuration/Keyers/Subscriptions.xml", "<subscriptionList>");
    directory.write("Configuration/Keyers/Fids.xml", "");
    std::filesystem::remove(directory.path() + "/Configuration/Clips/ToFrame.xml");
    LogCapture log;
    startFrame();
    startPanel();
    EXPECT_TRUE(connected());
    EXPECT_TRUE(log.has("info: Initialization complete."));
    unsigned errors = 0;
    for (auto const& line : log.lines())
        errors += line.starts_with("error: ");
    EXPECT_EQ(errors, 4U);
    panel->raise("ME1.PST.SRC5", {});
    EXPECT_TRUE(frame->record().waitFor("< set pid=10 did=24000100 flag=0 type=UInt16 value=5"));
}
