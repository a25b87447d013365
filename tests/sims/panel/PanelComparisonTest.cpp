#include "sims/panel/PanelComparison.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace {

using namespace PanelSim;
using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

class PanelComparison : public testing::Test {
  protected:
    Lines found(OwnNames const& own = {}) const {
        Lines lines;
        for (auto const& one : differences(panel, fresh, own)) {
            lines.push_back(shown(one));
        }
        return lines;
    }

    PanelRecord panel;
    PanelRecord fresh;
};

TEST_F(PanelComparison, TwoThatShowTheSameDifferInNothing) {
    for (auto* record : {&panel, &fresh}) {
        record->setState("A", "1");
        record->setText("A", "one");
    }
    panel.setState("A", "2");
    panel.setState("A", "1");
    EXPECT_EQ(found(), Lines());
}

TEST_F(PanelComparison, AllThatDiffersIsNamedOnce) {
    panel.setState("B", "ON");
    fresh.setState("B", "OFF");
    panel.setText("B", "old");
    fresh.setText("A", "new");
    EXPECT_EQ(found(),
              (Lines{"SID B: this panel ON, a fresh one OFF", "TID A: this panel , a fresh one new",
                     "TID B: this panel old, a fresh one "}));
}

TEST_F(PanelComparison, WhatWasNeverShownIsEmpty) {
    panel.setText("A", "");
    fresh.setState("B", "");
    EXPECT_EQ(found(), Lines());
}

TEST_F(PanelComparison, FIDsAreNoState) {
    panel.sendFunction("A", {});
    EXPECT_EQ(found(), Lines());
}

TEST_F(PanelComparison, TheTimeOfTheConnectionIsEachPanelsOwnButNotThatThereIsOne) {
    panel.setState("SYSTEM.REBOOT_INDICATION", "09:05");
    fresh.setState("SYSTEM.REBOOT_INDICATION", "10:15");
    EXPECT_EQ(found(), Lines());
    panel.setState("SYSTEM.REBOOT_INDICATION", "INV");
    EXPECT_EQ(found(), Lines{"SID SYSTEM.REBOOT_INDICATION: this panel INV, a fresh one 10:15"});
}

TEST_F(PanelComparison, OwnNamesAreLeftOut) {
    for (auto const* name : {"A.1", "A.12", "B", "C.D"}) {
        panel.setState(name, "1");
    }
    OwnNames const own("# comment\n\nA.?\r\n  C*\t\n");
    EXPECT_EQ(found(own),
              (Lines{"SID A.12: this panel 1, a fresh one ", "SID B: this panel 1, a fresh one "}));
}

TEST_F(PanelComparison, AFreshPanelThatIsNeverJoinedIsNoMeasure) {
    ComparisonLimits const limits{50ms, 10ms, 10ms};
    auto const comparison = compareWithFresh(panel, {FAKE_MODULE, "", 1, ""}, {}, limits);
    EXPECT_EQ(comparison.trouble, "a fresh panel finds no frame");
    EXPECT_FALSE(comparison.good());
}

}  // namespace
