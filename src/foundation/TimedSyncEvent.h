#pragma once

#include "foundation/SyncEvent.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

/// An event that knows how long to wait for it: the handshake for the start and the stop of a
/// thread.
///
/// The waiter owns it, mostly on its stack. A thread that is to signal it holds its `handle`,
/// so that a signal that comes too late, after the waiter has given up, meets no dead event.
/// Thread: any, several at once.
class TimedSyncEvent : public SyncEvent {
  public:
    /// In microseconds: 60000 is 60 milliseconds.
    explicit TimedSyncEvent(std::int64_t timeoutMicroseconds,
                            std::string eventName = "Synchronization Event");
    /// Takes name, timeout and the record of the signal over. The waiters stay with the other.
    TimedSyncEvent(TimedSyncEvent const& other);
    TimedSyncEvent& operator=(TimedSyncEvent const&) = delete;

    /// True if `signal` came after the call began and before the timeout.
    bool waitForSignal();
    void signal() { state->signal(); }

    std::int64_t getTimeout() const { return timeout.load(std::memory_order_relaxed); }
    void setTimeout(std::int64_t microseconds) {
        timeout.store(microseconds, std::memory_order_relaxed);
    }
    /// Whether `signal` was ever called; `waitForSignal` doesn't look at it.
    bool isSignalled() const { return state->wasSignalled(); }

    /// What a thread keeps that is to signal this event; it may outlive the event.
    std::shared_ptr<Signal> handle() const { return state; }

  private:
    std::atomic<std::int64_t> timeout;
};
