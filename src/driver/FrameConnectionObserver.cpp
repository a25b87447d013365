#include "driver/FrameConnectionObserver.h"

#include "driver/BuildInfo.h"
#include "driver/QuillaneQFD.h"

#include <chrono>

using std::chrono::milliseconds;

FrameConnectionObserver::FrameConnectionObserver(FrameDriver::Tools::Clock& sleepClock)
    : Task("Task", 1000000), clock(sleepClock) {}

void FrameConnectionObserver::run() {
    signalStarted();
    bool firstPass = true;
    while (keepRunning) {
        clock.sleep(milliseconds(50));
        if (paused)
            continue;
        look(firstPass);
        clock.sleep(milliseconds(1000));
    }
    signalStopped();
}

// A lost link leaves firstPass as it is: the client passes through "not connected" after a
// disconnect, and that is where the next connection's sequence is armed.
void FrameConnectionObserver::look(bool& firstPass) {
    switch (driver->getConnectionState()) {
    case eNotConnected:
        driver->connectToFrame();
        firstPass = true;
        break;
    case eConnected:
        if (firstPass)
            runConnectedSequence();
        firstPass = false;
        break;
    case eConnectionLost:
        driver->disconnectFromFrame();
        driver->handleFID("PANEL.CONNECTION.LOST", FIDParameterList());
        break;
    default:
        break;
    }
}

// What a connection means to the panel is up to the dictionary's entry for this FID.
void FrameConnectionObserver::runConnectedSequence() {
    driver->onFrameConnected();
    driver->subscribeToFrame();
    FIDParameterList parameters;
    parameters.add("VERSION", driver->getVersionText());
    parameters.add("DATE", buildDate);
    driver->handleFID("PANEL.INIT.COMPLETE", parameters);
}
