#include "platform/cplclient/Socket.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <future>
#include <memory>
#include <netdb.h>
#include <netinet/tcp.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct FreeAddress {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};
using Address = std::unique_ptr<addrinfo, FreeAddress>;

Address resolve(std::string const& host, unsigned short port, int flags) {
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    addrinfo* found = nullptr;
    auto const* const name = host.empty() ? nullptr : host.c_str();
    if (getaddrinfo(name, std::to_string(port).c_str(), &hints, &found) != 0)
        return nullptr;
    return Address(found);
}

// The system looks a name up for as long as it likes, and can't be stopped. So a thread asks it,
// and is left to itself if the answer doesn't come in time.
Address lookUp(std::string const& host, unsigned short port, Socket::Deadline deadline) {
    if (auto numeric = resolve(host, port, AI_NUMERICHOST))
        return numeric;
    std::packaged_task<Address()> question([host, port] { return resolve(host, port, 0); });
    auto answer = question.get_future();
    std::thread(std::move(question)).detach();
    if (answer.wait_until(deadline) != std::future_status::ready)
        return nullptr;
    return answer.get();
}

int millisecondsUntil(Socket::Deadline deadline) {
    auto const left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, 60000));
}

void setOption(int fd, int level, int name, int value) {
    setsockopt(fd, level, name, &value, sizeof value);
}

}  // namespace

Socket::~Socket() {
    if (fd < 0)
        return;
    drop();
    ::close(fd);
}

// The local port is the panel's own and is wanted again at once. Whichever side closes first in
// the usual way keeps the pair of addresses in TIME_WAIT for a minute, and from a fixed port
// there is no other pair: the next connect would fail. A reset leaves nothing behind on either
// side. What it may destroy is the bye, so the frame is given the time to answer that before.
//
// To dissolve the connection is to reset it, and leaves the descriptor to those who may still be
// about to use it.
void Socket::drop() const {
    sockaddr const nobody{AF_UNSPEC, {}};
    static_cast<void>(::connect(fd, &nobody, sizeof nobody));
}

bool Socket::fail(char const* what) {
    return refuse(std::string(what) + ": " + std::generic_category().message(errno));
}

bool Socket::connect(std::string const& host, unsigned short port, std::string const& localHost,
                     unsigned short localPort, Deadline deadline) {
    auto const remote = lookUp(host, port, deadline);
    if (!remote)
        return refuse("the address can't be resolved");
    fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0)
        return fail("socket");
    setOption(fd, SOL_SOCKET, SO_REUSEADDR, 1);
    setOption(fd, IPPROTO_TCP, TCP_NODELAY, 1);
    if (!bindLocal(localHost, localPort))
        return false;
    if (::connect(fd, remote->ai_addr, remote->ai_addrlen) != 0 && errno != EINPROGRESS)
        return fail("connect");
    return finishConnect(deadline);
}

bool Socket::bindLocal(std::string const& localHost, unsigned short localPort) {
    auto const local = resolve(localHost, localPort, AI_PASSIVE | AI_NUMERICHOST);
    if (!local)
        return refuse("the local address '" + localHost + "' can't be read");
    return ::bind(fd, local->ai_addr, local->ai_addrlen) == 0 || fail("bind");
}

bool Socket::finishConnect(Deadline deadline) {
    if (!waitFor(POLLOUT, deadline))
        return refuse("connect: no answer");
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size);
    errno = error;
    // From here on a read waits; a write asks not to.
    return error == 0 ? fcntl(fd, F_SETFL, 0) == 0 || fail("fcntl") : fail("connect");
}

bool Socket::waitFor(short what, Deadline deadline) const {
    for (;;) {
        pollfd waited{fd, what, 0};
        auto const ready = ::poll(&waited, 1, millisecondsUntil(deadline));
        if (ready >= 0 || errno != EINTR)
            return ready > 0;
    }
}

// Half a message can't be taken back, and what came next would be taken for its other half: so
// nothing goes out after a failure.
bool Socket::write(std::string_view bytes, milliseconds limit) {
    if (isWoken || !writeAll(bytes, limit)) {
        wake();
        return false;
    }
    return true;
}

bool Socket::writeAll(std::string_view bytes, milliseconds limit) const {
    std::optional<Deadline> deadline;  // nobody looks at the clock while there is room
    while (!bytes.empty()) {
        auto const sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno == EAGAIN) {
            if (!deadline)
                deadline = steady_clock::now() + limit;
            if (!waitFor(POLLOUT | POLLRDHUP, *deadline) || isWoken)
                return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool Socket::waitReadable(Deadline deadline) const { return waitFor(POLLIN, deadline); }

void Socket::setReadLimit(milliseconds limit) const {
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(limit);
    auto const rest = std::chrono::microseconds(limit - seconds).count();
    timeval const time{static_cast<time_t>(seconds.count()), static_cast<suseconds_t>(rest)};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
}

// One system call where waiting and reading by turns take two: this wait is half of what a send
// costs.
long Socket::read(char* buffer, std::size_t capacity) const {
    for (;;) {
        auto const count = ::recv(fd, buffer, capacity, 0);
        if (count >= 0)
            return isWoken ? 0 : count;
        if (errno != EINTR)
            return errno == EAGAIN ? readTimeOut : -1;
    }
}

// To shut the reading half is this side's own affair: the peer sees nothing of it, but a read
// returns at once, and a poll does.
void Socket::wake() {
    isWoken = true;
    ::shutdown(fd, SHUT_RD);
}
