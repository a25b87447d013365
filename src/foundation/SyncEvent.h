#pragma once

#include "foundation/Signal.h"
#include "foundation/SynchronizationObject.h"

#include <memory>
#include <string>

/// An event on which any number of threads can wait. It has no memory: a wake-up that comes
/// before a wait begins is lost, and the wait runs to its deadline. Kept: the timeouts in use
/// are short, and they settle the race.
///
/// Thread: any, several at once, until it is destroyed; a waiter that is woken by the
/// destruction doesn't touch the event any more.
class SyncEvent : public SynchronizationObject {
  public:
    explicit SyncEvent(std::string eventName = "Synchronization Event");
    SyncEvent(SyncEvent const&) = delete;
    SyncEvent& operator=(SyncEvent const&) = delete;
    /// Wakes all waiters.
    ~SyncEvent() override;

    /// True if the event was woken within `duration` from now; positive infinity waits without
    /// limit. Whole microseconds; zero and less return at once.
    bool wait(boost::posix_time::time_duration const& duration) override;
    /// False: an event has no state to look at.
    bool tryWait() override { return false; }

    void wakeAll() { state->wakeAll(); }

  protected:
    std::shared_ptr<Signal> const state = std::make_shared<Signal>();
};
