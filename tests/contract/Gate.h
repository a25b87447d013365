#pragma once

#include "Patience.h"

#include <condition_variable>
#include <mutex>

/// Closed until it is opened, for good.
class Gate {
  public:
    void open() {
        std::lock_guard const guard(lock);
        isOpen = true;
        changed.notify_all();
    }
    /// False if it isn't opened in time.
    bool wait() {
        std::unique_lock guard(lock);
        return changed.wait_for(guard, patience, [this] { return isOpen; });
    }

  private:
    std::mutex lock;
    std::condition_variable changed;
    bool isOpen = false;
};
