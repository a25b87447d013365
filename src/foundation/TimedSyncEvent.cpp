#include "foundation/TimedSyncEvent.h"

#include <utility>

TimedSyncEvent::TimedSyncEvent(std::int64_t timeoutMicroseconds, std::string eventName)
    : SyncEvent(std::move(eventName)), timeout(timeoutMicroseconds) {}

TimedSyncEvent::TimedSyncEvent(TimedSyncEvent const& other)
    : SyncEvent(other.getName()), timeout(other.getTimeout()) {
    state->recordSignalled(other.isSignalled());
}

bool TimedSyncEvent::waitForSignal() { return wait(boost::posix_time::microseconds(getTimeout())); }
