// The FIDs that belong to the driver and not to the frame. Dictionaries reach them through
// "DFID" results: what triggers them is data, what they do is code.
#include "driver/QuillaneQFD.h"
#include "foundation/NumberText.h"
#include "foundation/TimedSyncEvent.h"
#include "xml/SettingsKeys.h"

#include <cstdio>
#include <memory>
#include <utility>

namespace SettingsKeys = FrameDriver::Tools::SettingsKeys;

namespace {

/// Keeps the observer from acting on a connection that another thread is taking down.
class ObserverPause {
  public:
    explicit ObserverPause(std::shared_ptr<FrameConnectionObserver> watcher)
        : observer(std::move(watcher)) {
        if (observer)
            observer->pause();
    }
    ~ObserverPause() {
        if (observer)
            observer->resume();
    }
    ObserverPause(ObserverPause const&) = delete;
    ObserverPause& operator=(ObserverPause const&) = delete;

  private:
    std::shared_ptr<FrameConnectionObserver> const observer;
};

/// Flags are set by exactly this word and by nothing else.
bool isTrue(FIDParameterList const& parameters, char const* name) {
    std::string value;
    return parameters.getValue(name, value) && value == "TRUE";
}

}  // namespace

struct QuillaneQFD::OwnFID {
    std::string_view name;
    void (QuillaneQFD::*handle)(std::string const&, FIDParameterList const&);
};

void QuillaneQFD::handleOwnFID(std::string const& name, FIDParameterList const& parameters) {
    static constexpr OwnFID own[] = {
        {"FRAME.ADDRESS.SET", &QuillaneQFD::setFrameAddress},
        {"PANEL.MEMORY.RECALL", &QuillaneQFD::returnMemoryRecall},
        {"DRIVER.MONKEYTEST.ENABLE", &QuillaneQFD::switchMonkeyTest},
    };
    for (auto const& fid : own)
        if (fid.name == name) {
            (this->*fid.handle)(name, parameters);
            return;
        }
}

// The observer finds the link down and connects to the new address by itself, which it reads from
// the settings at each attempt.
void QuillaneQFD::setFrameAddress(std::string const& /*name*/, FIDParameterList const& parameters) {
    std::string address;
    if (!parameters.getValue("ADDRESS", address))
        return;
    if (isTrue(parameters, "IFNEW") && getFrameAddress() == address)
        return;
    ObserverPause const pause(std::atomic_load(&observer));
    settings.set(SettingsKeys::simulatorFrameAddress, address);
    if (isTrue(parameters, "SAVE"))
        saveSettings(settings, SettingsKeys::settingsPath);
    if (getConnectionState() == eConnected) {
        disconnectFromFrame();
        resetPanel();
    }
}

// Back out to the host, with the panel's number, which the dictionaries don't know.
void QuillaneQFD::returnMemoryRecall(std::string const& name, FIDParameterList const& parameters) {
    FIDParameterList copy(parameters);
    copy.add("WP", std::to_string(configuration->getPanelIndex()));
    functions->sendFunction(name, copy);
}

void QuillaneQFD::switchMonkeyTest(std::string const& /*name*/,
                                   FIDParameterList const& parameters) {
    std::string value;
    if (!parameters.getValue("VAL", value))
        return;
    std::puts(value.c_str());
    std::fflush(stdout);
    bool const enable = value == "ON";
    enableMonkeyTest(enable);
    sendSID("MONKEYTEST.ENABLED", enable ? "ON" : "OFF");
}

// Nothing waits for either event: switching costs the panel no time.
void QuillaneQFD::enableMonkeyTest(bool enable) {
    TimedSyncEvent event(0);
    if (!enable) {
        monkeyTest.stop(&event);
        log.getDebugStream() << "The monkey has raised " << monkeyTest.getRaised() << " FIDs.";
        return;
    }
    for (auto const& file : manifest.getMonkeyTests())
        loadMonkeyTest(file);
    monkeyTest.setFIDHandler(this);
    monkeyTest.start(&event);
}
