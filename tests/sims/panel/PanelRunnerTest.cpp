#include "sims/panel/PanelRunner.h"

#include "sims/panel/PanelHost.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace PanelSim;
using Outcome = PanelRunner::Outcome;

/// Runs lines against a module that does what the FIDs say.
class PanelRunnerTest : public testing::Test {
  protected:
    PanelRunnerTest() { host.start(); }

    Outcome run(std::string const& script) {
        for (auto const& command : parseScript(script, "test")) {
            if (auto const outcome = runner.run(command); outcome != Outcome::goOn) {
                return outcome;
            }
        }
        return Outcome::goOn;
    }

    std::vector<std::string> printed;
    Comparison comparison;
    PanelHost host{{FAKE_MODULE, "", 0, ""}};
    PanelRunner runner{
        host.record(),
        [this](std::string const& name, FIDParameterList const& list) { host.raise(name, list); },
        [this] { return comparison; },
        {[this](PanelEvent const& event) { printed.push_back(shown(event)); },
         [this](Difference const& difference) { printed.push_back(shown(difference)); },
         [this](std::string const& text) { printed.push_back("! " + text); },
         [this](std::string const& text) { printed.push_back(text); }}};
};

using Lines = std::vector<std::string>;

TEST_F(PanelRunnerTest, AFIDCarriesItsParametersAndItsWidget) {
    EXPECT_EQ(run("SHOW A=\"x y\" @611\n:wait SID WIDGET 611\n:wait SID A \"x y\""), Outcome::goOn);
    EXPECT_TRUE(runner.allGood());
}

TEST_F(PanelRunnerTest, WaitsForWhatAnotherThreadBrings) {
    EXPECT_EQ(run("SHOW.LATER A=1\n:wait SID A 1 within 60000"), Outcome::goOn);
}

TEST_F(PanelRunnerTest, ShowsStates) {
    run("SHOW B=2 A=1\n:state [AB]");
    EXPECT_EQ(printed, (Lines{"SID A = 1", "SID B = 2"}));
}

TEST_F(PanelRunnerTest, QuitEndsTheScript) {
    EXPECT_EQ(run(":quit\nTHROW TEXT=late"), Outcome::quit);
    EXPECT_TRUE(runner.allGood());
}

TEST_F(PanelRunnerTest, AWaitForAFIDConsumesIt) {
    EXPECT_EQ(run("BACK N=1\nBACK N=2\n:wait FID BACK N=2 within 0\n:wait FID BACK within 0"),
              Outcome::goOn);
    EXPECT_EQ(run(":wait FID BACK within 0"), Outcome::failed);
    EXPECT_EQ(printed, (Lines{"waited 0 ms for FID BACK: it didn't come",
                              "since the last wait came nothing"}));
}

TEST_F(PanelRunnerTest, AWaitThatFailsEndsTheScriptAndSaysWhatCameInstead) {
    EXPECT_EQ(run("SHOW A=1\n:wait SID A 1\nSHOW A=2\n:wait SID A 1 within 0\nSHOW A=3"),
              Outcome::failed);
    EXPECT_EQ(printed, (Lines{"waited 0 ms for SID A = 1: it is 2",
                              "since the last wait came SID WIDGET = 0",
                              "since the last wait came SID A = 2"}));
    EXPECT_FALSE(runner.allGood());
    EXPECT_EQ(host.record().sid("A"), "2");
}

TEST_F(PanelRunnerTest, AWaitForWhatWasNeverShownSaysSo) {
    EXPECT_EQ(run(":wait TID A within 0"), Outcome::failed);
    EXPECT_EQ(printed.front(), "waited 0 ms for TID A: it was never shown");
}

TEST_F(PanelRunnerTest, AWaitThatFailsShowsTheLastOfManyThings) {
    run(":wait SID CALLS");
    for (int i = 1; i <= 25; ++i) {
        host.record().setState("S", std::to_string(i));
    }
    EXPECT_EQ(run(":wait SID S 0 within 0"), Outcome::failed);
    ASSERT_EQ(printed.size(), 22U);
    EXPECT_EQ(printed[0], "waited 0 ms for SID S = 0: it is 25");
    EXPECT_EQ(printed[1], "since the last wait came 5 others, and");
    EXPECT_EQ(printed[2], "since the last wait came SID S = 6");
    EXPECT_EQ(printed[21], "since the last wait came SID S = 25");
}

TEST_F(PanelRunnerTest, AnExceptionIsToldAndTheScriptGoesOn) {
    EXPECT_EQ(run("THROW TEXT=\"oh \\x92\"\nTHROW.POINTER TEXT=no\nSHOW A=1\n:wait SID A 1"),
              Outcome::goOn);
    EXPECT_EQ(printed, (Lines{"! oh \222", "! no"}));
    EXPECT_FALSE(runner.allGood());
}

TEST_F(PanelRunnerTest, AComparisonWithoutDifferencesIsSilent) {
    EXPECT_EQ(run(":compare"), Outcome::goOn);
    EXPECT_EQ(printed, Lines());
    EXPECT_TRUE(runner.allGood());
}

TEST_F(PanelRunnerTest, DifferencesArePrintedAndTheRunGoesOn) {
    comparison.found = {{Heard::sid, "A", "1", "2"}, {Heard::tid, "B", "x", ""}};
    EXPECT_EQ(run(":compare\nSHOW A=1\n:state A"), Outcome::goOn);
    EXPECT_EQ(printed, (Lines{"SID A: this panel 1, a fresh one 2",
                              "TID B: this panel x, a fresh one ", "SID A = 1"}));
    EXPECT_FALSE(runner.allGood());
}

TEST_F(PanelRunnerTest, AComparisonThatCannotBeMadeIsAFailure) {
    comparison.trouble = "a fresh panel finds no frame";
    EXPECT_EQ(run(":compare"), Outcome::goOn);
    EXPECT_EQ(printed, (Lines{"nothing to compare with: a fresh panel finds no frame"}));
    EXPECT_FALSE(runner.allGood());
}

}  // namespace
