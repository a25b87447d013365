// Requests are written on their caller's thread and acknowledged on the reading thread, which
// never calls out: whatever a callback does, the acknowledgement it waits for can come.
#include "platform/cplclient/Connection.h"

#include "platform/cplclient/wire/Messages.h"
#include "platform/logging/LogManager.h"

#include <algorithm>
#include <array>
#include <utility>

using Brindlemoor::Utilities::Logging::LogManager;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds writeLimit{2000};  // a peer that takes nothing for so long is gone

auto log() { return LogManager::getInstance()->getCategory("CPLClient"); }

}  // namespace

Connection::Connection(ClientTimings const& clientTimings,
                       std::shared_ptr<CallbackThread> newsTarget,
                       std::atomic<ClientConnectionState>& clientState)
    : timings(clientTimings),
      news(std::move(newsTarget)),
      state(clientState),
      splitter(cplwire::maximumHelloLength) {}

Connection::~Connection() {
    closing = true;
    socket.wake();
    if (reader.joinable())
        reader.join();
}

bool Connection::open(ConnectionEnds const& ends, std::string const& clientName) {
    auto const deadline = Clock::now() + timings.connectLimit;
    if (!socket.connect(ends.host, ends.port, ends.localHost, ends.localPort, deadline) ||
        !shakeHands(clientName, deadline)) {
        log().getInfoStream() << "no connection to " << ends.host << ":" << ends.port << ": "
                              << socket.reason();
        return false;
    }
    splitter.setLimit(cplwire::maximumLength);
    lastHeard = lastPing = Clock::now();
    state = eConnected;
    reader = std::thread([this] { readLoop(); });
    return true;
}

bool Connection::shakeHands(std::string const& clientName, Socket::Deadline deadline) {
    std::string hello;
    encode(hello, cplwire::Hello{cplwire::magic, cplwire::version, clientName});
    if (!socket.write(hello, deadline))
        return socket.refuse("the greeting can't be sent");
    auto const answer = readOne(deadline);
    if (!answer)
        return socket.refuse("no answer to the greeting");
    if (answer->type == cplwire::Type::Refusal) {
        auto const refusal = cplwire::decode<cplwire::Refusal>(answer->body);
        return socket.refuse("refused: " + std::string(refusal ? refusal->reason : ""));
    }
    auto const welcome = answer->type == cplwire::Type::Welcome
                             ? cplwire::decode<cplwire::Welcome>(answer->body)
                             : std::nullopt;
    if (!welcome || welcome->protocolVersion != cplwire::version)
        return socket.refuse("that is no frame of this protocol's version");
    return true;
}

std::optional<cplwire::RawMessage> Connection::readOne(Socket::Deadline deadline) {
    for (;;) {
        if (auto message = splitter.next())
            return message;
        std::array<char, 1024> buffer;
        if (splitter.broken() || socket.waitReadable(deadline) != Socket::Wait::Ready)
            return std::nullopt;
        auto const count = socket.read(buffer.data(), buffer.size());
        if (count <= 0)
            return std::nullopt;
        splitter.feed({buffer.data(), static_cast<std::size_t>(count)});
    }
}

template <typename Message>
Status Connection::request(Message const& message, milliseconds timeOut) {
    thread_local std::string bytes;  // keeps its room from send to send
    bytes.clear();
    auto const sequence = nextSequence.fetch_add(1, std::memory_order_relaxed);
    if (!encode(bytes, message, sequence))
        return eStatusTooLarge;
    return exchange(bytes, sequence, timeOut);
}

Status Connection::exchange(std::string const& bytes, std::uint32_t sequence,
                            milliseconds timeOut) {
    if (timeOut.count() <= 0)
        return send(bytes, writeLimit) ? eStatusOk : eStatusNotConnected;
    Waiting own;
    {
        std::lock_guard const guard(waitingLock);
        if (over)
            return eStatusNotConnected;
        waiting.emplace(sequence, &own);
    }
    auto const deadline = Clock::now() + timeOut;
    auto const sent = send(bytes, writeLimit);
    std::unique_lock guard(waitingLock);
    if (sent)
        own.changed.wait_until(guard, deadline, [&] { return own.done; });
    waiting.erase(sequence);
    return sent || own.done ? own.status : eStatusNotConnected;
}

// Half a message on the wire can't be taken back: the connection is lost then.
bool Connection::send(std::string_view bytes, milliseconds limit) {
    std::lock_guard const guard(writeLock);
    if (socket.write(bytes, Clock::now() + limit))
        return true;
    socket.wake();
    return false;
}

void Connection::close() {
    std::string bye;
    encode(bye, cplwire::Bye{});
    closing = true;
    if (state == eConnected && send(bye, timings.byeLimit)) {
        // The frame closes first, so that its side and not ours remembers the pair of addresses.
        std::unique_lock guard(waitingLock);
        ended.wait_for(guard, timings.byeLimit, [this] { return over; });
    }
    socket.wake();
    if (reader.joinable())
        reader.join();
}

void Connection::readLoop() {
    for (;;) {
        switch (socket.waitReadable(nextLook())) {
        case Socket::Wait::Ready:
            if (!readSome())
                return;
            break;
        case Socket::Wait::TimeOut:
            break;
        case Socket::Wait::Woken:
            lose(closing ? "" : "a message could not be sent");
            return;
        case Socket::Wait::Failed:
            lose("the socket failed");
            return;
        }
        if (!heartbeat())
            return;
    }
}

bool Connection::readSome() {
    std::array<char, 65536> buffer;
    auto const count = socket.read(buffer.data(), buffer.size());
    if (count <= 0)
        return lose(count == 0 ? "the frame closed it" : "the socket failed");
    lastHeard = Clock::now();
    splitter.feed({buffer.data(), static_cast<std::size_t>(count)});
    while (auto const message = splitter.next())
        if (!handle(*message))
            return false;
    return !splitter.broken() || lose("a message of impossible length");
}

bool Connection::handle(cplwire::RawMessage const& message) {
    using cplwire::Type;
    switch (message.type) {
    case Type::Acknowledge:
        if (auto const ack = cplwire::decode<cplwire::Acknowledge>(message.body)) {
            acknowledge(message.sequence, static_cast<Status>(ack->status));
            return true;
        }
        break;
    case Type::ParameterUpdate:
    case Type::ParameterReply:
        if (auto const update = cplwire::decode<cplwire::ParameterUpdate>(message.body))
            return news->push(*update, message.type == Type::ParameterReply) ||
                   lose("too much news is waiting");
        break;
    case Type::ListUpdate:
        if (auto const update = cplwire::decode<cplwire::ListUpdate>(message.body))
            return news->push(*update) || lose("too much news is waiting");
        break;
    case Type::Ping: {
        std::string pong;
        encode(pong, cplwire::Pong{}, message.sequence);
        send(pong, writeLimit);
        return true;
    }
    case Type::Pong:
        return true;
    case Type::Bye:
        return lose("the frame said goodbye");
    default:
        break;
    }
    return lose("a message that makes no sense");
}

Connection::Clock::time_point Connection::nextLook() const {
    return std::max(lastHeard, lastPing) + timings.pingAfter;
}

bool Connection::heartbeat() {
    auto const now = Clock::now();
    if (now - lastHeard >= timings.silenceLimit)
        return lose("the frame is silent");
    if (now - lastHeard >= timings.pingAfter && now - lastPing >= timings.pingAfter) {
        std::string ping;
        encode(ping, cplwire::Ping{});
        lastPing = now;
        if (!send(ping, timings.pingAfter))
            return lose("a ping could not be sent");
    }
    return true;
}

void Connection::acknowledge(std::uint32_t sequence, Status status) {
    std::lock_guard const guard(waitingLock);
    auto const found = waiting.find(sequence);
    if (found == waiting.end())
        return;  // it came too late
    found->second->status = status;
    found->second->done = true;
    found->second->changed.notify_one();
}

// Always false, for the reading loop to end by. An end of our own making says nothing.
bool Connection::lose(std::string const& why) {
    if (!closing) {
        log().getWarnStream() << "connection lost: " << why;
        auto expected = eConnected;
        state.compare_exchange_strong(expected, eConnectionLost);
    }
    failAllWaiting();
    return false;
}

void Connection::failAllWaiting() {
    std::lock_guard const guard(waitingLock);
    over = true;
    for (auto const& [sequence, each] : waiting) {
        each->status = eStatusNotConnected;
        each->done = true;
        each->changed.notify_one();
    }
    ended.notify_all();
}

template Status Connection::request(cplwire::Set const&, milliseconds);
template Status Connection::request(cplwire::Event const&, milliseconds);
template Status Connection::request(cplwire::SetList const&, milliseconds);
template Status Connection::request(cplwire::SubscribeParameter const&, milliseconds);
template Status Connection::request(cplwire::SubscribeList const&, milliseconds);
template Status Connection::request(cplwire::SubscribeBatch const&, milliseconds);
template Status Connection::request(cplwire::Cancel const&, milliseconds);
