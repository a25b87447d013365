// One thread does all input and output, with non-blocking sockets and poll. Operations of other
// threads are handed to it and waited for, so that nothing but the frame and the record needs a
// lock, and what a panel is told has one order.
#include "sims/frame/FrameLoop.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace FrameSim {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr std::size_t endedKept = 64;
constexpr std::size_t mostCutsAhead = 1000;

void earlier(std::optional<TimePoint>& due, std::optional<TimePoint> other) {
    due = due && other ? std::min(due, other) : due ? due : other;
}

timespec untilThen(TimePoint due) {
    auto const left = std::max(nanoseconds(0), nanoseconds(due - steady_clock::now())).count();
    return {static_cast<time_t>(left / 1000000000), static_cast<long>(left % 1000000000)};
}

}  // namespace

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
    backAt.reset();
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

/// Changes that nobody will ever take must not pile up.
void FrameServer::Loop::changed() {
    std::unique_lock const lock(callMutex, std::try_to_lock);
    if (lock && !running) {
        frame.takeChanges();
    }
    waker.wake();
}

void FrameServer::Loop::call(std::function<void()> operation) {
    if (loopThread.load() == std::this_thread::get_id()) {
        operation();  // a scenario's
        return;
    }
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
    loopThread = std::this_thread::get_id();
    while (!stopping) {
        waitForWork();
        runCalls();
        passOrders();
        passFields();
        publish(frame.takeChanges());
        for (auto const& client : clients) {
            client->writeSome(steady_clock::now());
        }
        closeIdle();
    }
    scenario.reset();
    for (auto const& client : clients) {
        client->sayBye();
        client->close("the frame stops");
    }
    closeIdle();
    port.reset();
    loopThread = std::thread::id();
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
        auto const events = static_cast<short>((client->wantsToRead() ? POLLIN : POLLRDHUP) |
                                               (client->wantsToWrite() ? POLLOUT : 0));
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
        if ((polled[i].revents & (POLLIN | POLLRDHUP | POLLHUP | POLLERR)) != 0 &&
            client.isOpen()) {
            client.readSome();
        }
    }
    if (polled[1].revents != 0) {
        acceptAll();
    }
}

std::optional<TimePoint> FrameServer::Loop::nextDue() const {
    std::optional<TimePoint> due = backAt;
    earlier(due, scenario ? scenario->nextDue() : std::nullopt);
    if (faults.frozen) {
        return due;
    }
    earlier(due, nextField);
    earlier(due, hands.nextDue());
    for (auto const& client : clients) {
        earlier(due, client->nextDue());
        if (client->owesHello()) {
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
            continue;
        }
        auto const [first, last] = cutsAhead.equal_range(clientsSoFar);
        for (auto each = first; each != last; ++each) {
            clients.back()->cutAt(each->second);
        }
        cutsAhead.erase(first, last);
        notice({Happening::Kind::connect, clientsSoFar});
        if (!faults.mayAccept()) {
            return;
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
        if (client->owesHello() && !faults.frozen && now >= client->since() + options.helloLimit) {
            client->close("no hello");
        }
    }
    std::vector<std::uint32_t> gone;
    for (auto const& client : clients) {
        if (!client->isOpen()) {
            ended.push_back(client->crossed());
            gone.push_back(client->id());
        }
    }
    while (ended.size() > endedKept) {
        ended.pop_front();
    }
    std::erase_if(clients, [](auto const& client) { return !client->isOpen(); });
    for (auto const client : gone) {
        notice({Happening::Kind::close, client});
    }
}

void FrameServer::Loop::notice(Happening const& what) {
    if (scenario) {
        scenario->notice(what, steady_clock::now());
    }
}

/// What goes on by itself because somebody has ordered it.
void FrameServer::Loop::passOrders() {
    auto const now = steady_clock::now();
    if (backAt && now >= *backAt) {
        comeBack();
    }
    if (scenario) {
        scenario->pass(now);
    }
    if (!faults.frozen) {
        hands.work(frame, now);
    }
}

void FrameServer::Loop::goOn() {
    for (auto const& client : clients) {
        client->goOn(steady_clock::now());
    }
}

void FrameServer::Loop::listenAsWanted() {
    if (port) {
        port->listen(!faults.refusing && !backAt);
    }
}

void FrameServer::Loop::refuse(bool on) {
    faults.refusing = on;
    listenAsWanted();
}

void FrameServer::Loop::mute(bool on) {
    faults.mute = on;
    if (!on) {
        goOn();
    }
}

void FrameServer::Loop::freeze(bool on) {
    faults.frozen = on;
    if (!on) {
        goOn();
    }
}

// The sessions stay where they are until the loop comes round: one of them may be the caller.
void FrameServer::Loop::disconnect() {
    for (auto const& client : clients) {
        client->close("cut off");
    }
}

ClientSession* FrameServer::Loop::find(std::uint32_t client) {
    auto const found = std::find_if(clients.begin(), clients.end(), [client](auto const& each) {
        return each->id() == client && each->isOpen();
    });
    return found == clients.end() ? nullptr : found->get();
}

bool FrameServer::Loop::cut(Cut const& place) {
    auto const client = place.client == 0 ? clientsSoFar + 1 : place.client;
    if (auto* const session = find(client)) {
        bool const good = session->cutAt(place);
        session->writeSome(steady_clock::now());
        return good;
    }
    if (client <= clientsSoFar || cutsAhead.size() >= mostCutsAhead) {
        return false;
    }
    cutsAhead.emplace(client, place);
    return true;
}

std::size_t FrameServer::Loop::sendGarbage(Garbage kind, std::uint32_t client) {
    std::size_t count = 0;
    for (auto const& each : clients) {
        if (each->isOpen() && (client == 0 || each->id() == client)) {
            each->sendGarbage(faults.garbage(kind));
            ++count;
        }
    }
    return count;
}

void FrameServer::Loop::restart(Restart wanted) {
    if (!frame.restart(std::move(wanted.model), wanted.values)) {
        throw FaultError("a value fits no parameter");
    }
    services.name = frame.name();
    hands.lookAgain();
    disconnect();
    record.add(Line{.what = "restarted"}.add("model", services.name));
    if (!port) {
        return;
    }
    port->listen(false);
    backAt = steady_clock::now() + wanted.away;
    if (wanted.away.count() == 0) {
        comeBack();
    }
}

void FrameServer::Loop::comeBack() {
    backAt.reset();
    listenAsWanted();
    record.add(Line{.what = "returned"});
}

void FrameServer::Loop::heal() {
    faults.delay = {};
    faults.welcomeVersion.reset();
    faults.order({.what = Damage::What::values, .count = 0, .byte = {}});
    faults.order({.what = Damage::What::lists, .count = 0, .byte = {}});
    cutsAhead.clear();
    hands = OtherHands();
    refuse(false);
    mute(false);
    freeze(false);
}

std::vector<ConnectionCount> FrameServer::Loop::crossed() const {
    std::vector<ConnectionCount> all(ended.begin(), ended.end());
    for (auto const& client : clients) {
        all.push_back(client->crossed());
    }
    std::sort(all.begin(), all.end(),
              [](auto const& one, auto const& other) { return one.client < other.client; });
    return all;
}

std::optional<Holding> FrameServer::Loop::holding(std::uint32_t client) {
    auto const* const session = find(client);
    std::optional<Holding> all;
    publish(frame.takeChanges([&](FrameModel const& model) {
        if (session) {
            all = session->holding(model);
        }
    }));
    return all;
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

}  // namespace FrameSim
