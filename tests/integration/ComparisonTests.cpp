// Both measures of what a panel shows find a lie where there is one: the fresh panel, and the
// switcher's truth that knows neither driver nor dictionary.

#include "Studio.h"
#include "SwitcherTruth.h"
#include "sims/panel/PanelComparison.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace FrameDriver::Testing {
namespace {

using Lines = std::vector<std::string>;

class Comparison : public Studio {
  protected:
    Lines differences() {
        PanelSim::OwnNames const own(installation.read("config/OwnState.txt"));
        auto const comparison = PanelSim::compareWithFresh(
            panel->record(), {QFD_MODULE, installation.path(), 7, panelAddress.text()}, own,
            {patience, std::chrono::milliseconds(500), std::chrono::milliseconds(2000)});
        EXPECT_EQ(comparison.trouble, "");
        Lines lines;
        for (auto const& one : comparison.found)
            lines.push_back(shown(one));
        return lines;
    }
};

TEST_F(Comparison, AfterAFullShowThePanelDiffersInNothing) {
    startBoth();
    raise("ME1.PST.SRC5");
    raise("ME1.CUT");
    raise("ME2.KEY3.FILL.SRC7");
    raise("ME2.KEY3.TOGGLE");
    raise("MEMORY.STORE", {{"REG", "5"}});
    raise("CAMERA.SET", {{"ID", "2"}, {"CONNECTED", "ON"}, {"NAME", "Left"}});
    raise("CLIP1.LENGTH.SET", {{"VAL", "10.05"}});
    raise("CLIP.STACK.INSERT", {{"ID", "3"}, {"MARKIN", "0"}, {"NAME", "Opener"}});
    // The panel's own, in which a fresh one is other and also right.
    raise("PANEL.SHIFT", {{"VAL", "ON"}});
    raise("TAKE.MODE", {{"VAL", "AUTO"}});
    raise("ME1.DELEGATE.KEY3");
    raise("MEMORY.SELECT", {{"VAL", "5"}});
    EXPECT_EQ(differences(), Lines());
    EXPECT_EQ(lastingLies(frame->frame(), panel->record(), patience), Lines());
}

TEST_F(Comparison, AWrongLampIsFound) {
    startBoth();
    ASSERT_EQ(lastingLies(frame->frame(), panel->record(), patience), Lines());
    panel->record().setState("ME1.PGM.SRC9", "ON");
    panel->record().setText("AUX2.NAME", "Camera 1");
    EXPECT_EQ(differences(), (Lines{"SID ME1.PGM.SRC9: this panel ON, a fresh one OFF",
                                    "TID AUX2.NAME: this panel Camera 1, a fresh one Black"}));
    EXPECT_EQ(lies(frame->frame(), panel->record()),
              (Lines{"SID ME1.PGM.SRC9 is ON, not OFF", "TID AUX2.NAME is Camera 1, not Black"}));
}

TEST_F(Comparison, ASubscriptionThatWasLostIsFound) {
    std::string const file = "Configuration/Transition/Subscriptions.xml";
    auto const whole = installation.read(file);
    auto without = whole;
    auto const begin = without.find("<subscription xsi:type");
    without.erase(begin, without.find("</subscription>") + 15 - begin);
    installation.write(file, without);
    startBoth();
    installation.write(file, whole);
    operatorSets(31, 0x03000001, 77);
    auto const found = differences();
    EXPECT_NE(
        std::find(found.begin(), found.end(), "SID ME2.RATE.FIELDS: this panel , a fresh one 77"),
        found.end());
    EXPECT_EQ(lies(frame->frame(), panel->record()),
              (Lines{"SID ME1.LEVER.POSITION is , not 0", "SID ME1.NEXT.BGD is OFF, not ON",
                     "SID ME1.RATE.FIELDS is , not 25", "SID ME2.LEVER.POSITION is , not 0",
                     "SID ME2.NEXT.BGD is OFF, not ON", "SID ME2.RATE.FIELDS is , not 77"}));
}

TEST_F(Comparison, AFrameThatNeverRestsIsNoMeasure) {
    startBoth();
    PanelSim::ComparisonLimits const limits{
        std::chrono::milliseconds(3000), std::chrono::milliseconds(3001), {}};
    auto const comparison = PanelSim::compareWithFresh(
        panel->record(), {QFD_MODULE, installation.path(), 7, panelAddress.text()}, {}, limits);
    EXPECT_EQ(comparison.trouble, "the frame doesn't come to rest");
}

TEST_F(Comparison, WithoutAFrameThereIsNoMeasure) {
    startBoth();
    frame->stop();
    PanelSim::ComparisonLimits const limits{std::chrono::milliseconds(1500), {}, {}};
    auto const comparison = PanelSim::compareWithFresh(
        panel->record(), {QFD_MODULE, installation.path(), 7, panelAddress.text()}, {}, limits);
    EXPECT_EQ(comparison.trouble, "a fresh panel finds no frame");
}

}  // namespace
}  // namespace FrameDriver::Testing
