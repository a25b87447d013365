#pragma once

#include "foundation/Clock.h"

#include <chrono>
#include <condition_variable>
#include <ctime>
#include <mutex>

namespace FrameDriver::Testing {

/// A clock for one sleeping thread, moved by hand: the sleeper stays asleep until the test
/// wakes it. The local time is always 09:05.
class HandClock : public Tools::Clock {
  public:
    void sleep(std::chrono::microseconds duration) override {
        std::unique_lock guard(lock);
        if (free)
            return;
        asleep = true;
        length = duration;
        changed.notify_all();
        changed.wait(guard, [this] { return !asleep || free; });
        asleep = false;
    }
    std::tm localTime() override {
        std::tm time{};
        time.tm_hour = 9;
        time.tm_min = 5;
        return time;
    }

    /// Waits for the thread to sleep; how long it means to, in milliseconds.
    long sleeping() {
        std::unique_lock guard(lock);
        changed.wait(guard, [this] { return asleep; });
        return static_cast<long>(length.count() / 1000);
    }
    /// Wakes it, and waits until it sleeps again.
    long next() {
        std::unique_lock guard(lock);
        changed.wait(guard, [this] { return asleep; });
        asleep = false;
        changed.notify_all();
        changed.wait(guard, [this] { return asleep; });
        return static_cast<long>(length.count() / 1000);
    }
    /// Sleeps take no time from now on.
    void release() {
        std::lock_guard const guard(lock);
        free = true;
        changed.notify_all();
    }

  private:
    std::mutex lock;
    std::condition_variable changed;
    bool asleep = false;
    bool free = false;
    std::chrono::microseconds length{};
};

}  // namespace FrameDriver::Testing
