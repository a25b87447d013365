#include "bench/road/BareLink.h"

#include <cstdint>
#include <cstdlib>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace bench {
namespace {

constexpr char answer = 'a';
constexpr char update = 'u';

// A measurement can't go on without its peer.
void must(bool good) {
    if (!good)
        std::abort();
}

void noDelay(int socket) {
    int const on = 1;
    must(setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) == 0);
}

std::pair<int, int> connectedPair() {
    int const listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in end{};
    end.sin_family = AF_INET;
    end.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof end;
    auto* const address = reinterpret_cast<sockaddr*>(&end);
    must(::bind(listener, address, size) == 0 && ::listen(listener, 1) == 0 &&
         getsockname(listener, address, &size) == 0);
    int const panel = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    must(::connect(panel, address, size) == 0);
    int const frame = ::accept(listener, nullptr, nullptr);
    ::close(listener);
    noDelay(panel);
    noDelay(frame);
    return {panel, frame};
}

template <typename Message>
bool receive(int socket, Message& message) {
    return ::recv(socket, message.data(), message.size(), MSG_WAITALL) ==
           static_cast<ssize_t>(message.size());
}

template <typename Message>
void send(int socket, Message const& message) {
    must(::send(socket, message.data(), message.size(), MSG_NOSIGNAL) ==
         static_cast<ssize_t>(message.size()));
}

}  // namespace

BareLink::BareLink() : changed(eventfd(0, EFD_CLOEXEC)) {
    std::tie(panelEnd, frameEnd) = connectedPair();
    server = std::thread([this] { serve(); });
    reader = std::thread([this] { read(); });
    taker = std::thread([this] { takeNews(); });
}

BareLink::~BareLink() {
    ::shutdown(panelEnd, SHUT_RDWR);
    raise(ending);
    server.join();
    reader.join();
    taker.join();
    ::close(panelEnd);
    ::close(frameEnd);
    ::close(changed);
}

void BareLink::ask() {
    send(panelEnd, Message{answer});
    await(answered);
}

void BareLink::waitForNews() {
    std::uint64_t const one = 1;
    must(::write(changed, &one, sizeof one) == sizeof one);
    await(heard);
}

void BareLink::serve() {
    Message message{};
    for (;;) {
        pollfd ready[] = {{frameEnd, POLLIN, 0}, {changed, POLLIN, 0}};
        must(::poll(ready, 2, -1) > 0);
        if (ready[0].revents != 0) {
            if (!receive(frameEnd, message))
                return;
            send(frameEnd, message);
        }
        if (ready[1].revents != 0) {
            std::uint64_t count = 0;
            must(::read(changed, &count, sizeof count) == sizeof count);
            send(frameEnd, Message{update});
        }
    }
}

void BareLink::read() {
    Message message{};
    while (receive(panelEnd, message))
        raise(message[0] == answer ? answered : news);
}

void BareLink::takeNews() {
    for (;;) {
        {
            std::unique_lock guard(lock);
            raised.wait(guard, [this] { return news || ending; });
            if (ending)
                return;
            news = false;
        }
        raise(heard);
    }
}

void BareLink::raise(bool& flag) {
    std::lock_guard const guard(lock);
    flag = true;
    raised.notify_all();
}

void BareLink::await(bool& flag) {
    std::unique_lock guard(lock);
    raised.wait(guard, [&flag] { return flag; });
    flag = false;
}

}  // namespace bench
