#include "platform/cplclient/Socket.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <system_error>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct FreeAddress {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};
using Address = std::unique_ptr<addrinfo, FreeAddress>;

Address resolve(std::string const& host, unsigned short port, bool passive) {
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = passive ? AI_PASSIVE | AI_NUMERICHOST : 0;
    addrinfo* found = nullptr;
    auto const* const name = host.empty() ? nullptr : host.c_str();
    if (getaddrinfo(name, std::to_string(port).c_str(), &hints, &found) != 0)
        return nullptr;
    return Address(found);
}

int millisecondsUntil(Socket::Deadline deadline) {
    auto const left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, 60000));
}

void setOption(int fd, int level, int name, int value) {
    setsockopt(fd, level, name, &value, sizeof value);
}

}  // namespace

Socket::Socket() : wakeFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

// The local port is the panel's own and is wanted again at once. A close that waits for the
// peer would leave the pair of addresses in TIME_WAIT, and the next connect would fail; so the
// connection is reset. A bye, where there is time for one, has been answered by then.
Socket::~Socket() {
    if (fd >= 0) {
        linger const atOnce{1, 0};
        setsockopt(fd, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        ::close(fd);
    }
    ::close(wakeFd);
}

bool Socket::fail(char const* what) {
    why = std::string(what) + ": " + std::generic_category().message(errno);
    return false;
}

bool Socket::connect(std::string const& host, unsigned short port, std::string const& localHost,
                     unsigned short localPort, Deadline deadline) {
    auto const remote = resolve(host, port, false);
    if (!remote) {
        why = "the address can't be resolved";
        return false;
    }
    fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0)
        return fail("socket");
    setOption(fd, SOL_SOCKET, SO_REUSEADDR, 1);
    setOption(fd, IPPROTO_TCP, TCP_NODELAY, 1);
    if (!bindLocal(localHost, localPort))
        return false;
    if (::connect(fd, remote->ai_addr, remote->ai_addrlen) == 0)
        return true;
    return errno == EINPROGRESS ? finishConnect(deadline) : fail("connect");
}

bool Socket::bindLocal(std::string const& localHost, unsigned short localPort) {
    auto const local = resolve(localHost, localPort, true);
    if (!local) {
        why = "the local address '" + localHost + "' can't be read";
        return false;
    }
    return ::bind(fd, local->ai_addr, local->ai_addrlen) == 0 || fail("bind");
}

bool Socket::finishConnect(Deadline deadline) {
    pollfd waited{fd, POLLOUT, 0};
    if (::poll(&waited, 1, millisecondsUntil(deadline)) <= 0) {
        why = "connect: no answer";
        return false;
    }
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size);
    errno = error;
    return error == 0 || fail("connect");
}

bool Socket::write(std::string_view bytes, Deadline deadline) {
    while (!bytes.empty()) {
        auto const sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno == EAGAIN) {
            pollfd waited{fd, POLLOUT, 0};
            auto const left = millisecondsUntil(deadline);
            if (left == 0 || ::poll(&waited, 1, left) == 0)
                return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

Socket::Wait Socket::waitReadable(Deadline deadline) {
    pollfd waited[2] = {{fd, POLLIN, 0}, {wakeFd, POLLIN, 0}};
    auto const ready = ::poll(waited, 2, millisecondsUntil(deadline));
    if (ready < 0)
        return errno == EINTR ? Wait::TimeOut : Wait::Failed;
    if (waited[1].revents != 0)
        return Wait::Woken;
    return ready == 0 ? Wait::TimeOut : Wait::Ready;
}

long Socket::read(char* buffer, std::size_t capacity) {
    for (;;) {
        auto const count = ::recv(fd, buffer, capacity, MSG_DONTWAIT);
        if (count >= 0 || errno != EINTR)
            return count;
    }
}

void Socket::wake() {
    std::uint64_t const one = 1;
    [[maybe_unused]] auto const written = ::write(wakeFd, &one, sizeof one);
}
