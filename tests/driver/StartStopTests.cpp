#include "DriverFixture.h"
#include "tests/support/NoStack.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <sstream>
#include <thread>

using namespace FrameDriver::Testing;

namespace {

class StartStop : public DriverFixture {
  protected:
    std::string noVersionFile() const {
        return "info: Failed to open version file '" + directory.path() + "/Version'";
    }
    static Lines banner(std::string const& version) {
        return {"info: Tavrine Frame Driver",
                "info: All rights reserved.",
                "info: Version '" + version + "' Build 745 Mar  8 2022 16:59:36",
                "info: Built by user 'unknown'",
                "info: From hash 'unknown' on branch 'unknown'",
                "info: Tavrine Frame Driver Initializing."};
    }
    static Lines joined(std::initializer_list<Lines> parts) {
        Lines all;
        for (auto const& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }
};

Lines const running{"info: Loading command conversions.",
                    "info: Resetting the panel to a clean state.",
                    "info: Registering for panel FIDs."};

std::string timeClientMade(std::string const& address) {
    std::ostringstream text;
    text << "info: TimeClient initialized to " << static_cast<void const*>(getTimeClient())
         << ", frame IP=" << address;
    return text.str();
}

/// Without the line that tells that the time client's start was not heard of in time.
Lines withoutStartLine(Lines lines) {
    std::erase(lines, "error: Can't start TimeClient!");
    return lines;
}

bool concernsTheStop(std::string const& line) {
    return line.starts_with("info: Driver") || line.starts_with("warning: The driver");
}

}  // namespace

TEST_F(StartStop, AWholeInstallationComesUpInOrder) {
    writeInstallation();
    directory.write("Version", "745=12.3z7\n");
    load();
    EXPECT_EQ(withoutStartLine(log.take()),
              joined({{"info: From version file: buildNum: '745', printedVersion: '12.3z7'"},
                      banner("12.3"),
                      running,
                      {timeClientMade("10.0.0.2"), "info: Initialization complete."}}));
    EXPECT_EQ(frame().takeCalls(),
              (Lines{"setName(\"Panel 1\")", "open(\"\", 6200)", "registerCallback(0)"}));
}

TEST_F(StartStop, WithoutTheAckSettingTheLibrarysTimeOutStands) {
    writeInstallation();
    load();
    for (auto const& call : frame().calls())
        EXPECT_EQ(call.find("setSendTimeOut"), std::string::npos) << call;
    for (auto const& line : log.lines())
        EXPECT_EQ(line.find("Timeout"), std::string::npos) << line;
}

TEST_F(StartStop, TheAckSettingIsTakenAsMilliseconds) {
    struct {
        char const* text;
        char const* read;
    } const rows[] = {{"250", "250"}, {"abc", "0"}, {"", "0"}, {" 12ms", "12"}, {"-1", "-1"}};
    for (auto const& row : rows) {
        SCOPED_TRACE(row.text);
        HandClock ownClock;
        ownClock.release();
        writeInstallation();
        writeSettings({{"Simulator Conversion Manifest", "Configuration/SimulatorManifest.xml"},
                       {"CPL Ack Timeout", row.text}});
        log.take();
        QuillaneQFD own(ownClock);
        own.initialize();
        EXPECT_TRUE(log.has(std::string("info: CPL Send Ack Read Timeout = ") + row.read + "ms"));
        auto const calls = frame().calls();
        EXPECT_EQ(calls.at(0), std::string("setSendTimeOut(") + row.read + ")");
    }
}

TEST_F(StartStop, WithoutAnyFileTheDriverRunsOnDefaultsAndWritesThem) {
    load();
    auto const lines = log.take();
    EXPECT_EQ(lines.at(0), noVersionFile());
    EXPECT_TRUE(std::find(lines.begin(), lines.end(),
                          "error: Driver failed to load Settings.xml file, loading default "
                          "values") != lines.end());
    EXPECT_EQ(lines.back(), "info: Initialization complete.");
    EXPECT_EQ(driver->getFrameAddress(), "127.0.0.1");
    EXPECT_EQ(driver->getVersionText(), "BUDDY BUILD");
    EXPECT_NE(directory.read("Configuration/Settings.xml").find("Velmar Panel"), std::string::npos);
    EXPECT_EQ(frame().takeCalls().at(0), "setName(\"Velmar Panel\")");

    FrameDriver::Tools::Settings again;
    EXPECT_TRUE(driver->loadSettings("Configuration/Settings.xml", again));
    EXPECT_EQ(again.get("Simulator Frame Address"), "127.0.0.1");
}

TEST_F(StartStop, DefaultsThatCannotBeWrittenStayInMemory) {
    std::filesystem::remove_all(directory.path() + "/Configuration");
    directory.write("Configuration", "not a directory");
    load();
    EXPECT_TRUE(log.has("error: Driver failed to write default Settings.xml file."));
    EXPECT_TRUE(log.has("error: An unhandled exception occurred while saving settings."));
    EXPECT_EQ(driver->getFrameAddress(), "127.0.0.1");
}

TEST_F(StartStop, AManifestThatCannotBeLoadedLeavesADriverThatConvertsNothing) {
    writeInstallation();
    directory.write("Configuration/SimulatorManifest.xml", "<manifest>");
    load();
    sinks.take();
    log.take();
    driver->handleFID("PANEL.ANY", {});
    EXPECT_EQ(log.take(), (Lines{"debug: No conversion found for: FID: id=PANEL.ANY, data=[\222"}));
}

TEST_F(StartStop, ADictionaryThatCannotBeLoadedLeavesTheOthers) {
    writeInstallation();
    writeManifest("<moduleConfiguration><fidToCPLDictionary>bad.xml</fidToCPLDictionary>"
                  "</moduleConfiguration><moduleConfiguration>"
                  "<fidToCPLDictionary>good.xml</fidToCPLDictionary></moduleConfiguration>");
    directory.write("bad.xml", "<dictionary><conversion></dictionary>");
    writeDictionary("good.xml",
                    "<conversion><from xsi:type=\"fid\"><id>GOOD</id></from>"
                    "<to xsi:type=\"sid\"><id>S</id><value>1</value></to></conversion>");
    load();
    sinks.take();
    driver->handleFID("GOOD", {});
    EXPECT_EQ(sinks.take(), (Lines{"SID S = 1"}));
    unsigned errors = 0;
    for (auto const& line : withoutStartLine(log.take()))
        errors += line.starts_with("error: ");
    EXPECT_EQ(errors, 1U + 4U);  // the file, and the names that the two modules leave empty
}

TEST_F(StartStop, ABadRangeEndsTheLoadingOfItsFileWithOneLine) {
    writeInstallation();
    writeDictionary("FIDs-to-frame.xml",
                    "<conversion><from xsi:type=\"fid\"><id>A(x)</id></from></conversion>");
    load();
    EXPECT_TRUE(log.has("error: An unforeseen problem has occurred while parsing the xml file "
                        "FIDs-to-frame.xml"));
}

TEST_F(StartStop, FIDsAreRegisteredFromAllListsAndDoublesAreHarmless) {
    writeInstallation();
    writeManifest("<moduleConfiguration><fidRegistrationList>one.xml</fidRegistrationList>"
                  "<fidToCPLDictionary>FIDs-to-frame.xml</fidToCPLDictionary>"
                  "</moduleConfiguration><moduleConfiguration>"
                  "<fidRegistrationList>two.xml</fidRegistrationList></moduleConfiguration>");
    writeFIDs("one.xml", "<fid>B(1-2)</fid><fid>AAAA</fid>");
    writeFIDs("two.xml", "<fid>AAAA</fid><fid>CCCC</fid>");
    writeDictionary("FIDs-to-frame.xml",
                    "<conversion><from xsi:type=\"fid\"><id>{@n}</id></from>"
                    "<to xsi:type=\"sid\"><id>HEARD</id><value>{@n}</value></to></conversion>");
    load();
    sinks.take();
    for (auto const* name : {"AAAA", "B1.X", "CCCC", "DDDD"})
        functions().handleFID(name, {});
    EXPECT_EQ(sinks.take(), (Lines{"SID HEARD = AAAA", "SID HEARD = CCCC"}));
}

TEST_F(StartStop, EachLoaderTellsWhyItFailedAndLeavesItsTargetAlone) {
    writeInstallation();
    load();
    directory.write("bad.xml", "<list>\n<fid>");
    FrameDriver::Tools::Settings settings;
    settings.set("a", "b");
    FrameDriver::Tools::Manifest manifest;
    manifest.addMonkeyTest("m");
    FrameDriver::Conversion::TemplateConversionCollection conversions;
    QuillaneQFD::Subscriptions subscriptions;
    std::list<std::string> fids{"A"};
    std::function<bool()> const loaders[] = {
        [&] { return driver->loadSettings("bad.xml", settings); },
        [&] { return driver->loadManifest("bad.xml", manifest); },
        [&] { return driver->loadConversions("bad.xml", conversions); },
        [&] { return driver->loadSubscriptions("bad.xml", subscriptions); },
        [&] { return driver->loadFIDRegistration("bad.xml", fids); },
    };
    log.take();
    for (auto const& loader : loaders) {
        EXPECT_FALSE(loader());
        EXPECT_EQ(log.take(), (Lines{"error: A fatal error occurred while parsing the xml file. "
                                     "The problem was found in " +
                                     directory.path() +
                                     "/bad.xml on line number 2 in column 6. "
                                     "input ended before all started tags were ended; last tag "
                                     "started is 'fid'"}));
    }
    EXPECT_EQ(settings.get("a"), "b");
    EXPECT_EQ(manifest.getMonkeyTests(), Lines{"m"});
    EXPECT_TRUE(conversions.getConversions().empty());
    EXPECT_TRUE(subscriptions.empty());
    EXPECT_EQ(fids, std::list<std::string>{"A"});
}

TEST_F(StartStop, NumbersThatCannotBeReadAreUnforeseenAndLoseTheWholeFile) {
    writeInstallation();
    load();
    writeFIDs("FIDs.xml", "<fid>GOOD</fid><fid>A(x-y)</fid>");
    writeSubscriptions("Subscriptions.xml",
                       "<subscription xsi:type=\"parameterSubscription\"><paramId>1</paramId>"
                       "<deviceId>1</deviceId></subscription>"
                       "<subscription xsi:type=\"parameterSubscription\"><paramId>1</paramId>"
                       "<deviceId>zz</deviceId></subscription>");
    QuillaneQFD::Subscriptions subscriptions;
    std::list<std::string> fids;
    log.take();
    EXPECT_FALSE(driver->loadFIDRegistration("FIDs.xml", fids));
    EXPECT_FALSE(driver->loadSubscriptions("Subscriptions.xml", subscriptions));
    EXPECT_EQ(
        log.take(),
        (Lines{"error: An unforeseen problem has occurred while parsing the xml file FIDs.xml",
               "error: An unforeseen problem has occurred while parsing the xml file "
               "Subscriptions.xml"}));
    EXPECT_TRUE(fids.empty());
    EXPECT_TRUE(subscriptions.empty());
}

TEST_F(StartStop, SavingWhereItCannotBeDoneAnswersFalseAndKeepsTheValues) {
    writeInstallation();
    load();
    FrameDriver::Tools::Settings settings;
    settings.set("a", "b");
    log.take();
    EXPECT_FALSE(driver->saveSettings(settings, directory.path() + "/absent/Settings.xml"));
    EXPECT_EQ(log.take(), (Lines{"error: An unhandled exception occurred while saving settings."}));
    EXPECT_EQ(settings.get("a"), "b");
    EXPECT_TRUE(driver->saveSettings(settings, directory.path() + "/Settings.xml"));
}

TEST_F(StartStop, StoppingAnObserverThatSleepsOnWarnsAndGoesOn) {
    writeInstallation();
    load();
    clock.sleeping();
    log.take();
    frame().takeCalls();
    configuration().unload();
    EXPECT_EQ(log.take(), (Lines{"info: Driver deinitialize started.",
                                 "warning: The driver is unable to close the connection observer.",
                                 "info: Driver deinitialize complete."}));
    EXPECT_EQ(frame().takeCalls(), (Lines{"unregisterCallback(1)", "close()"}));
}

TEST_F(StartStop, WithoutAThreadForItsObserverTheDriverComesUpAndGoesDown) {
    writeInstallation();
    writeFIDs("FIDs.xml", "<fid>PANEL.GO</fid>");
    writeDictionary("FIDs-to-frame.xml",
                    "<conversion><from xsi:type=\"fid\"><id>PANEL.GO</id></from>"
                    "<to xsi:type=\"sid\"><id>GONE</id><value>1</value></to>"
                    "</conversion>");
    {
        NoStack const noStack;
        load();
    }
    EXPECT_TRUE(log.has("error: Can't start the connection observer!"));
    EXPECT_EQ(log.take().back(), "info: Initialization complete.");
    functions().handleFID("PANEL.GO", FIDParameterList());
    EXPECT_EQ(sinks.take(), (Lines{"SID LOADED = ", "SID GONE = 1"}));
    configuration().unload();
    EXPECT_EQ(log.take(),
              (Lines{"info: Driver deinitialize started.", "info: Driver deinitialize complete."}));
}

TEST_F(StartStop, ASecondDriverOfTheProcessLeavesTheTimeClientToTheFirst) {
    writeInstallation();
    load();
    auto* const client = getTimeClient();
    log.take();
    {
        HandClock ownClock;
        ownClock.release();
        QuillaneQFD second(ownClock);
        second.initialize();
        auto lines = log.take();
        // Its observer, which never sleeps here, talks in between.
        std::erase_if(lines, [](std::string const& line) {
            return line.find("TimeClient") == line.npos && line.find("Initialization") == line.npos;
        });
        EXPECT_EQ(lines,
                  (Lines{"info: TimeClient already created.", "error: TimeClient not initialized",
                         "info: Initialization complete."}));
    }
    EXPECT_EQ(getTimeClient(), client);
    EXPECT_EQ(timeClock.sleeping(), 1000);
}

TEST_F(StartStop, TheTimeClientGoesOnBehindTheStopAndGoesWithItsDriver) {
    writeInstallation();
    load();
    EXPECT_EQ(timeClock.sleeping(), 1000);
    configuration().unload();
    EXPECT_EQ(timeClock.next(), 1000);
    EXPECT_TRUE(getTimeClient()->isRunning());
    clock.release();
    endDriver();
    EXPECT_EQ(getTimeClient(), nullptr);
}

// A signal that comes before the wait begins is lost, so it may take more than one driver.
TEST_F(StartStop, StoppingAnObserverThatEndsInTimeSaysNothing) {
    Lines const expected{"info: Driver deinitialize started.",
                         "info: Driver deinitialize complete."};
    Lines lines;
    writeInstallation();
    for (int attempt = 0; attempt < 10 && lines != expected; ++attempt) {
        HandClock ownClock;
        QuillaneQFD own(ownClock);
        own.initialize();
        ownClock.sleeping();
        log.take();
        std::thread stopper([&] { own.deinitialize(); });
        for (int spare = 1000; !log.has(expected.front()) || spare-- > 0;)
            std::this_thread::yield();
        ownClock.release();
        stopper.join();
        lines = log.take();
        std::erase_if(lines, [](auto const& line) { return !concernsTheStop(line); });
    }
    EXPECT_EQ(lines, expected);
}

TEST_F(StartStop, ADriverThatGoesAwayClosesItsClient) {
    writeInstallation();
    load();
    clock.sleeping();
    Lines calls;
    std::mutex lock;
    frame().takeCalls();
    frame().onCall([&](std::string const& call) {
        std::lock_guard const guard(lock);
        calls.push_back(call);
    });
    clock.release();
    endDriver();
    std::lock_guard const guard(lock);
    std::erase_if(calls, [](auto const& call) { return call.starts_with("connect("); });
    EXPECT_EQ(calls, (Lines{"cancelSubscriptions(flags=3, service=3, 0)", "unregisterCallback(1)",
                            "close()"}));
}
