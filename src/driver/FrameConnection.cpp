// The operations that run once per connection, and those that bring a connection about.
#include "cpl/Subscription.h"
#include "driver/CDSFParser.h"
#include "driver/QuillaneQFD.h"
#include "xml/SettingsKeys.h"

#include <cstdio>
#include <memory>
#include <vector>

namespace SettingsKeys = FrameDriver::Tools::SettingsKeys;

namespace {

constexpr unsigned short framePort = 5000;
constexpr char stateFile[] = "config/QISState.dsf";  // in the working directory

std::string hoursAndMinutes(std::tm const& time) {
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d", time.tm_hour, time.tm_min);
    return text;
}

}  // namespace

std::string QuillaneQFD::getFrameAddress() const {
    return settings.get(SettingsKeys::simulatorFrameAddress);
}

// The panel hears the address at each attempt, also at one that fails: it shows where the
// driver is trying to get to. Whether it got there, the next look at the state tells.
void QuillaneQFD::connectToFrame() {
    if (!settings.contains(SettingsKeys::simulatorFrameAddress)) {
        log.getWarnStream() << "Settings file does not contain a switcher address.";
        return;
    }
    auto const address = getFrameAddress();
    log.getWarnStream() << "Connecting to the frame at " << address;
    auto const state = getConnectionState();
    if (state == eConnected) {
        log.getWarnStream() << "The client is not in the correct state to start a new connection: "
                            << static_cast<int>(state);
        return;
    }
    cplClient.connect(address.c_str(), framePort);
    sendSID("CONNECTED_MF", address);
}

void QuillaneQFD::onFrameConnected() {
    log.getInfoStream() << "Frame connection complete.";
    sendSID("SYSTEM.REBOOT_INDICATION", hoursAndMinutes(clock.localTime()));
}

void QuillaneQFD::disconnectFromFrame() {
    log.getInfoStream() << "Disconnecting from the frame.";
    cplClient.disconnect();
    if (auto* const client = timeClient.load())
        client->disconnected();
    sendSID("SYSTEM.REBOOT_INDICATION", "INV");
}

// Read from disk at each connection, so a changed file takes effect at the next one.
void QuillaneQFD::subscribeToFrame() {
    log.getInfoStream() << "Subscribing to frame parameter.";
    for (auto const& file : manifest.getCplSubscriptionLists()) {
        Subscriptions list;
        loadSubscriptions(file, list);
        std::vector<std::unique_ptr<FrameDriver::CPL::Subscription const>> const owned(list.begin(),
                                                                                       list.end());
        for (auto const& subscription : owned)
            cplClient.send(subscription.get());
    }
}

void QuillaneQFD::registerFIDs() {
    log.getInfoStream() << "Registering for panel FIDs.";
    std::list<std::string> names;
    for (auto const& file : manifest.getFidRegistrationLists())
        loadFIDRegistration(file, names);
    for (auto const& name : names)
        functions->addFunction<QuillaneQFD>(name, this, &QuillaneQFD::handleFID);
}

// The names in the file are the panel's own: no dictionary is asked, and it makes no difference
// whether those are loaded yet.
void QuillaneQFD::resetPanel() {
    log.getInfoStream() << "Resetting the panel to a clean state.";
    DsfFunctions unusedFunctions;
    DsfStates unusedStates;
    DsfAssignments assignments;
    CDSFParser parser;
    bool const opened = parser.load(stateFile, unusedFunctions, unusedStates, assignments, 0);
    if (!opened || !functions)
        return;
    for (auto const& assignment : assignments)
        functions->setState(assignment.name, assignment.value);
}
