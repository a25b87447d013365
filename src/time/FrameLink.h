#pragma once

#include "platform/cplclient/CPLTypes.h"

#include <string>

/// All that the time client sees of the driver. Thread: any.
class FrameLink {
  public:
    virtual ~FrameLink() = default;

    virtual ClientConnectionState getConnectionState() const = 0;
    /// The frame's address or name; empty if there is none.
    virtual std::string getFrameAddress() const = 0;
};
