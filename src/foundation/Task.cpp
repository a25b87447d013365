#include "foundation/Task.h"

#include "foundation/Deadline.h"
#include "platform/logging/LogManager.h"

#include <boost/thread/exceptions.hpp>

#include <mutex>
#include <utility>

using Brindlemoor::Utilities::Logging::LogManager;

// The book of the runs under way. It outlives the task in the hands of its threads, so that the
// last act of a thread, which may be the task's destruction, needs nothing of the task.
struct Task::Runs {
    FrameDriver::Tools::SpinMutex lock;
    int underWay = 0;                // guarded by lock
    std::unique_ptr<Task> released;  // guarded by lock
    Signal ended;

    void enter() {
        std::lock_guard guard(lock);
        ++underWay;
    }

    void leave() {
        std::unique_ptr<Task> last;
        {
            std::lock_guard guard(lock);
            if (--underWay == 0)
                last = std::move(released);
        }
        last.reset();
        ended.wakeAll();
    }

    bool none() {
        std::lock_guard guard(lock);
        return underWay == 0;
    }
};

namespace {

// The library's own adds the system's word for the error to the text, which differs from system
// to system.
class NoThread : public boost::thread_resource_error {
  public:
    using boost::thread_resource_error::thread_resource_error;
    char const* what() const noexcept override { return "boost::thread_resource_error"; }
};

}  // namespace

// One run in the book, however it ends.
class Task::Entry {
  public:
    explicit Entry(std::shared_ptr<Runs> runsBook) : book(std::move(runsBook)) { book->enter(); }
    Entry(Entry const&) = delete;
    Entry& operator=(Entry const&) = delete;
    ~Entry() { book->leave(); }

  private:
    std::shared_ptr<Runs> book;
};

Task::Task(std::string taskName, std::int64_t taskPeriod)
    : AbstractThread(std::move(taskName)),
      period(taskPeriod),
      wakeEvent(std::make_unique<SyncEvent>()),
      runs(std::make_shared<Runs>()) {}

Task::~Task() = default;

void Task::start(TimedSyncEvent* started) {
    {
        std::lock_guard guard(lock);
        startedEvent = started ? started->handle() : nullptr;
    }
    keepRunning = true;
    running = true;
    // The new thread can't get to its end, where it looks for its handle, before that is in place.
    std::lock_guard guard(lock);
    auto fresh = createThread();
    thread.swap(fresh);
    if (fresh.joinable())
        fresh.detach();
}

boost::thread Task::createThread() {
    // The body takes the entry out of itself: a boost::thread keeps its body for as long as
    // there is a handle to it.
    auto body = [this, entry = std::make_shared<Entry>(runs)]() mutable {
        auto const held = std::move(entry);
        runGuarded();
        giveUpHandle();
    };
    try {
        return boost::thread(std::move(body));
    } catch (boost::thread_resource_error const& error) {
        throw NoThread(error.code().value());
    }
}

// A panel on air is better off with a driver that lost one of its threads than with none.
void Task::runGuarded() {
    auto const tell = [this](char const* reason) {
        LogManager::getInstance()->getCategory("Tavrine_Frame_Driver").getErrorStream()
            << "An exception ended the thread '" << getName() << "': " << reason;
    };
    try {
        run();
    } catch (std::exception const& error) {
        tell(error.what());
    } catch (...) {
        tell("of unknown type");
    }
}

// Nobody joins a task's thread, and a handle that outlives it would keep its stack.
void Task::giveUpHandle() {
    std::lock_guard guard(lock);
    if (thread.get_id() == boost::this_thread::get_id())
        thread.detach();
}

void Task::stop(TimedSyncEvent* stopped) {
    auto const event = stopped ? stopped->handle() : nullptr;
    {
        std::lock_guard guard(lock);
        stoppedEvent = event;
    }
    keepRunning = false;
    if (running.exchange(false))
        wakeEvent->wakeAll();
    else if (event)
        event->signal();
}

bool Task::waitUntilEnded(boost::posix_time::time_duration const& limit) const {
    auto const deadline = deadlineIn(limit);
    auto const book = runs;
    for (bool inTime = true; inTime;) {
        auto const seen = book->ended.mark();
        if (book->none())
            return true;
        inTime = book->ended.waitBehind(seen, deadline);
    }
    return false;
}

void Task::release(std::unique_ptr<Task> task) {
    if (!task)
        return;
    auto const book = task->runs;
    std::unique_lock guard(book->lock);
    if (book->underWay != 0)
        book->released = std::move(task);
    guard.unlock();
    task.reset();
}

void Task::signalStarted() { signal(startedEvent); }

void Task::signalStopped() { signal(stoppedEvent); }

// Signals outside the lock: a woken waiter may come straight back with a start or a stop.
void Task::signal(std::shared_ptr<Signal> const& event) {
    std::shared_ptr<Signal> held;
    {
        std::lock_guard guard(lock);
        held = event;
    }
    if (held)
        held->signal();
}
