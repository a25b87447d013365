#pragma once

#include <condition_variable>
#include <mutex>

/// Closed until somebody opens it, and open from then on: what a test waits for instead of
/// sleeping.
class Gate {
  public:
    void open() {
        std::lock_guard guard(mutex);
        isOpen = true;
        opened.notify_all();
    }
    void pass() {
        std::unique_lock guard(mutex);
        opened.wait(guard, [this] { return isOpen; });
    }

  private:
    std::mutex mutex;
    std::condition_variable opened;
    bool isOpen = false;
};
