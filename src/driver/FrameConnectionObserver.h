#pragma once

#include "foundation/Clock.h"
#include "foundation/Task.h"

#include <atomic>
#include <future>

class QuillaneQFD;

/// Watches the link to the frame from a thread of its own: connects while there is none, runs
/// the connected sequence once per connection, cleans up when the link is lost. It polls, since
/// the frame may come and go at any time and in any way; one pass takes about 1050 ms.
///
/// Thread: `setDriver` before `start`; `pause` and `resume` from any thread.
/// Errors: `run` catches nothing. An exception out of what it calls ends this thread, and the
/// driver goes on with no one watching the connection.
class FrameConnectionObserver : public Task {
  public:
    explicit FrameConnectionObserver(FrameDriver::Tools::Clock& sleepClock);

    void run() override;

    /// Not owned; must outlive the thread.
    void setDriver(QuillaneQFD* owner) { driver = owner; }

    /// Ready as soon as this object is gone, whoever deleted it. To be called once.
    std::future<void> getGone() { return gone.get_future(); }

    /// While paused the observer neither reads the state nor acts on it.
    void pause() { paused = true; }
    void resume() { paused = false; }

  private:
    void look(bool& firstPass);
    void runConnectedSequence();

    QuillaneQFD* driver = nullptr;
    std::atomic<bool> paused{false};
    std::promise<void> gone;  // never kept: that it is broken is the news
    FrameDriver::Tools::Clock& clock;
};
