#pragma once

#include "platform/Visibility.h"

namespace sal {

/// A clock that can be set back a little.
class QFD_PUBLIC Timer {
  public:
    Timer() = default;
    virtual ~Timer();
    Timer(Timer const&) = delete;
    Timer& operator=(Timer const&) = delete;

    /// Sets the clock back by `milliseconds`, once and at once. True if that was possible.
    virtual bool setAdjustment(unsigned milliseconds) = 0;
};

}  // namespace sal
