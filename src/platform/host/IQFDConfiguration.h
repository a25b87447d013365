#pragma once

#include "platform/Visibility.h"
#include "platform/host/IFunctionSink.h"
#include "platform/host/IStateSink.h"
#include "platform/sal/IInterface.h"

#include <cstdint>
#include <string>

/// How the host sets the driver up, starts it and stops it; obtained from the module by
/// `configurationInterfaceId`. The order of calls is: `configure`, `setStateSink`,
/// `setFunctionSink`, `load`, any number of FIDs, `unload` once.
///
/// Thread: one host thread, one call after another.
/// Errors: none of these fails; `load` logs what it has to do without.
class QFD_PUBLIC IQFDConfiguration : public virtual IInterface {
  public:
    /// `panelIndex` chooses the driver's local port (6200 + 2 x panelIndex); `hostAddress` is
    /// the panel's own address towards the frame, empty for any. The other texts are kept.
    virtual void configure(std::int32_t panelIndex, std::string const& firstText,
                           std::string const& secondText, std::string const& hostAddress,
                           std::string const& fourthText, std::string const& fifthText,
                           std::string const& sixthText) = 0;
    /// The sinks stay the host's and must outlive the driver's use of them.
    virtual void setStateSink(IStateSink* sink) = 0;
    virtual void setFunctionSink(IFunctionSink* sink) = 0;
    virtual void setHostToken(void* word) = 0;
    /// Starts the driver; blocks until it is at work, then sends the SID "LOADED". No other
    /// thread may deliver a FID meanwhile.
    virtual void load() = 0;
    /// Stops the driver; at most about one second, plus what a frame makes it wait.
    virtual void unload() = 0;
    virtual void idle() = 0;
};

inline constexpr int configurationInterfaceId = 1201;
