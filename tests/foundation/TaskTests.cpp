#include "Gate.h"
#include "foundation/Task.h"
#include "tests/support/NoStack.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/thread/exceptions.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>

namespace {

boost::posix_time::time_duration const noLimit(boost::posix_time::pos_infin);
boost::posix_time::time_duration const atOnce = boost::posix_time::microseconds(0);

/// A task whose body and end are the test's; it gives its protected parts away.
class TestTask : public Task {
  public:
    explicit TestTask(std::function<void(TestTask&)> taskBody = {},
                      std::function<void()> taskEnd = {})
        : Task("Test task", 1000000), body(std::move(taskBody)), end(std::move(taskEnd)) {}
    ~TestTask() override {
        if (end)
            end();
    }

    void run() override {
        if (body)
            body(*this);
    }

    using Task::keepRunning;
    using Task::signalStarted;
    using Task::signalStopped;
    using Task::wakeEvent;

  private:
    std::function<void(TestTask&)> body;
    std::function<void()> end;
};

/// Loops as the driver's tasks do, until stopped.
void loopUntilStopped(TestTask& task) {
    task.signalStarted();
    while (task.keepRunning)
        std::this_thread::yield();
    task.signalStopped();
}

TEST(Task, IsConstructedReadyToRunAndNotRunning) {
    TestTask task;
    EXPECT_TRUE(task.keepRunning);
    EXPECT_FALSE(task.isRunning());
    EXPECT_EQ(task.getName(), "Test task");
    EXPECT_EQ(task.getPeriod(), 1000000);
    EXPECT_TRUE(task.waitUntilEnded(atOnce));
}

TEST(Task, ThirdOperationOfAThreadDoesNothing) {
    AbstractThread thread("Idle");
    thread.run();
    thread.finish();
    EXPECT_EQ(thread.getName(), "Idle");
}

TEST(Task, RunSignalsTheStarterAndTheStopper) {
    // The starter may miss the signal, so each is tried until it was awake in time.
    bool sawStart = false, sawStop = false;
    for (int attempt = 0; attempt < 100 && !(sawStart && sawStop); ++attempt) {
        TestTask task(loopUntilStopped);
        TimedSyncEvent started(60000), stopped(60000);
        task.start(&started);
        sawStart |= started.waitForSignal();
        EXPECT_TRUE(task.isRunning());
        task.stop(&stopped);
        sawStop |= stopped.waitForSignal();
        ASSERT_TRUE(task.waitUntilEnded(noLimit));
        EXPECT_TRUE(started.isSignalled());
        EXPECT_TRUE(stopped.isSignalled());
    }
    EXPECT_TRUE(sawStart);
    EXPECT_TRUE(sawStop);
}

TEST(Task, WorksWithoutEvents) {
    TestTask task(loopUntilStopped);
    task.start(nullptr);
    EXPECT_TRUE(task.isRunning());
    task.stop(nullptr);
    EXPECT_TRUE(task.waitUntilEnded(noLimit));
}

TEST(Task, RunThatSignalsNothingLeavesTheStarterToItsTimeout) {
    TestTask task;
    TimedSyncEvent started(1000);
    task.start(&started);
    EXPECT_FALSE(started.waitForSignal());
    EXPECT_TRUE(task.waitUntilEnded(noLimit));
    EXPECT_FALSE(started.isSignalled());
}

TEST(Task, StopOfATaskNeverStartedSignalsAtOnceAndTheWaitThatFollowsTimesOut) {
    TestTask task;
    TimedSyncEvent stopped(1000);
    task.stop(&stopped);
    EXPECT_TRUE(stopped.isSignalled());
    EXPECT_FALSE(stopped.waitForSignal());
    EXPECT_FALSE(task.keepRunning);
    task.stop(nullptr);
}

TEST(Task, StopLeavesIsRunningFalseAtOnceThoughTheThreadIsInItsLoop) {
    Gate inside, leave;
    TestTask task([&](TestTask& self) {
        inside.open();
        leave.pass();
        self.signalStopped();
    });
    task.start(nullptr);
    inside.pass();
    TimedSyncEvent stopped(0);
    task.stop(&stopped);
    EXPECT_FALSE(task.isRunning());
    EXPECT_FALSE(task.waitUntilEnded(atOnce));
    EXPECT_FALSE(stopped.isSignalled()) << "the loop is to signal it on its way out";
    leave.open();
    EXPECT_TRUE(task.waitUntilEnded(noLimit));
    EXPECT_TRUE(stopped.isSignalled());
}

TEST(Task, StopWakesARunThatWaitsOnTheWakeEvent) {
    // A wake-up that comes before the wait is lost, so it is tried until one is in time.
    std::atomic<bool> woken = false;
    for (int attempt = 0; attempt < 100 && !woken; ++attempt) {
        Gate aboutToWait;
        TestTask task([&](TestTask& self) {
            aboutToWait.open();
            woken = self.wakeEvent->wait(boost::posix_time::milliseconds(100));
        });
        task.start(nullptr);
        aboutToWait.pass();
        std::this_thread::yield();
        task.stop(nullptr);
        ASSERT_TRUE(task.waitUntilEnded(noLimit));
    }
    EXPECT_TRUE(woken);
}

TEST(Task, RunThatReturnsByItselfLeavesIsRunningTrue) {
    TestTask task;
    task.start(nullptr);
    EXPECT_TRUE(task.waitUntilEnded(noLimit));
    EXPECT_TRUE(task.isRunning());
    task.stop(nullptr);
    EXPECT_FALSE(task.isRunning());
}

TEST(Task, ExceptionThatLeavesRunEndsTheThreadAndLeavesIsRunningTrue) {
    TestTask task([](TestTask&) { throw std::runtime_error("ended"); });
    task.start(nullptr);
    EXPECT_TRUE(task.waitUntilEnded(noLimit));
    EXPECT_TRUE(task.isRunning());
}

TEST(Task, StartAfterStopRunsAgainOnANewThread) {
    Gate leave;
    std::atomic<int> inside = 0;
    std::mutex lock;
    std::set<std::thread::id> threads;
    TestTask task([&](TestTask&) {
        {
            std::lock_guard guard(lock);
            threads.insert(std::this_thread::get_id());
        }
        ++inside;
        leave.pass();
    });
    task.start(nullptr);
    task.stop(nullptr);
    task.start(nullptr);
    EXPECT_TRUE(task.isRunning());
    EXPECT_TRUE(task.keepRunning);
    while (inside != 2)
        std::this_thread::yield();
    leave.open();
    EXPECT_TRUE(task.waitUntilEnded(noLimit));
    EXPECT_EQ(threads.size(), 2u);
}

TEST(Task, EventsMayDieBeforeTheThreadSignalsThem) {
    Gate leave;
    TestTask task([&](TestTask& self) {
        leave.pass();
        self.signalStarted();
        self.signalStopped();
    });
    std::shared_ptr<Signal> start, stop;
    {
        TimedSyncEvent started(0), stopped(0);
        start = started.handle();
        stop = stopped.handle();
        task.start(&started);
        task.stop(&stopped);
    }
    leave.open();
    EXPECT_TRUE(task.waitUntilEnded(noLimit));
    EXPECT_TRUE(start->wasSignalled());
    EXPECT_TRUE(stop->wasSignalled());
}

TEST(Task, DestructionOfAThreadDoesNotWaitForIt) {
    Gate leave;
    auto const left = std::make_shared<Gate>();
    {
        // Its body needs nothing of the object.
        struct Detached : AbstractThread {
            explicit Detached(boost::thread given) : AbstractThread("Detached") {
                thread = std::move(given);
            }
        };
        Detached const gone(boost::thread([&leave, left] {
            leave.pass();
            left->open();
        }));
    }
    leave.open();
    left->pass();
}

TEST(Task, ReleaseDestroysATaskNeverStartedAtOnce) {
    bool destroyed = false;
    Task::release(std::make_unique<TestTask>(nullptr, [&] { destroyed = true; }));
    EXPECT_TRUE(destroyed);
    Task::release(nullptr);
}

TEST(Task, ReleaseDestroysATaskWhoseRunHasReturnedAtOnce) {
    bool destroyed = false;
    auto task = std::make_unique<TestTask>(nullptr, [&] { destroyed = true; });
    task->start(nullptr);
    ASSERT_TRUE(task->waitUntilEnded(noLimit));
    Task::release(std::move(task));
    EXPECT_TRUE(destroyed);
}

TEST(Task, ReleaseOfATaskInItsRunLeavesTheDestructionToItsThread) {
    Gate leave, destroyed;
    std::atomic<bool> isDestroyed = false;
    std::thread::id ranOn, destroyedOn;
    auto task = std::make_unique<TestTask>(
        [&](TestTask& self) {
            ranOn = std::this_thread::get_id();
            leave.pass();
            while (self.keepRunning)
                std::this_thread::yield();
            self.signalStopped();
        },
        [&] {
            isDestroyed = true;
            destroyedOn = std::this_thread::get_id();
            destroyed.open();
        });
    TimedSyncEvent stopped(0);
    task->start(nullptr);
    task->stop(&stopped);
    Task::release(std::move(task));
    EXPECT_FALSE(isDestroyed);
    leave.open();
    destroyed.pass();
    EXPECT_EQ(destroyedOn, ranOn);
    EXPECT_NE(destroyedOn, std::this_thread::get_id());
    EXPECT_TRUE(stopped.isSignalled());
}

TEST(Task, ReleaseLeavesTheDestructionToTheLastOfSeveralThreads) {
    Gate leaveFirst, leaveSecond, destroyed;
    std::atomic<int> started = 0, ended = 0;
    auto task = std::make_unique<TestTask>(
        [&](TestTask&) {
            (started++ == 0 ? leaveFirst : leaveSecond).pass();
            ++ended;
        },
        [&] {
            EXPECT_EQ(ended, 2);
            destroyed.open();
        });
    task->start(nullptr);
    task->start(nullptr);
    while (started != 2)
        std::this_thread::yield();
    Task::release(std::move(task));
    leaveFirst.open();
    while (ended != 1)
        std::this_thread::yield();
    leaveSecond.open();
    destroyed.pass();
}

TEST(Task, StartThrowsTheLibrarysNameIfThereIsNoThreadToBeHad) {
    TestTask task;
    {
        FrameDriver::Testing::NoStack const noStack;
        try {
            task.start(nullptr);
            ADD_FAILURE() << "no exception";
        } catch (boost::thread_resource_error const& error) {
            EXPECT_STREQ(error.what(), "boost::thread_resource_error");
        }
    }
    EXPECT_TRUE(task.isRunning()) << "set before the thread is made";
    EXPECT_TRUE(task.waitUntilEnded(atOnce));
}

}  // namespace
