#include "ScriptedFrame.h"

#include "Patience.h"
#include "WireText.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace cplwire;

ScriptedFrame::ScriptedFrame(Script answers)
    : script(std::move(answers)),
      listener(boundSocket()),
      waker(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

ScriptedFrame::~ScriptedFrame() { stop(); }

void ScriptedFrame::stop() {
    order = Order::stop;
    wake();
    if (thread.joinable())
        thread.join();
}

void ScriptedFrame::wake() const { eventfd_write(waker.get(), 1); }

void ScriptedFrame::listen() {
    ::listen(listener.get(), 8);
    thread = std::thread([this] { run(); });
}

void ScriptedFrame::freeze() {
    frozen = true;
    wake();
}

void ScriptedFrame::cut() {
    order = Order::closeHard;
    wake();
}

void ScriptedFrame::closeConnection() {
    order = Order::closeOrderly;
    wake();
}

void ScriptedFrame::run() {
    while (obey())
        serve();
    endConnection(false);
}

// Carries out what another thread wants. False for the end.
bool ScriptedFrame::obey() {
    switch (order.exchange(Order::none)) {
    case Order::stop:
        return false;
    case Order::closeOrderly:
        endConnection(false);
        break;
    case Order::closeHard:
        endConnection(true);
        break;
    case Order::none:
        break;
    }
    return true;
}

void ScriptedFrame::serve() {
    auto const here = connection.isOpen();
    std::array<pollfd, 2> waited{
        {{waker.get(), POLLIN, 0}, {here ? connection.get() : listener.get(), POLLIN, 0}}};
    ::poll(waited.data(), frozen ? 1 : 2, -1);
    if (waited[0].revents != 0) {
        eventfd_t count = 0;
        eventfd_read(waker.get(), &count);
    } else if (here) {
        readSome();
    } else {
        acceptOne();
    }
}

void ScriptedFrame::acceptOne() {
    Descriptor fresh(::accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
    int const on = 1;
    setsockopt(fresh.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    std::lock_guard const guard(lock);
    connection = std::move(fresh);
    splitter = MessageSplitter();
    subscribers.clear();
}

void ScriptedFrame::readSome() {
    std::array<char, 65536> buffer;
    auto const count = ::recv(connection.get(), buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        resetSeen = count < 0;
        endConnection(false);
        return;
    }
    splitter.feed({buffer.data(), static_cast<std::size_t>(count)});
    while (auto const message = splitter.next())
        answer(*message);
}

void ScriptedFrame::endConnection(bool reset) {
    std::lock_guard const guard(lock);
    if (!connection.isOpen())
        return;
    if (reset)
        closeWithReset(connection);
    Descriptor const closed(std::move(connection));
    ++ends;
    changed.notify_all();
}

// The answer is written before the message is told, so that who has waited for the message finds
// the answer on its way.
void ScriptedFrame::answer(RawMessage const& message) {
    auto const scripted = script ? script(message) : std::nullopt;
    auto const bytes = scripted ? *scripted : ownAnswer(message);
    bool const isBye = !scripted && message.type == Type::Bye;
    {
        std::lock_guard const guard(lock);
        if (connection.isOpen())
            writeAll(connection, bytes);
        if (message.type != Type::Ping)
            messages.push_back(wireText(message));
        changed.notify_all();
    }
    if (isBye)
        endConnection(false);
}

std::string ScriptedFrame::ownAnswer(RawMessage const& message) {
    auto const acknowledge = [&] { return bytesOf(Acknowledge{}, message.sequence); };
    switch (message.type) {
    case Type::Hello:
        return bytesOf(Welcome{version, "scripted"});
    case Type::Ping:
        return bytesOf(Pong{}, message.sequence);
    case Type::Pong:
    case Type::Bye:
        return {};
    case Type::Set:
        return acknowledge() + consequences(decode<Set>(message.body).value());
    case Type::SubscribeParameter: {
        auto const wanted = decode<SubscribeParameter>(message.body).value();
        subscribers[{wanted.pid, wanted.did}].insert(wanted.callback);
        return acknowledge();
    }
    case Type::SubscribeBatch: {
        auto const batch = decode<SubscribeBatch>(message.body).value();
        for (auto const& key : batch.parameters)
            subscribers[key].insert(batch.callback);
        return acknowledge();
    }
    case Type::Cancel:
        subscribers.clear();
        return acknowledge();
    default:
        return acknowledge();
    }
}

std::string ScriptedFrame::consequences(Set const& set) const {
    std::string bytes;
    auto const found = subscribers.find({set.pid, set.did});
    if (found != subscribers.end())
        for (auto const callback : found->second)
            bytes += bytesOf(ParameterUpdate{callback, static_cast<std::uint16_t>(set.pid), set.did,
                                             set.dataType, set.value});
    return bytes;
}

bool ScriptedFrame::sendBytes(std::string_view bytes) {
    std::lock_guard const guard(lock);
    return connection.isOpen() && writeAll(connection, bytes);
}

std::vector<std::string> ScriptedFrame::waitForMessages(std::size_t count) {
    std::unique_lock guard(lock);
    changed.wait_for(guard, patience, [&] { return messages.size() >= count; });
    return messages;
}

bool ScriptedFrame::waitFor(std::string const& message, std::size_t count) {
    std::unique_lock guard(lock);
    return changed.wait_for(guard, patience, [&] {
        return static_cast<std::size_t>(std::count(messages.begin(), messages.end(), message)) >=
               count;
    });
}

bool ScriptedFrame::waitForEnd() {
    std::unique_lock guard(lock);
    bool const ended = changed.wait_for(guard, patience, [&] { return ends > endsWaited; });
    endsWaited += ended ? 1 : 0;
    return ended;
}

std::string ScriptedFrame::peer() {
    std::lock_guard const guard(lock);
    sockaddr_in name{};
    socklen_t size = sizeof name;
    getpeername(connection.get(), reinterpret_cast<sockaddr*>(&name), &size);
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &name.sin_addr, text.data(), text.size());
    return std::string(text.data()) + ":" + std::to_string(ntohs(name.sin_port));
}
