#pragma once

#include "platform/Visibility.h"
#include "platform/fid/FIDParameterList.h"

#include <string>

/// The host's object for FIDs that the driver sends back towards the panel's software.
///
/// Ownership and threads as for IStateSink. The list is valid only during the call.
class QFD_PUBLIC IFunctionSink {
  public:
    virtual void sendFunction(std::string const& name, FIDParameterList const& parameters) = 0;

  protected:
    ~IFunctionSink() = default;
};
