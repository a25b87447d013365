// Bringing the driver up and taking it down. Start-up never fails as a whole: each step logs
// what went wrong, and the driver goes on with what it has.
#include "driver/BuildInfo.h"
#include "driver/QuillaneQFD.h"
#include "driver/VersionFile.h"
#include "foundation/Exceptions.h"
#include "foundation/NumberText.h"
#include "platform/sal/PanelFieldInterrupt.h"
#include "platform/sal/Path.h"
#include "xml/SettingsKeys.h"
#include "xml/XMLUtilities.h"

#include <boost/thread/exceptions.hpp>

#include <cstdint>
#include <utility>

using FrameDriver::ErrorManagement::Exception::Exception;
namespace SettingsKeys = FrameDriver::Tools::SettingsKeys;

namespace {

// Two ports for each panel of a system.
constexpr unsigned firstLocalPort = 6200;

constexpr std::uint16_t timePort = 1506;

// This build binds to the panel's own address, whatever that is.
constexpr char const* fixedLocalAddress = "";

/// Starts a task; false if there is no thread to be had for it.
bool hasThread(Task& task, TimedSyncEvent& started) {
    try {
        task.start(&started);
        return true;
    } catch (boost::thread_resource_error const&) {
        return false;
    }
}

}  // namespace

void QuillaneQFD::initialize() {
    auto const versionFile = sal::Path::getCurrentWorkingDirPath().text() + "/Version";
    versionText = readVersionText(versionFile, buildNumber, log);
    logBanner();
    startXML();
    loadConfiguration();
    loadAllConversions();
    stateReady = true;
    openClient();
    resetPanel();
    registerFIDs();
    startObserver();
    createClientOfTime();
    startClientOfTime();
    log.getInfoStream() << "Initialization complete.";
}

void QuillaneQFD::logBanner() {
    log.getInfoStream() << "Tavrine Frame Driver";
    log.getInfoStream() << "All rights reserved.";
    log.getInfoStream() << "Version '" << versionText << "' Build " << buildNumber << " "
                        << buildDate << " " << buildTime;
    log.getInfoStream() << "Built by user '" << buildUser << "'";
    log.getInfoStream() << "From hash '" << buildHash << "' on branch '" << buildBranch << "'";
    log.getInfoStream() << "Tavrine Frame Driver Initializing.";
}

void QuillaneQFD::startXML() {
    try {
        FrameDriver::XML::startXMLUtilities();
    } catch (Exception const& error) {
        log.getErrorStream() << error.getMessage();
    }
}

void QuillaneQFD::stopXML() {
    try {
        FrameDriver::XML::stopXMLUtilities();
    } catch (Exception const& error) {
        log.getErrorStream() << error.getMessage();
    }
}

void QuillaneQFD::loadConfiguration() {
    if (!loadSettings(SettingsKeys::settingsPath, settings)) {
        log.getErrorStream() << "Driver failed to load Settings.xml file, loading default values";
        if (!loadDefaultSettings())
            log.getErrorStream() << "Driver failed to write default Settings.xml file.";
    }
    loadManifest(settings.get(SettingsKeys::simulatorConversionManifest), manifest);
}

void QuillaneQFD::loadAllConversions() {
    log.getInfoStream() << "Loading command conversions.";
    for (auto const& file : manifest.getFidToCPLDictionaries())
        loadConversions(file, fidConversions);
    for (auto const& file : manifest.getIssueToSIDDictionaries())
        loadConversions(file, issueConversions);
    fidConversions.prepare();
    issueConversions.prepare();
}

std::string QuillaneQFD::localAddress() const {
    std::string const address = fixedLocalAddress;
    return address.empty() ? configuration->getHostAddress() : address;
}

// The handler is in place before the client opens: issues may come from then on.
void QuillaneQFD::openClient() {
    cplClient.setClientName(settings.get(SettingsKeys::clientName));
    cplClient.addIssueHandler(this);
    if (settings.contains(SettingsKeys::cplAckTimeout)) {
        auto const timeout =
            FrameDriver::Tools::int32Or(settings.get(SettingsKeys::cplAckTimeout), 0);
        log.getInfoStream() << "CPL Send Ack Read Timeout = " << timeout << "ms";
        cplClient.setSendTimeOut(timeout);
    }
    auto const address = localAddress();
    auto const panel = static_cast<unsigned>(configuration->getPanelIndex());
    auto const port = firstLocalPort + 2 * panel;  // any number gives some port
    cplClient.open(address.c_str(), static_cast<unsigned short>(port));
}

// The wait may run out though the thread is up: a signal that comes before the wait is lost.
// It is a courtesy of 60 ms, and its result means nothing.
void QuillaneQFD::startObserver() {
    auto const watcher = std::shared_ptr<FrameConnectionObserver>(
        new FrameConnectionObserver(clock),
        [](FrameConnectionObserver* gone) { Task::release(std::unique_ptr<Task>(gone)); });
    watcher->setDriver(this);
    observerGone = watcher->getGone();
    std::atomic_store(&observer, watcher);
    TimedSyncEvent started(60000);
    if (hasThread(*watcher, started)) {
        started.waitForSignal();
        return;
    }
    // A driver that nobody connects to a frame still serves its panel.
    log.getErrorStream() << "Can't start the connection observer!";
    std::atomic_store(&observer, std::shared_ptr<FrameConnectionObserver>());
}

// Panels with several drivers in one process have one field clock, and one client that sets it.
void QuillaneQFD::createClientOfTime() {
    ::timeClient::Setup setup;
    setup.driver = this;
    setup.interrupt = sal::PanelFieldInterrupt::getInstance();
    setup.localAddress = localAddress();
    setup.frameAddress = getFrameAddress();
    setup.port = timePort;
    setup.clock = clockOfTime;
    if (!createTimeClient(std::move(setup))) {
        log.getInfoStream() << "TimeClient already created.";
        return;
    }
    timeClient = getTimeClient();
    log.getInfoStream() << "TimeClient initialized to "
                        << static_cast<void const*>(timeClient.load())
                        << ", frame IP=" << getFrameAddress();
}

// As with the observer, the wait may run out though the thread is up. The line is then no sign of
// trouble, and is kept: who reads these logs knows it.
void QuillaneQFD::startClientOfTime() {
    auto* const client = timeClient.load();
    if (!client) {
        log.getErrorStream() << "TimeClient not initialized";
    } else if (client->isRunning()) {
        log.getErrorStream() << "TimeClient already running.";
    } else {
        if (!hasThread(*client, timeClientStarted) || !timeClientStarted.waitForSignal())
            log.getErrorStream() << "Can't start TimeClient!";
    }
}

// The time client goes on to the end of the process.
void QuillaneQFD::deinitialize() {
    log.getInfoStream() << "Driver deinitialize started.";
    stopObserver();
    cplClient.close();
    stopXML();
    log.getInfoStream() << "Driver deinitialize complete.";
}

// The observer's sleeps add up to more than the second of grace, so the warning is an expected
// outcome of a normal stop. A thread that is still running then deletes the observer itself.
void QuillaneQFD::stopObserver() {
    auto const watcher = std::atomic_load(&observer);
    if (!watcher)
        return;
    TimedSyncEvent stopped(1000000);
    watcher->stop(&stopped);
    if (!stopped.waitForSignal())
        log.getWarnStream() << "The driver is unable to close the connection observer.";
    std::atomic_store(&observer, std::shared_ptr<FrameConnectionObserver>());
}
