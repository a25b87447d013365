#pragma once

#include "platform/Visibility.h"

namespace sal {

/// Operations on the calling thread.
class QFD_PUBLIC Thread {
  public:
    Thread() = delete;

    /// Sleeps `milliseconds`, at least. Not interruptible.
    static void mssleep(unsigned milliseconds);
};

}  // namespace sal
