// One thread does all input and output, with non-blocking sockets and poll. Operations of other
// threads are handed to it and waited for, so that nothing but the frame and the record needs a
// lock, and what a panel is told has one order.
#include "sims/frame/FrameServer.h"

#include "sims/frame/ClientSession.h"
#include "sims/frame/FaultPlan.h"
#include "sims/frame/Sockets.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <poll.h>
#include <thread>
#include <utility>

namespace FrameSim {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

void earlier(std::optional<TimePoint>& due, TimePoint other) {
    due = due ? std::min(*due, other) : other;
}

timespec untilThen(TimePoint due) {
    auto const left = std::max(nanoseconds(0), nanoseconds(due - steady_clock::now())).count();
    return {static_cast<time_t>(left / 1000000000), static_cast<long>(left % 1000000000)};
}

}  // namespace

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
                   options.queueLimit,
                   frame.name()} {
        frame.setChangeHook([this] { waker.wake(); });
    }

    void start();
    void stop();
    /// Runs on the loop's thread, or here while there is none, and waits for it.
    void call(std::function<void()> operation);

    void refuse(bool on);
    void disconnect();
    bool sendList(ListKey key);

    FrameServerOptions options;
    Frame frame;
    TrafficRecord record;
    FaultPlan faults;
    std::vector<std::unique_ptr<ClientSession>> clients;
    std::atomic<std::uint16_t> boundPort{0};

  private:
    void run();
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
    std::uint32_t clientsSoFar = 0;
    std::vector<pollfd> polled;

    std::mutex callMutex;  // guards calls and running, and all else while there is no thread
    std::vector<std::packaged_task<void()>> calls;
    bool running = false;
    bool stopping = false;  // the loop thread's own
    std::thread thread;
};

void FrameServer::Loop::start() {
    if (thread.joinable()) {
        return;
    }
    std::lock_guard const lock(callMutex);
    port.emplace(options.address, options.port);
    port->listen(!faults.refusing);
    boundPort = port->port();
    record.add(Line{.what = "listening"}
                   .add("address", Word{options.address})
                   .add("port", port->port())
                   .add("model", services.name));
    stopping = false;
    running = true;
    thread = std::thread([this] { run(); });
}

void FrameServer::Loop::stop() {
    if (!thread.joinable()) {
        return;
    }
    call([this] { stopping = true; });
    thread.join();
    record.add(Line{.what = "stopped"});
}

void FrameServer::Loop::call(std::function<void()> operation) {
    std::packaged_task<void()> task(std::move(operation));
    auto done = task.get_future();
    {
        std::lock_guard const lock(callMutex);
        if (running) {
            calls.push_back(std::move(task));
            waker.wake();
        } else {
            task();
        }
    }
    done.get();
}

void FrameServer::Loop::run() {
    while (!stopping) {
        waitForWork();
        runCalls();
        passFields();
        publish(frame.takeChanges());
        for (auto const& client : clients) {
            client->writeSome(steady_clock::now());
        }
        closeIdle();
    }
    for (auto const& client : clients) {
        client->sayBye();
        client->close("the frame stops");
    }
    clients.clear();
    port.reset();
    // What came in the meantime must not be left waiting.
    std::lock_guard const lock(callMutex);
    running = false;
    for (auto& task : std::exchange(calls, {})) {
        task();
    }
}

void FrameServer::Loop::runCalls() {
    std::vector<std::packaged_task<void()>> ready;
    {
        std::lock_guard const lock(callMutex);
        ready.swap(calls);
    }
    for (auto& task : ready) {
        task();
    }
}

void FrameServer::Loop::waitForWork() {
    polled.clear();
    polled.push_back({waker.handle(), POLLIN, 0});
    // A negative handle is passed over: a frozen frame must not even notice a hang-up.
    polled.push_back({faults.mayAccept() ? port->handle() : -1, POLLIN, 0});
    for (auto const& client : clients) {
        auto const events = static_cast<short>(POLLIN | (client->wantsToWrite() ? POLLOUT : 0));
        polled.push_back({faults.mayRead() ? client->handle() : -1, events, 0});
    }
    auto const due = nextDue();
    timespec const left = due ? untilThen(*due) : timespec{};
    if (::ppoll(polled.data(), polled.size(), due ? &left : nullptr, nullptr) <= 0) {
        return;
    }
    if (polled[0].revents != 0) {
        waker.drain();
    }
    for (std::size_t i = 2; i < polled.size(); ++i) {
        auto& client = *clients[i - 2];
        if ((polled[i].revents & (POLLIN | POLLHUP | POLLERR)) != 0 && client.isOpen()) {
            client.readSome();
        }
    }
    if (polled[1].revents != 0) {
        acceptAll();
    }
}

std::optional<TimePoint> FrameServer::Loop::nextDue() const {
    std::optional<TimePoint> due;
    if (faults.frozen) {
        return due;
    }
    if (nextField) {
        earlier(due, *nextField);
    }
    for (auto const& client : clients) {
        if (auto const held = client->nextDue()) {
            earlier(due, *held);
        }
        if (!client->isWelcome()) {
            earlier(due, client->since() + options.helloLimit);
        }
    }
    return due;
}

void FrameServer::Loop::acceptAll() {
    while (auto accepted = port->accept()) {
        auto const now = steady_clock::now();
        clients.push_back(
            std::make_unique<ClientSession>(services, ++clientsSoFar, std::move(*accepted), now));
        if (clients.size() > options.clientLimit) {
            clients.back()->close("too many panels");
            clients.pop_back();
        }
    }
}

/// Lets the fields pass that are due by the machine's clock. After a long pause the fields that
/// were missed are left out, instead of all coming at once.
void FrameServer::Loop::passFields() {
    if (!options.realFields || faults.frozen || !frame.busy()) {
        nextField.reset();
        return;
    }
    auto const now = steady_clock::now();
    auto const period = std::chrono::duration_cast<nanoseconds>(
        std::chrono::duration<double>(1.0 / frame.fieldRate()));
    if (!nextField || now - *nextField > 10 * period) {
        nextField = now + period;
    }
    for (; *nextField <= now; *nextField += period) {
        frame.advanceFields();
    }
}

void FrameServer::Loop::publish(std::vector<Change> const& changes) {
    for (auto const& change : changes) {
        for (auto const& client : clients) {
            client->tell(change);
        }
    }
}

/// Takes out the sessions that have ended, and those that never began.
void FrameServer::Loop::closeIdle() {
    auto const now = steady_clock::now();
    for (auto const& client : clients) {
        if (!client->isWelcome() && !faults.frozen && now >= client->since() + options.helloLimit) {
            client->close("no hello");
        }
    }
    std::erase_if(clients, [](auto const& client) { return !client->isOpen(); });
}

void FrameServer::Loop::refuse(bool on) {
    faults.refusing = on;
    if (port) {
        port->listen(!on);
    }
}

void FrameServer::Loop::disconnect() {
    for (auto const& client : clients) {
        client->close("cut off");
    }
    std::erase_if(clients, [](auto const& client) { return !client->isOpen(); });
}

bool FrameServer::Loop::sendList(ListKey key) {
    std::optional<std::vector<ListItem>> items;
    publish(frame.takeChanges([&](FrameModel const& model) {
        if (auto const* list = model.find(key)) {
            items = list->items;
        }
    }));
    if (items) {
        publish({ListChange{key, std::move(*items)}});
    }
    return items.has_value();
}

FrameServer::FrameServer(FrameServerOptions options)
    : loop(std::make_unique<Loop>(std::move(options))) {}

FrameServer::~FrameServer() { stop(); }

void FrameServer::start() { loop->start(); }

void FrameServer::stop() { loop->stop(); }

std::string FrameServer::address() const { return loop->options.address; }

std::uint16_t FrameServer::port() const { return loop->boundPort; }

Frame& FrameServer::frame() { return loop->frame; }

TrafficRecord& FrameServer::record() { return loop->record; }

void FrameServer::refuse(bool on) {
    loop->call([this, on] { loop->refuse(on); });
}

void FrameServer::delay(std::chrono::milliseconds time) {
    loop->call([this, time] { loop->faults.delay = time; });
}

void FrameServer::freeze(bool on) {
    loop->call([this, on] { loop->faults.frozen = on; });
}

void FrameServer::disconnect() {
    loop->call([this] { loop->disconnect(); });
}

bool FrameServer::sendList(ListKey key) {
    bool known = false;
    loop->call([this, key, &known] { known = loop->sendList(key); });
    return known;
}

std::vector<Line> FrameServer::clients() {
    std::vector<Line> all;
    loop->call([this, &all] {
        for (auto const& client : loop->clients) {
            all.push_back(client->summary());
        }
    });
    return all;
}

}  // namespace FrameSim
