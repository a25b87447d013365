// What the driver does itself, reached from the sample dictionaries; and the clean state that it
// gives a panel.

#include "Studio.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace FrameDriver::Testing {
namespace {

class OwnFIDs : public Studio {
  protected:
    void startBothFrames() {
        other->start();
        startBoth();
        other->frame().set({10, 0x24000100}, 0,
                           FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, 9));
    }
    void expectAtTheOther() {
        EXPECT_TRUE(shows("CONNECTED_MF", otherAddress.text()));
        EXPECT_TRUE(shows("ME1.PST.SRC9", "ON"));
        EXPECT_TRUE(shows("FRAME.CONNECTED", "ON"));
        EXPECT_EQ(panel->record().sid("ME1.PST.SRC2"), "OFF");
        EXPECT_TRUE(frame->record().waitFor("closed", 1, patience));
    }
    std::string settings() const { return installation.read("Configuration/Settings.xml"); }

    LoopbackAddress otherAddress;
    std::unique_ptr<FrameSim::FrameServer> other = makeFrame(otherAddress.text());
};

TEST_F(OwnFIDs, AMoveToAnotherFrameShowsThatOneAndLeavesTheFileAlone) {
    startBothFrames();
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", otherAddress.text().c_str()}});
    expectAtTheOther();
    EXPECT_TRUE(log.has("info: Disconnecting from the frame."));
    EXPECT_TRUE(log.waitFor("info: Resetting the panel to a clean state.", 2, patience));
    EXPECT_NE(settings().find(frameAddress.text()), std::string::npos);
    EXPECT_EQ(settings().find(otherAddress.text()), std::string::npos);
}

TEST_F(OwnFIDs, AMoveThatIsSavedIsInTheFile) {
    startBothFrames();
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", otherAddress.text().c_str()}, {"SAVE", "TRUE"}});
    expectAtTheOther();
    EXPECT_NE(settings().find(otherAddress.text()), std::string::npos);
    EXPECT_EQ(settings().find(frameAddress.text()), std::string::npos);
}

TEST_F(OwnFIDs, AMoveToWhereItIsIsNoneIfOnlyNewOnesCount) {
    startBothFrames();
    raise("FRAME.ADDRESS.SET",
          {{"ADDRESS", frameAddress.text().c_str()}, {"IFNEW", "TRUE"}, {"SAVE", "TRUE"}});
    EXPECT_FALSE(log.has("info: Disconnecting from the frame."));
    raise("ME1.PST.SRC5");
    EXPECT_TRUE(shows("ME1.PST.SRC5", "ON"));
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", otherAddress.text().c_str()}, {"IFNEW", "TRUE"}});
    expectAtTheOther();
}

TEST_F(OwnFIDs, AMoveToWhereItIsTakesTheLinkDownOtherwise) {
    startBoth();
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", frameAddress.text().c_str()}, {"IFNEW", "true"}});
    EXPECT_TRUE(log.has("info: Disconnecting from the frame."));
    EXPECT_TRUE(frameTells("#2 < hello"));
    EXPECT_TRUE(shows("FRAME.CONNECTED", "ON"));
}

TEST_F(OwnFIDs, AMemoryRecallComesBackWithThePanelsNumber) {
    panel = makePanel(3);
    panel->start();
    raise("PANEL.MEMORY.RECALL", {{"REG", "5"}});
    PanelSim::Expectation wanted{PanelSim::Heard::fid, "PANEL.MEMORY.RECALL", {}, {}};
    wanted.parameters.add("REG", "5");
    wanted.parameters.add("WP", "3");
    EXPECT_TRUE(panel->record().wait(wanted, patience));
}

TEST_F(OwnFIDs, TheMonkeyPlaysUntilItIsSwitchedOff) {
    startBoth();
    raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "ON"}});
    EXPECT_TRUE(shows("MONKEYTEST.ENABLED", "ON"));
    EXPECT_TRUE(frameTells("#1 < set", 20));
    raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "OFF"}});
    EXPECT_TRUE(shows("MONKEYTEST.ENABLED", "OFF"));
}

TEST_F(OwnFIDs, ThePanelMayGoWhileTheMonkeyPlays) {
    startBoth();
    raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "ON"}});
    raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "ON"}});
    EXPECT_TRUE(frameTells("#1 < set", 5));
    panel.reset();
}

TEST_F(OwnFIDs, ThePanelIsCleanBeforeAnyFrameIsThere) {
    startPanel();
    EXPECT_EQ(panel->record().sid("FRAME.CONNECTED"), "OFF");
    EXPECT_EQ(panel->record().sid("ME2.KEY4.CUT.SRC16"), "OFF");
    EXPECT_EQ(panel->record().sid("TAKE.MODE"), "CUT");
    EXPECT_TRUE(log.has("info: Resetting the panel to a clean state."));
}

}  // namespace
}  // namespace FrameDriver::Testing
