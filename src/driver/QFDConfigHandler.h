#pragma once

#include "driver/FIDMapHandler.h"
#include "driver/IQFDFramework.h"
#include "platform/host/IQFDConfiguration.h"

#include <atomic>
#include <cstdint>
#include <string>

/// What the host knows and the driver needs: the panel's number, the panel's own address, the
/// sinks; and the host's handle to start and stop the driver.
///
/// Thread: the host's, one call after another. `getPanelIndex` from any; it follows a later
/// `configure` at once, while the port and the address stay those that the driver started with.
class QFDConfigHandler : public IQFDConfiguration {
  public:
    QFDConfigHandler() = default;

    /// Itself for `configurationInterfaceId`, null for everything else.
    IInterface* queryInterface(int id) override;

    void configure(std::int32_t index, std::string const& first, std::string const& second,
                   std::string const& address, std::string const& fourth, std::string const& fifth,
                   std::string const& sixth) override;
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
    std::atomic<std::int32_t> panelIndex{0};
    // The order is part of the object's shape; it isn't that of the arguments.
    std::string firstText;
    std::string secondText;
    std::string sixthText;
    std::string hostAddress;
    std::string fifthText;
    std::string fourthText;
};
