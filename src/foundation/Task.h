#pragma once

#include "foundation/AbstractThread.h"
#include "foundation/SpinLock.h"
#include "foundation/SyncEvent.h"
#include "foundation/TimedSyncEvent.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

/// A thread with a stop flag, and a handshake by which its starter can wait until it is up and
/// its stopper until it has ended.
///
/// A derived class writes `run` like this, and calls both even if nobody waits:
///
///     void Derived::run() {
///         signalStarted();
///         while (keepRunning) { ... }
///         signalStopped();
///     }
///
/// `run` is not guarded: an exception that leaves it ends the thread with one error line in the
/// log, and the rest of the driver goes on without it. As after a `run` that returns by itself,
/// `isRunning` stays true and nothing is signalled.
///
///     keepRunning  running
///     true         false     constructed
///     true         true      started
///     false        false     stop requested, or thread gone
///
/// Lifetime: a started task must not be destroyed before its `run` has returned. Whoever wants
/// it gone and can't wait gives it to `release`; whoever holds it by value calls
/// `waitUntilEnded`, in the destructor of the most derived class at the latest.
///
/// Thread: `start`, `stop`, `isRunning`, `waitUntilEnded` from any.
class Task : public AbstractThread {
  public:
    /// `period` is in microseconds; the task keeps it for its derived class.
    Task(std::string taskName, std::int64_t taskPeriod);
    ~Task() override;

    /// Runs `run` on a new thread. An earlier thread is given up; if it is still in `run`, both
    /// run, until the next stop. `started` may be null and may die before the thread
    /// signals it.
    ///
    /// Throws boost::thread_resource_error ("boost::thread_resource_error") if there is no
    /// thread to be had.
    void start(TimedSyncEvent* started);

    /// Asks `run` to end, and doesn't wait: a `run` that sleeps finishes its sleep. `stopped`,
    /// which may be null and may die at any time, is signalled by `run` on its way out, or at
    /// once if the task isn't running.
    void stop(TimedSyncEvent* stopped);

    /// False from `stop` on, even while the thread is still in its loop.
    bool isRunning() const { return running; }
    std::int64_t getPeriod() const { return period; }

    /// True as soon as no `run` of this task is under way; false if that takes longer than
    /// `limit` (positive infinity has no limit). At once true for a task never started.
    bool waitUntilEnded(boost::posix_time::time_duration const& limit) const;

    /// Takes a task that its owner wants gone: destroys it at once if no `run` is under way,
    /// otherwise its thread destroys it as its last act. `stop` it first. The task's `run` must
    /// then not touch anything that its former owner takes away.
    static void release(std::unique_ptr<Task> task);

  protected:
    /// Signals the event given to `start`, if any.
    void signalStarted();
    /// Signals the event given to `stop`, if any.
    void signalStopped();

    std::int64_t const period;
    /// For a `run` that wants to be woken by `stop` instead of finishing its sleep.
    std::unique_ptr<SyncEvent> const wakeEvent;
    std::atomic<bool> keepRunning{true};
    std::atomic<bool> running{false};

  private:
    struct Runs;
    class Entry;

    boost::thread createThread();
    void runGuarded();
    void giveUpHandle();
    void signal(std::shared_ptr<Signal> const& event);

    FrameDriver::Tools::SpinMutex lock;    // of thread and of both events
    std::shared_ptr<Signal> startedEvent;  // null until start
    std::shared_ptr<Signal> stoppedEvent;  // null until stop
    std::shared_ptr<Runs> const runs;
};
