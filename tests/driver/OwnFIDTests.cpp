// What the driver does itself, reached by "DFID" results.
#include "DriverFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace FrameDriver::Testing;

namespace {

class OwnFIDs : public DriverFixture {
  protected:
    void loadInstallation() {
        writeInstallation();
        directory.write("config/QISState.dsf", "::SIDS\nCLEAN VAL=1\n");
        load();
        EXPECT_EQ(clock.sleeping(), 50);
        forget();
    }
    void forget() {
        sinks.take();
        frame().takeCalls();
        log.take();
    }
    /// Raises it and gives back what was printed.
    std::string raise(std::string const& name, Pairs parameters) {
        testing::internal::CaptureStdout();
        driver->handleOwnFID(name, listOf(parameters));
        return testing::internal::GetCapturedStdout();
    }
    std::string addressOnDisk() const {
        auto const text = directory.read("Configuration/Settings.xml");
        auto const name = text.find("Simulator Frame Address");
        auto const start = text.find("<value>", name) + 7;
        return text.substr(start, text.find('<', start) - start);
    }
};

TEST_F(OwnFIDs, AnAddressIsTakenOverAtTheNextAttempt) {
    loadInstallation();
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.3"}});
    EXPECT_EQ(driver->getFrameAddress(), "10.0.0.3");
    EXPECT_EQ(sinks.take(), Lines{});
    EXPECT_EQ(frame().takeCalls(), Lines{});
    EXPECT_EQ(clock.next(), 1000);
    EXPECT_EQ(frame().takeCalls(), Lines{"connect(\"10.0.0.3\", 5000)"});
}

TEST_F(OwnFIDs, AMoveTakesTheLinkDownAndResetsThePanel) {
    loadInstallation();
    EXPECT_EQ(clock.next(), 1000);
    EXPECT_EQ(clock.next(), 50);
    forget();
    EXPECT_EQ(raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.3"}}),
              "Loading \"config/QISState.dsf\"...OK\n");
    EXPECT_EQ(frame().takeCalls(), Lines{"disconnect()"});
    EXPECT_EQ(sinks.take(), (Lines{"SID SYSTEM.REBOOT_INDICATION = INV", "SID CLEAN = 1"}));
    auto lines = log.take();
    std::erase_if(lines, [](auto const& line) { return line.starts_with("info: TimeClient"); });
    EXPECT_EQ(lines, (Lines{"info: Disconnecting from the frame.", "info: CPL client disconnect",
                            "info: Resetting the panel to a clean state."}));
    EXPECT_EQ(clock.next(), 1000);
    EXPECT_EQ(frame().takeCalls(), Lines{"connect(\"10.0.0.3\", 5000)"});
}

/// Wakes the observer twice in the middle of a move: out of its long sleep, then out of the short
/// one, behind which it would look at the link.
class WakingSinks : public RecordingSinks {
  public:
    explicit WakingSinks(HandClock& observersClock) : clock(observersClock) {}

    void setState(std::string const& name, std::string const& value) override {
        RecordingSinks::setState(name, value);
        if (name == "SYSTEM.REBOOT_INDICATION" && value == "INV")
            sleeps = {clock.next(), clock.next()};
    }

    std::vector<long> sleeps;

  private:
    HandClock& clock;
};

TEST_F(OwnFIDs, TheObserverKeepsStillDuringAMove) {
    WakingSinks waking(clock);
    loadInstallation();
    EXPECT_EQ(clock.next(), 1000);
    forget();
    configuration().setStateSink(&waking);
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.3"}});
    EXPECT_EQ(waking.sleeps, (std::vector<long>{50, 50}));
    EXPECT_EQ(frame().takeCalls(), Lines{"disconnect()"});
    EXPECT_EQ(clock.next(), 1000);
    EXPECT_EQ(frame().takeCalls(), Lines{"connect(\"10.0.0.3\", 5000)"});
    configuration().setStateSink(&sinks);
}

TEST_F(OwnFIDs, WithoutSaveTheFileKeepsTheOldAddress) {
    loadInstallation();
    for (char const* save : {"", "true", "ON"}) {
        raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.3"}, {"SAVE", save}});
        EXPECT_EQ(addressOnDisk(), "10.0.0.2") << save;
    }
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.4"}, {"SAVE", "TRUE"}});
    EXPECT_EQ(addressOnDisk(), "10.0.0.4");
}

TEST_F(OwnFIDs, IfNewAndUnchangedDoesNothingAndSaveIsNotLookedAt) {
    loadInstallation();
    EXPECT_EQ(clock.next(), 1000);
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.3"}});
    forget();
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.3"}, {"IFNEW", "TRUE"}, {"SAVE", "TRUE"}});
    EXPECT_EQ(addressOnDisk(), "10.0.0.2");
    EXPECT_EQ(frame().takeCalls(), Lines{});
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(OwnFIDs, IfNewInLowerCaseIsAsWithoutIt) {
    loadInstallation();
    EXPECT_EQ(clock.next(), 1000);
    forget();
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.2"}, {"IFNEW", "true"}, {"SAVE", "TRUE"}});
    EXPECT_EQ(frame().takeCalls(), Lines{"disconnect()"});
}

TEST_F(OwnFIDs, IfNewAndChangedMoves) {
    loadInstallation();
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.5"}, {"IFNEW", "TRUE"}});
    EXPECT_EQ(driver->getFrameAddress(), "10.0.0.5");
}

TEST_F(OwnFIDs, WithoutAnAddressNothingHappens) {
    loadInstallation();
    EXPECT_EQ(clock.next(), 1000);
    forget();
    raise("FRAME.ADDRESS.SET", {{"SAVE", "TRUE"}});
    EXPECT_EQ(driver->getFrameAddress(), "10.0.0.2");
    EXPECT_EQ(frame().takeCalls(), Lines{});
}

TEST_F(OwnFIDs, TheKeyIsCreatedWhereTheSettingsHaveNone) {
    writeSettings({{"Client Name", "Panel 1"}});
    load();
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.9"}});
    EXPECT_EQ(driver->getFrameAddress(), "10.0.0.9");
}

TEST_F(OwnFIDs, AnAddressMayBeSetBeforeTheDriverIsLoaded) {
    raise("FRAME.ADDRESS.SET", {{"ADDRESS", "10.0.0.9"}});
    EXPECT_EQ(driver->getFrameAddress(), "10.0.0.9");
}

TEST_F(OwnFIDs, AMemoryRecallGoesBackToTheHostWithThePanelsNumber) {
    writeInstallation();
    configuration().configure(3, "", "", "", "", "", "");
    configuration().setFunctionSink(&sinks);
    raise("PANEL.MEMORY.RECALL", {{"REG", "7"}, {"WP", "x"}});
    EXPECT_EQ(sinks.take(), Lines{"FID PANEL.MEMORY.RECALL REG=7 WP=x WP=3"});
}

TEST_F(OwnFIDs, NamesAreComparedWhole) {
    loadInstallation();
    for (char const* name : {"", "FRAME.ADDRESS", "FRAME.ADDRESS.SET ", "panel.memory.recall"})
        EXPECT_EQ(raise(name, {{"ADDRESS", "1.2.3.4"}, {"VAL", "ON"}}), "") << name;
    EXPECT_EQ(sinks.take(), Lines{});
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(OwnFIDs, ADictionaryReachesThemThroughADFID) {
    writeInstallation();
    writeFIDs("FIDs.xml", "<fid>MOVE</fid>");
    writeDictionary("FIDs-to-frame.xml",
                    "<conversion><from xsi:type=\"fid\"><id>MOVE</id>"
                    "<parameter name=\"TO\">{@to}</parameter></from>"
                    "<to xsi:type=\"dfid\"><id>FRAME.ADDRESS.SET</id>"
                    "<parameter name=\"ADDRESS\">{@to}</parameter></to></conversion>");
    load();
    functions().handleFID("MOVE", listOf({{"TO", "10.0.0.7"}}));
    EXPECT_EQ(driver->getFrameAddress(), "10.0.0.7");
}

class MonkeySwitch : public OwnFIDs {
  protected:
    void writeMonkey(std::string const& fids) {
        writeInstallation();
        writeManifest("<moduleConfiguration><monkeytest>Monkey.xml</monkeytest>"
                      "</moduleConfiguration>");
        directory.write("Monkey.xml", "<monkeyTest>" + fids + "</monkeyTest>");
    }
};

TEST_F(MonkeySwitch, PrintsItsValueAndAnswersOnOrOff) {
    writeMonkey("<fid id=\"ME1.CUT\"/>");
    load();
    sinks.take();
    EXPECT_EQ(raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "ON"}}), "ON\n");
    EXPECT_EQ(sinks.take(), Lines{"SID MONKEYTEST.ENABLED = ON"});
    EXPECT_TRUE(log.waitFor("debug: No conversion found for: FID: id=ME1.CUT, data=[\x92", 3,
                            std::chrono::seconds(30)));
    log.take();
    EXPECT_EQ(raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "on"}}), "on\n");
    EXPECT_EQ(sinks.take(), Lines{"SID MONKEYTEST.ENABLED = OFF"});
    // Told where it is stopped, and nowhere else.
    auto const lines = log.take();
    EXPECT_EQ(std::ranges::count_if(lines,
                                    [](auto const& line) {
                                        return line.starts_with("debug: The monkey has raised ");
                                    }),
              1);
}

TEST_F(MonkeySwitch, OffWhenItNeverRanAnswersOff) {
    loadInstallation();
    EXPECT_EQ(raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "OFF"}}), "OFF\n");
    EXPECT_EQ(sinks.take(), Lines{"SID MONKEYTEST.ENABLED = OFF"});
}

TEST_F(MonkeySwitch, WithoutAValueNothingHappens) {
    loadInstallation();
    EXPECT_EQ(raise("DRIVER.MONKEYTEST.ENABLE", {}), "");
    EXPECT_EQ(sinks.take(), Lines{});
}

TEST_F(MonkeySwitch, WithoutAFileTheDriverStillHearsOfNothingKnown) {
    loadInstallation();
    raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "ON"}});
    EXPECT_TRUE(log.waitFor("debug: No conversion found for: FID: id=NULL_FID, data=[\x92", 2,
                            std::chrono::seconds(30)));
}

TEST_F(MonkeySwitch, AnUnreadableBoundHasTwoLinesAndAddsNothing) {
    writeMonkey("<fid id=\"GOOD\"/><fid id=\"BAD\">"
                "<parameter type=\"integer\" name=\"V\" lower=\"x\" upper=\"2\"/></fid>");
    load();
    log.take();
    raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", "ON"}});
    EXPECT_TRUE(log.has("error: An unforeseen problem has occurred while parsing the xml file "
                        "Monkey.xml"));
    EXPECT_TRUE(log.has("error: An unhandled exception occurred while loading a monkey test."));
    EXPECT_TRUE(log.waitFor("debug: No conversion found for: FID: id=NULL_FID, data=[\x92", 2,
                            std::chrono::seconds(30)));
}

TEST_F(MonkeySwitch, AMissingFileHasOneLine) {
    writeMonkey("");
    std::filesystem::remove("Monkey.xml");
    load();
    log.take();
    EXPECT_FALSE(driver->loadMonkeyTest("Monkey.xml"));
    auto const lines = log.take();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("error: ")) << lines[0];
    EXPECT_EQ(lines[0].find("An unhandled"), std::string::npos);
}

TEST_F(MonkeySwitch, OnTwiceOffAndOnAgainAndTheDriverGoesWhileItRuns) {
    writeMonkey("<fid id=\"ME(1-2).CUT\"/>");
    load();
    for (char const* value : {"ON", "ON", "OFF", "ON", "ON"})
        raise("DRIVER.MONKEYTEST.ENABLE", {{"VAL", value}});
    EXPECT_TRUE(log.waitFor("debug: No conversion found for: FID: id=ME2.CUT, data=[\x92", 2,
                            std::chrono::seconds(30)));
    clock.release();
    configuration().unload();
}

}  // namespace
