#pragma once

#include "driver/StaticFIDFunction.h"
#include "platform/host/IFunctionID.h"
#include "platform/host/IFunctionSink.h"
#include "platform/host/IStateSink.h"

#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>

/// The host's door for FIDs, and the driver's door to the host's sinks.
///
/// Thread: no lock. Names and sinks are set before the driver runs and only read from then on;
/// after that any number of threads may deliver FIDs and send state at once.
/// Errors: an unknown FID is dropped without a word; without a sink nothing is sent.
class FIDMapHandler : public IFunctionID {
  public:
    FIDMapHandler() = default;
    ~FIDMapHandler() override;
    FIDMapHandler(FIDMapHandler const&) = delete;
    FIDMapHandler& operator=(FIDMapHandler const&) = delete;

    /// Itself for `functionInterfaceId`, null for everything else.
    IInterface* queryInterface(int id) override;

    /// Calls what is registered under exactly this name; failing that, the first pattern that
    /// the name fits.
    void handleFID(std::string const& name, FIDParameterList const& parameters) override;
    void reservedFunction1(void* word) override;
    void reservedFunction2() override;

    /// Registers a member function of `object`, which must outlive this. False, and the first
    /// one stays, if the name is taken.
    template <typename T>
    bool addFunction(std::string const& name, T* object,
                     typename StaticFIDFunctionImpl<T>::Member member) {
        if (functions.contains(name))
            return false;
        functions.emplace(name, std::make_unique<StaticFIDFunctionImpl<T>>(object, member));
        return true;
    }
    /// False if there was none of that name.
    bool removeFunction(std::string const& name);
    /// Appends a pattern; patterns are tried in this order.
    void addPatternFunction(std::unique_ptr<PatternFIDFunctionBase> function);

    /// The sinks stay the caller's. Null is allowed.
    void setStateSink(IStateSink* sink) { stateSink = sink; }
    void setFunctionSink(IFunctionSink* sink) { functionSink = sink; }

    // Forwarders to the state sink; each does nothing without one.
    void setState(std::string const& name, std::string const& value);
    void setStateNumber(std::string const& name, float value);
    void reservedState2(void* first, void* second);
    void reservedState3(void* first, void* second);
    void reservedState4(void* first);
    void setText(std::string const& name, std::string const& value);

    /// Forwards to the function sink; does nothing without one.
    void sendFunction(std::string const& name, FIDParameterList const& parameters);

  private:
    IStateSink* stateSink = nullptr;
    IFunctionSink* functionSink = nullptr;
    std::map<std::string, std::unique_ptr<StaticFIDFunctionBase>> functions;
    std::list<std::unique_ptr<PatternFIDFunctionBase>> patternFunctions;
};
