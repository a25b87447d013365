#include "driver/QFDConfigHandler.h"

IInterface* QFDConfigHandler::queryInterface(int id) {
    return id == configurationInterfaceId ? this : nullptr;
}

void QFDConfigHandler::configure(std::int32_t index, std::string const& first,
                                 std::string const& second, std::string const& address,
                                 std::string const& fourth, std::string const& fifth,
                                 std::string const& sixth) {
    panelIndex = index;
    firstText = first;
    secondText = second;
    hostAddress = address;
    fourthText = fourth;
    fifthText = fifth;
    sixthText = sixth;
    if (framework)
        framework->onConfigured();
}

void QFDConfigHandler::setStateSink(IStateSink* sink) {
    if (functions)
        functions->setStateSink(sink);
}

void QFDConfigHandler::setFunctionSink(IFunctionSink* sink) {
    if (functions)
        functions->setFunctionSink(sink);
}

// "LOADED" goes to the sink directly: the host waits for it whatever the dictionaries hold.
void QFDConfigHandler::load() {
    if (!framework)
        return;
    framework->initialize();
    if (functions)
        functions->setState("LOADED", "");
}

void QFDConfigHandler::unload() {
    if (framework)
        framework->deinitialize();
}
