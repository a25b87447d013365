#pragma once

#include <cstdint>
#include <string>

#include "driver/FIDMapHandler.h"
#include "driver/IQFDFramework.h"
#include "platform/host/IQFDConfiguration.h"

/// What the host knows and the driver needs: the panel's number, the panel's own address, the
/// sinks; and the host's handle to start and stop the driver.
///
/// Thread: the host's, before `load` and around `unload`. `panelIndex` and `hostAddress` are
/// read on other threads while the driver runs, and not written then.
class QFDConfigHandler : public IQFDConfiguration {
  public:
    QFDConfigHandler() = default;

    /// Itself for `configurationInterfaceId`, null for everything else.
    IInterface* queryInterface(int id) override;

    void configure(std::int32_t index, std::string const& first, std::string const& second,
                   std::string const& address, std::string const& fourth,
                   std::string const& fifth, std::string const& sixth) override;
    void setStateSink(IStateSink* sink) override;
    void setFunctionSink(IFunctionSink* sink) override;
    void setHostToken(void* word) override { hostToken = word; }
    void load() override;
    void unload() override;
    void idle() override {}

    // The driver's side. The pointers are not owned.
    void setFunctions(FIDMapHandler* handler) { functions = handler; }
    void setFramework(IQFDFramework* owner) { framework = owner; }
    void setHostValue(void* word) { hostValue = word; }
    void flushHostValue() {}

    std::int32_t getPanelIndex() const { return panelIndex; }
    std::string getHostAddress() const { return hostAddress; }

  private:
    FIDMapHandler* functions = nullptr;
    [[maybe_unused]] void* hostValue = nullptr;  // kept for the host; nothing reads it
    IQFDFramework* framework = nullptr;
    [[maybe_unused]] void* hostToken = nullptr;  // likewise
    std::int32_t panelIndex = 0;
    // The order is that of the panel's older software, not that of the arguments.
    std::string firstText;
    std::string secondText;
    std::string sixthText;
    std::string hostAddress;
    std::string fifthText;
    std::string fourthText;
};
