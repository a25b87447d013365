#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

/// What stands behind an event: a spin condition that outlives the event for as long as a waiter
/// or a thread that may still signal it holds it (by shared_ptr).
///
/// Written on std::atomic, so that the thread sanitizer sees it. A waiter yields at first and
/// sleeps briefly later. Thread: any, several at once.
class Signal {
  public:
    /// A point in the row of notifications.
    using Mark = std::uint64_t;
    /// By the universal time, like all deadlines of the driver; none waits without limit.
    using Deadline = std::optional<std::chrono::system_clock::time_point>;

    Mark mark() const { return notifications.load(std::memory_order_acquire); }

    /// Waits for a notification that comes after `seen` was taken. False if the deadline came
    /// first; a notification that is there already counts even behind the deadline.
    bool waitBehind(Mark seen, Deadline const& deadline) const;

    /// Wakes all that wait now, and nobody else: nothing is stored for a later wait.
    void wakeAll() { notifications.fetch_add(1, std::memory_order_release); }

    /// As wakeAll, and keeps that it was done.
    void signal() {
        signalled.store(true, std::memory_order_relaxed);
        wakeAll();
    }
    // Relaxed: a record that orders nothing.
    bool wasSignalled() const { return signalled.load(std::memory_order_relaxed); }
    void recordSignalled(bool value) { signalled.store(value, std::memory_order_relaxed); }

  private:
    std::atomic<Mark> notifications{0};
    std::atomic<bool> signalled{false};
};
