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
    if (socket.connect(ends.host, ends.port, ends.localHost, ends.localPort, deadline) &&
        shakeHands(clientName, deadline))
        return true;
    log().getInfoStream() << "no connection to " << ends.host << ":" << ends.port << ": "
                          << socket.reason();
    return false;
}

bool Connection::shakeHands(std::string const& clientName, Socket::Deadline deadline) {
    std::string hello;
    auto const name = std::string_view(clientName).substr(0, cplwire::maximumNameLength);
    encode(hello, cplwire::Hello{cplwire::magic, cplwire::version, name});
    if (!socket.write(hello, timings.connectLimit))
        return socket.refuse("the greeting can't be sent");
    auto const answer = readOne(deadline);
    if (!answer)
        return false;
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
        auto const failed = [this](char const* why) {
            socket.refuse(why);
            return std::nullopt;
        };
        if (splitter.broken())
            return failed("the answer to the greeting is of impossible length");
        if (!socket.waitReadable(deadline))
            return failed("no answer to the greeting");
        std::array<char, 1024> buffer;
        auto const count = socket.read(buffer.data(), buffer.size());
        if (count <= 0)
            return failed("closed instead of an answer to the greeting");
        splitter.feed({buffer.data(), static_cast<std::size_t>(count)});
    }
}

void Connection::start() {
    splitter.setLimit(cplwire::maximumLength);
    socket.setReadLimit(timings.pingAfter);
    lastHeard = Clock::now();
    state = eConnected;
    reader = std::thread([this] { readLoop(); });
}

template <typename Message>
Status Connection::request(Message const& message, milliseconds timeOut) {
    bool const waits = timeOut.count() > 0;
    Waiting own{nextSequence.fetch_add(1, std::memory_order_relaxed),
                waits ? eStatusTimeOut : eStatusOk};
    auto const deadline = Clock::now() + timeOut;
    if (!enlist(own))
        return eStatusNotConnected;
    return outcome(own, send(message, own.sequence, timings.writeLimit), deadline);
}

template <typename Message>
Status Connection::send(Message const& message, std::uint32_t sequence, milliseconds limit) {
    std::lock_guard const guard(writeLock);
    outgoing.clear();
    if (!encode(outgoing, message, sequence))
        return eStatusTooLarge;
    return socket.write(outgoing, limit) ? eStatusOk : eStatusNotConnected;
}

bool Connection::enlist(Waiting& request) {
    std::lock_guard const guard(waitingLock);
    if (over)
        return false;
    request.next = std::exchange(waiting, &request);
    return true;
}

void Connection::strike(Waiting& request) {
    auto** link = &waiting;
    while (*link != &request)
        link = &(*link)->next;
    *link = request.next;
}

Status Connection::outcome(Waiting& request, Status sent, Clock::time_point deadline) {
    std::unique_lock guard(waitingLock);
    if (sent == eStatusOk)
        request.changed.wait_until(guard, deadline, [&] { return request.done; });
    strike(request);
    return sent == eStatusOk ? request.status : sent;
}

void Connection::acknowledge(std::uint32_t sequence, Status status) {
    std::lock_guard const guard(waitingLock);
    auto* request = waiting;
    while (request && request->sequence != sequence)
        request = request->next;
    if (!request)
        return;  // it came too late
    request->status = status;
    request->done = true;
    request->changed.notify_one();
}

void Connection::failAllWaiting() {
    std::lock_guard const guard(waitingLock);
    over = true;
    for (auto* request = waiting; request; request = request->next) {
        request->status = eStatusNotConnected;
        request->done = true;
        request->changed.notify_one();
    }
    ended.notify_all();
}

void Connection::close() {
    closing = true;
    if (send(cplwire::Bye{}, 0, timings.byeLimit) == eStatusOk) {
        std::unique_lock guard(waitingLock);
        ended.wait_for(guard, timings.byeLimit, [this] { return over; });
    }
    socket.wake();
    if (reader.joinable())
        reader.join();
}

// The end of the connection is seen here and nowhere else. Writers that wait for room are woken.
void Connection::readLoop() {
    auto alive = handleAll();  // what came in one piece with the welcome
    while (alive)
        alive = readSome();
    socket.wake();
    socket.drop();
}

bool Connection::readSome() {
    std::array<char, 65536> buffer;
    auto const count = socket.read(buffer.data(), buffer.size());
    if (count == Socket::readTimeOut)
        return heartbeat();
    if (socket.woken())
        return lose("a message could not be sent");
    if (count <= 0)
        return lose(count == 0 ? "the frame closed it" : "the socket failed");
    lastHeard = Clock::now();
    splitter.feed({buffer.data(), static_cast<std::size_t>(count)});
    return handleAll();
}

bool Connection::handleAll() {
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
    case Type::Ping:
        if (!message.body.empty())
            break;
        // A failure wakes this thread, which then sees to it.
        send(cplwire::Pong{}, message.sequence, timings.writeLimit);
        return true;
    case Type::Pong:
        if (!message.body.empty())
            break;
        return true;
    case Type::Bye:
        return lose("the frame said goodbye");
    default:
        break;
    }
    return lose("a message that makes no sense");
}

// Nothing has come since the last read began, `pingAfter` ago.
bool Connection::heartbeat() {
    if (Clock::now() - lastHeard >= timings.silenceLimit)
        return lose("the frame is silent");
    return ping();
}

// Whoever holds the lock is writing, which asks the frame as well as a ping would; to wait for
// them would keep this thread from reading.
bool Connection::ping() {
    std::unique_lock const guard(writeLock, std::try_to_lock);
    if (!guard)
        return true;
    outgoing.clear();
    encode(outgoing, cplwire::Ping{});
    return socket.write(outgoing, timings.pingAfter) || lose("a ping could not be sent");
}

// Always false, for the reading loop to end by. An end of our own making says nothing.
bool Connection::lose(std::string const& why) {
    if (!closing) {
        auto expected = eConnected;
        state.compare_exchange_strong(expected, eConnectionLost);
        log().getWarnStream() << "connection lost: " << why;
    }
    failAllWaiting();
    return false;
}

template Status Connection::request(cplwire::Set const&, milliseconds);
template Status Connection::request(cplwire::Event const&, milliseconds);
template Status Connection::request(cplwire::SetList const&, milliseconds);
template Status Connection::request(cplwire::SubscribeParameter const&, milliseconds);
template Status Connection::request(cplwire::SubscribeList const&, milliseconds);
template Status Connection::request(cplwire::SubscribeBatch const&, milliseconds);
template Status Connection::request(cplwire::Cancel const&, milliseconds);
