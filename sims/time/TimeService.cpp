#include "sims/time/TimeService.h"

#include "sims/time/DatagramSocket.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace TimeSim {
namespace {

using FrameSim::Line;
using FrameSim::Word;

/// Requests taken in one go, before replies get their turn.
constexpr int burst = 64;
constexpr std::chrono::nanoseconds idle = std::chrono::seconds(60);

void addTime(Line& line, FieldTime time) {
    // A panel may say what it likes; most of it fits the type that numbers of a line have.
    auto const largest = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    if (time.fieldTime <= largest) {
        line.number("fieldTime", static_cast<std::int64_t>(time.fieldTime));
    } else {
        line.add("fieldTime", Word{std::to_string(time.fieldTime)});
    }
    line.number("fieldOffset", time.fieldOffset);
}

}  // namespace

Moment steadyNow() { return std::chrono::steady_clock::now().time_since_epoch(); }

class TimeService::Loop {
  public:
    explicit Loop(TimeServiceOptions given)
        : telling(given.telling),
          options(std::move(given)),
          told(options.printer, options.recordLimit) {}
    ~Loop() { stop(); }

    void open();
    void start();
    void stop();
    void operate(std::function<void(TimeKeeper&, Moment)> const& change) {
        std::lock_guard const guard(keeperLock);
        change(options.keeper, steadyNow());
    }

    std::atomic<std::uint16_t> port = 0;
    std::atomic<Telling> telling;
    FrameSim::TrafficRecord& record() { return told; }

  private:
    struct Waiting {
        OutgoingReply reply;
        Peer to;
    };
    struct Sum {
        std::int64_t datagrams = 0, replies = 0, faulty = 0, silences = 0;
    };

    void run();
    void receiveAll();
    void take(DatagramSocket::Datagram const& datagram);
    void silence(std::string const& to, std::string const& reason);
    void sendDue();
    void tellReply(Waiting const& sent);
    void greet(std::string const& from);
    void tellSum(bool last);
    Moment nextWake() const;
    void tell(Telling from, Line line);

    TimeServiceOptions options;
    FrameSim::TrafficRecord told;
    std::mutex keeperLock;  // guards options.keeper
    std::thread thread;
    std::atomic<bool> stopping = false;
    FrameSim::Waker waker;
    std::optional<DatagramSocket> socket;

    // The thread's own. Replies that are due at the same moment go in the order of their coming.
    std::multimap<Moment, Waiting> queue;
    std::deque<std::string> known;
    Sum sum;
    Moment sumDue{};
};

void TimeService::Loop::open() {
    if (!socket) {
        socket.emplace(
            DatagramSocket::listening(options.address, port != 0 ? port.load() : options.port));
        port = socket->port();
    }
}

void TimeService::Loop::start() {
    if (thread.joinable()) {
        return;
    }
    open();
    Line line{.what = "time-listening"};
    line.add("address", Word{options.address}).number("port", port);
    operate([&](TimeKeeper& keeper, Moment) {
        line.number("period", keeper.clock().period().count());
    });
    told.add(std::move(line));
    stopping = false;
    thread = std::thread([this] { run(); });
}

void TimeService::Loop::stop() {
    if (!thread.joinable()) {
        return;
    }
    stopping = true;
    waker.wake();
    thread.join();
    socket.reset();
    queue.clear();
    told.add(Line{.what = "time-stopped"});
}

void TimeService::Loop::run() {
    while (!stopping) {
        awaitReadable(socket->handle(), waker.handle(), nextWake() - steadyNow());
        waker.drain();
        receiveAll();
        sendDue();
        tellSum(false);
    }
    tellSum(true);
}

Moment TimeService::Loop::nextWake() const {
    auto wake = steadyNow() + idle;
    if (!queue.empty()) {
        wake = std::min(wake, queue.begin()->first);
    }
    return sum.datagrams > 0 ? std::min(wake, sumDue) : wake;
}

void TimeService::Loop::receiveAll() {
    for (int count = 0; count < burst; ++count) {
        auto const datagram = socket->receive();
        if (!datagram) {
            return;
        }
        take(*datagram);
    }
}

void TimeService::Loop::take(DatagramSocket::Datagram const& datagram) {
    auto const now = steadyNow();
    auto const from = datagram.from.text();
    TimeAnswer answer;
    {
        std::lock_guard const guard(keeperLock);
        answer = options.keeper.answer(datagram.bytes, now, from);
    }
    if (sum.datagrams++ == 0) {
        sumDue = now + options.sumEvery;
    }
    if (auto const request = readRequest(datagram.bytes)) {
        greet(from);
        Line line{.what = "time-request"};
        addTime(line.add("from", Word{from}), *request);
        tell(Telling::all, std::move(line));
    }
    if (answer.replies.empty()) {
        silence(from, answer.silence);
    }
    for (auto& reply : answer.replies) {
        if (queue.size() < options.queueLimit) {
            auto const due = reply.due;
            queue.emplace(due, Waiting{std::move(reply), datagram.from});
        } else {
            silence(from, "too many replies wait");
        }
    }
}

void TimeService::Loop::silence(std::string const& to, std::string const& reason) {
    ++sum.silences;
    tell(Telling::all,
         Line{.what = "time-silence"}.add("to", Word{to}).add("reason", std::string(reason)));
}

/// A panel is greeted once, and again if many others have come since.
void TimeService::Loop::greet(std::string const& from) {
    if (std::find(known.begin(), known.end(), from) != known.end()) {
        return;
    }
    known.push_back(from);
    if (known.size() > TimeKeeper::panelLimit) {
        known.pop_front();
    }
    tell(Telling::few, Line{.what = "time-panel"}.add("from", Word{from}));
}

void TimeService::Loop::sendDue() {
    while (!queue.empty() && queue.begin()->first <= steadyNow()) {
        auto const waiting = std::move(queue.extract(queue.begin()).mapped());
        if (socket->send(waiting.reply.bytes, waiting.to)) {
            tellReply(waiting);
        } else {
            silence(waiting.to.text(), "the system doesn't send it");
        }
    }
}

void TimeService::Loop::tellReply(Waiting const& sent) {
    ++sum.replies;
    sum.faulty += sent.reply.faults.empty() ? 0 : 1;
    if (telling != Telling::all) {
        return;
    }
    Line line{.what = "time-reply"};
    line.add("to", Word{sent.to.text()});
    if (auto const reply = readReply(sent.reply.bytes)) {
        addTime(line, reply->frame);
    } else {
        line.number("bytes", static_cast<std::int64_t>(sent.reply.bytes.size()));
    }
    if (!sent.reply.faults.empty()) {
        line.add("faults", Word{sent.reply.faults});
    }
    told.add(std::move(line));
}

void TimeService::Loop::tellSum(bool last) {
    if (sum.datagrams == 0 || (!last && steadyNow() < sumDue)) {
        return;
    }
    Line line{.what = "time-traffic"};
    line.number("datagrams", sum.datagrams)
        .number("replies", sum.replies)
        .number("faulty", sum.faulty)
        .number("silences", sum.silences);
    tell(Telling::few, std::move(line));
    sum = {};
}

void TimeService::Loop::tell(Telling from, Line line) {
    if (telling >= from) {
        told.add(std::move(line));
    }
}

TimeService::TimeService(TimeServiceOptions options)
    : loop(std::make_unique<Loop>(std::move(options))) {}
TimeService::~TimeService() = default;
void TimeService::open() { loop->open(); }
void TimeService::start() { loop->start(); }
void TimeService::stop() { loop->stop(); }
std::uint16_t TimeService::port() const { return loop->port; }
FrameSim::TrafficRecord& TimeService::record() { return loop->record(); }
void TimeService::tell(Telling howMuch) { loop->telling = howMuch; }
void TimeService::operate(std::function<void(TimeKeeper&, Moment now)> const& change) {
    loop->operate(change);
}

}  // namespace TimeSim
