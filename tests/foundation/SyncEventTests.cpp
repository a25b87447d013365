#include "Gate.h"
#include "foundation/Deadline.h"
#include "foundation/SyncEvent.h"
#include "foundation/TimedSyncEvent.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <memory>
#include <thread>

namespace {

using boost::posix_time::microseconds;
using boost::posix_time::time_duration;
using std::chrono::steady_clock;
using std::chrono::system_clock;

// What `wait` answers while this thread signals without a pause: whenever the wait begins, a
// signal comes after it.
template <class Wait, class Signalling>
bool waitUnderSignals(Wait wait, Signalling signalling) {
    std::atomic<bool> done = false;
    bool answer = false;
    std::thread waiter([&] {
        answer = wait();
        done = true;
    });
    while (!done) {
        signalling();
        std::this_thread::yield();
    }
    waiter.join();
    return answer;
}

TEST(SyncEvent, IsNamedAsTheDriverNamesItsEvents) {
    EXPECT_EQ(SyncEvent().getName(), "Synchronization Event");
    EXPECT_EQ(TimedSyncEvent(0).getName(), "Synchronization Event");
    EXPECT_EQ(SyncEvent("Other").getName(), "Other");
}

TEST(SyncEvent, HasNoStateToLookAt) {
    TimedSyncEvent event(0);
    event.signal();
    EXPECT_FALSE(event.tryWait());
}

TEST(SyncEvent, WaitIsTrueIfWokenBeforeTheDeadline) {
    SyncEvent event;
    EXPECT_TRUE(waitUnderSignals([&] { return event.wait(boost::posix_time::hours(1)); },
                                 [&] { event.wakeAll(); }));
}

TEST(SyncEvent, PositiveInfinityWaitsWithoutLimit) {
    SyncEvent event;
    EXPECT_TRUE(waitUnderSignals([&] { return event.wait(boost::posix_time::pos_infin); },
                                 [&] { event.wakeAll(); }));
}

TEST(SyncEvent, WaitIsFalseBehindTheDeadlineAndNotBefore) {
    SyncEvent event;
    auto const start = steady_clock::now();
    EXPECT_FALSE(event.wait(microseconds(3000)));
    // The deadline is the wall clock's, which may be slewed a little against this one.
    EXPECT_GE(steady_clock::now() - start, std::chrono::microseconds(2500));
}

TEST(SyncEvent, DurationsThatArePastReturnAtOnce) {
    SyncEvent event;
    time_duration const rows[] = {
        microseconds(0),
        microseconds(-1),
        boost::posix_time::hours(-24),
        time_duration(boost::posix_time::neg_infin),
        time_duration(boost::posix_time::not_a_date_time),
    };
    for (auto const& duration : rows)
        EXPECT_FALSE(event.wait(duration)) << duration.ticks();
}

TEST(SyncEvent, DestructionWakesTheWaiters) {
    auto event = std::make_unique<TimedSyncEvent>(0);
    auto const handle = event->handle();
    auto const seen = handle->mark();
    bool woken = false;
    std::thread waiter([&] { woken = handle->waitBehind(seen, std::nullopt); });
    event.reset();
    waiter.join();
    EXPECT_TRUE(woken);
}

TEST(SyncEvent, OneSignalWakesAllWaiters) {
    TimedSyncEvent event(0);
    auto const handle = event.handle();
    auto const seen = handle->mark();
    std::atomic<int> woken = 0;
    auto const wait = [&] { woken += handle->waitBehind(seen, std::nullopt) ? 1 : 0; };
    std::thread first(wait), second(wait), third(wait);
    event.signal();
    first.join();
    second.join();
    third.join();
    EXPECT_EQ(woken, 3);
}

TEST(Deadline, IsTheUniversalTimePlusTheDuration) {
    auto const before = system_clock::now();
    auto const deadline = deadlineIn(microseconds(60000));
    auto const after = system_clock::now();
    ASSERT_TRUE(deadline);
    EXPECT_GE(*deadline, before + std::chrono::milliseconds(60));
    EXPECT_LE(*deadline, after + std::chrono::milliseconds(60));
}

TEST(Deadline, InfinityAndWhatTheClockCannotTellHaveNone) {
    EXPECT_FALSE(deadlineIn(time_duration(boost::posix_time::pos_infin)));
    EXPECT_FALSE(deadlineIn(microseconds(std::numeric_limits<std::int64_t>::max())));
    EXPECT_FALSE(deadlineIn(microseconds(std::numeric_limits<std::int64_t>::max() - 5)));
}

TEST(TimedSyncEvent, WaitAfterTheSignalTimesOut) {
    TimedSyncEvent event(1000);
    event.signal();
    auto const start = steady_clock::now();
    EXPECT_FALSE(event.waitForSignal());
    EXPECT_GE(steady_clock::now() - start, std::chrono::microseconds(800));
    EXPECT_TRUE(event.isSignalled()) << "recorded, though nothing waits by it";
}

TEST(TimedSyncEvent, WaitIsTrueIfTheSignalComesDuringIt) {
    TimedSyncEvent event(3600'000'000);
    EXPECT_TRUE(waitUnderSignals([&] { return event.waitForSignal(); }, [&] { event.signal(); }));
}

TEST(TimedSyncEvent, TimeoutZeroReturnsAtOnce) {
    TimedSyncEvent event(0);
    EXPECT_FALSE(event.waitForSignal());
}

TEST(TimedSyncEvent, TimeoutIsInMicrosecondsAndCanBeSet) {
    TimedSyncEvent event(3600'000'000);
    EXPECT_EQ(event.getTimeout(), 3600'000'000);
    event.setTimeout(10);
    EXPECT_EQ(event.getTimeout(), 10);
    EXPECT_FALSE(event.waitForSignal());
}

TEST(TimedSyncEvent, CopyTakesTheFieldsAndNotTheWaiters) {
    TimedSyncEvent event(5, "Other");
    event.signal();
    TimedSyncEvent const copy(event);
    EXPECT_EQ(copy.getName(), "Other");
    EXPECT_EQ(copy.getTimeout(), 5);
    EXPECT_TRUE(copy.isSignalled());
    auto const seen = copy.handle()->mark();
    event.signal();
    EXPECT_EQ(copy.handle()->mark(), seen);
}

TEST(TimedSyncEvent, SignalThatComesTooLateMeetsNoDeadEvent) {
    auto event = std::make_unique<TimedSyncEvent>(0);
    auto const handle = event->handle();
    event.reset();
    handle->signal();
    EXPECT_TRUE(handle->wasSignalled());
}

}  // namespace
