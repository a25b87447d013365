#pragma once

#include "driver/QuillaneQFD.h"
#include "tests/support/HandClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RecordingSinks.h"
#include "tests/support/WorkingDirectory.h"
#include "tests/support/cplclient/RecordedClient.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Testing {

using Lines = std::vector<std::string>;
using Pairs = std::initializer_list<std::pair<char const*, char const*>>;

inline FIDParameterList listOf(Pairs pairs) {
    FIDParameterList list;
    for (auto const& [name, value] : pairs)
        list.add(name, value);
    return list;
}

/// A driver in a working directory of its own, with sinks and a client that record.
///
/// The directory has the schemas and whatever the test writes; `dictionary` and its like write
/// one file each with the XML frame around it.
class DriverFixture : public testing::Test {
  protected:
    DriverFixture() {
        std::filesystem::create_directories(directory.path() + "/Configuration");
        std::filesystem::copy(QFD_INSTALLATION "/Configuration/Schemas",
                              directory.path() + "/Configuration/Schemas",
                              std::filesystem::copy_options::recursive);
        driver = std::make_unique<QuillaneQFD>(clock, &timeClock);
    }
    ~DriverFixture() override {
        clock.release();
        endDriver();
    }

    IQFDConfiguration& configuration() {
        return *dynamic_cast<IQFDConfiguration*>(driver->queryInterface(configurationInterfaceId));
    }
    IFunctionID& functions() {
        return *dynamic_cast<IFunctionID*>(driver->queryInterface(functionInterfaceId));
    }
    static RecordedClient& frame() { return RecordedClient::latest(); }

    void writeSettings(Pairs pairs) {
        std::string text = R"(<settings xmlns="FrameDriver/Settings"
            xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
            xsi:schemaLocation="FrameDriver/Settings ./Schemas/Settings.xsd">)";
        for (auto const& [name, value] : pairs)
            text += std::string("<setting><name>") + name + "</name><value>" + value +
                    "</value></setting>";
        directory.write("Configuration/Settings.xml", text + "</settings>");
    }
    void writeManifest(std::string const& modules) {
        directory.write("Configuration/SimulatorManifest.xml",
                        R"(<manifest xmlns="FrameDriver/Manifest"
            xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
            xsi:schemaLocation="FrameDriver/Manifest ./Schemas/Manifest.xsd">)" +
                            modules + "</manifest>");
    }
    void writeDictionary(std::string const& name, std::string const& conversions) {
        directory.write(name, R"(<dictionary
            xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">)" +
                                  conversions + "</dictionary>");
    }
    void writeFIDs(std::string const& name, std::string const& fids) {
        directory.write(name, R"(<fidRegistrationList xmlns="FrameDriver/FIDRegistration"
            xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
            xsi:schemaLocation="FrameDriver/FIDRegistration
                                Configuration/Schemas/FIDRegistrationList.xsd">)" +
                                  fids + "</fidRegistrationList>");
    }
    void writeSubscriptions(std::string const& name, std::string const& subscriptions) {
        directory.write(name, R"(<subscriptionList xmlns="FrameDriver/Subscriptions"
            xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
            xsi:schemaLocation="FrameDriver/Subscriptions
                                Configuration/Schemas/CPLSubscriptionList.xsd">)" +
                                  subscriptions + "</subscriptionList>");
    }

    /// The settings and the manifest of a whole little installation: FIDs.xml, Subscriptions.xml,
    /// FIDs-to-frame.xml and Issues-to-panel.xml in the working directory.
    void writeInstallation() {
        writeSettings({{"Client Name", "Panel 1"},
                       {"Simulator Conversion Manifest", "Configuration/SimulatorManifest.xml"},
                       {"Simulator Frame Address", "10.0.0.2"}});
        writeManifest("<moduleConfiguration>"
                      "<cplSubscriptionList>Subscriptions.xml</cplSubscriptionList>"
                      "<fidRegistrationList>FIDs.xml</fidRegistrationList>"
                      "<fidToCPLDictionary>FIDs-to-frame.xml</fidToCPLDictionary>"
                      "<issueToSIDDictionary>Issues-to-panel.xml</issueToSIDDictionary>"
                      "</moduleConfiguration>");
        writeFIDs("FIDs.xml", "");
        writeSubscriptions("Subscriptions.xml", "");
        writeDictionary("FIDs-to-frame.xml", "");
        writeDictionary("Issues-to-panel.xml", "");
    }

    /// Takes the driver away.
    void endDriver() {
        if (!driver)
            return;
        frame().setConnectionState(eNotConnected);
        timeClock.release();
        driver.reset();
    }

    /// Starts the driver; its observer sleeps its first 50 milliseconds, and its field time client,
    /// unless the frame is connected already, its first second.
    void load() {
        configuration().configure(0, "", "", "", "", "", "");
        configuration().setStateSink(&sinks);
        configuration().setFunctionSink(&sinks);
        configuration().load();
    }

    WorkingDirectory directory;
    HandClock clock;
    HandClock timeClock;  // of the field time client, which sleeps after its first look
    LogCapture log;
    RecordingSinks sinks;
    std::unique_ptr<QuillaneQFD> driver;
};

}  // namespace FrameDriver::Testing
