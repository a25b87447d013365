#pragma once

#include "platform/sal/IInterface.h"

/// How the configuration object drives the driver. The order of the operations is part of the
/// interface. Thread: the host's, one call after another.
class IQFDFramework : public virtual IInterface {
  public:
    virtual void onConfigured() = 0;  ///< the host has handed over its configuration
    virtual void initialize() = 0;    ///< starts the driver; blocks until it is at work
    virtual void deinitialize() = 0;  ///< stops it; once
    virtual void onNotify(void* word) = 0;
};
