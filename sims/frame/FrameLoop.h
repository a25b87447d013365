#pragma once

#include "sims/frame/ClientSession.h"
#include "sims/frame/FaultPlan.h"
#include "sims/frame/FrameServer.h"
#include "sims/frame/OtherHands.h"
#include "sims/frame/Scenario.h"
#include "sims/frame/Sockets.h"

#include <atomic>
#include <deque>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <poll.h>
#include <thread>
#include <vector>

namespace FrameSim {

/// The server's thread and all that belongs to it.
///
/// Thread: `start`, `stop` and `call` as FrameServer says; all else inside `call`.
class FrameServer::Loop {
  public:
    explicit Loop(FrameServerOptions given)
        : options(std::move(given)),
          frame(std::move(options.model)),
          record(std::move(options.printer), options.recordLimit),
          services{frame,
                   record,
                   faults,
                   [this](std::vector<Change> const& changes) { publish(changes); },
                   [this](Happening const& what) { notice(what); },
                   options.queueLimit,
                   frame.name()} {
        frame.setChangeHook([this] { changed(); });
    }

    void start();
    void stop();
    /// Runs on the loop's thread, or here while there is none, and waits for it.
    void call(std::function<void()> operation);

    void refuse(bool on);
    void mute(bool on);
    void freeze(bool on);
    void disconnect();
    bool cut(Cut const& place);
    std::size_t sendGarbage(Garbage kind, std::uint32_t client);
    void restart(Restart wanted);
    void heal();
    bool sendList(ListKey key);
    ClientSession* find(std::uint32_t client);
    std::vector<ConnectionCount> crossed() const;
    std::optional<Holding> holding(std::uint32_t client);

    FrameServerOptions options;
    Frame frame;
    TrafficRecord record;
    FaultPlan faults;
    OtherHands hands;
    std::optional<ScenarioPlayer> scenario;
    std::vector<std::unique_ptr<ClientSession>> clients;
    std::atomic<std::uint16_t> boundPort{0};

  private:
    void run();
    void changed();
    void notice(Happening const& what);
    void listenAsWanted();
    void passOrders();
    void comeBack();
    void goOn();
    void runCalls();
    void waitForWork();
    std::optional<TimePoint> nextDue() const;
    void acceptAll();
    void passFields();
    void publish(std::vector<Change> const& changes);
    void closeIdle();

    SessionServices services;
    Waker waker;
    std::optional<ListenPort> port;
    std::optional<TimePoint> nextField;
    std::optional<TimePoint> backAt;  // from a restart
    std::uint32_t clientsSoFar = 0;
    std::multimap<std::uint32_t, Cut> cutsAhead;  // of connections that are still to come
    std::deque<ConnectionCount> ended;
    std::vector<pollfd> polled;

    std::mutex callMutex;  // guards calls and running, and all else while there is no thread
    std::vector<std::packaged_task<void()>> calls;
    bool running = false;
    bool stopping = false;  // the loop thread's own
    std::thread thread;
    std::atomic<std::thread::id> loopThread;
};

}  // namespace FrameSim
