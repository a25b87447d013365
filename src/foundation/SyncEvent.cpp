#include "foundation/SyncEvent.h"

#include "foundation/Deadline.h"

#include <utility>

SyncEvent::SyncEvent(std::string eventName) : SynchronizationObject(std::move(eventName)) {}

SyncEvent::~SyncEvent() { state->wakeAll(); }

bool SyncEvent::wait(boost::posix_time::time_duration const& duration) {
    // A waiter's own hold: the event may go while it waits.
    auto const held = state;
    auto const seen = held->mark();
    return held->waitBehind(seen, deadlineIn(duration));
}
