#include "platform/cplclient/Socket.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <future>
#include <memory>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
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

Socket::Socket() : wakeFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

Socket::~Socket() {
    drop();
    ::close(wakeFd);
}

// The local port is the panel's own and is wanted again at once. Whichever side closes first in
// the usual way keeps the pair of addresses in TIME_WAIT for a minute, and from a fixed port
// there is no other pair: the next connect would fail. A reset leaves nothing behind on either
// side. What it may destroy is the bye, so the frame is given the time to answer that before.
void Socket::drop() {
    if (fd < 0)
        return;
    linger const atOnce{1, 0};
    setsockopt(fd, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    ::close(std::exchange(fd, -1));
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
    if (::connect(fd, remote->ai_addr, remote->ai_addrlen) == 0)
        return true;
    return errno == EINPROGRESS ? finishConnect(deadline) : fail("connect");
}

bool Socket::bindLocal(std::string const& localHost, unsigned short localPort) {
    auto const local = resolve(localHost, localPort, AI_PASSIVE | AI_NUMERICHOST);
    if (!local)
        return refuse("the local address '" + localHost + "' can't be read");
    return ::bind(fd, local->ai_addr, local->ai_addrlen) == 0 || fail("bind");
}

bool Socket::finishConnect(Deadline deadline) {
    if (waitFor(POLLOUT, deadline) != Wait::Ready)
        return refuse("connect: no answer");
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size);
    errno = error;
    return error == 0 || fail("connect");
}

Socket::Wait Socket::waitFor(short what, Deadline deadline) const {
    for (;;) {
        pollfd waited[2] = {{fd, what, 0}, {wakeFd, POLLIN, 0}};
        auto const ready = ::poll(waited, 2, millisecondsUntil(deadline));
        if (ready < 0 && errno != EINTR)
            return Wait::Failed;
        if (ready > 0)
            return waited[1].revents != 0 ? Wait::Woken : Wait::Ready;
        if (ready == 0)
            return Wait::TimeOut;
    }
}

bool Socket::write(std::string_view bytes, Deadline deadline) {
    while (!bytes.empty()) {
        auto const sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent > 0)
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        else if (errno == EAGAIN ? waitFor(POLLOUT, deadline) != Wait::Ready : errno != EINTR)
            return false;
    }
    return true;
}

Socket::Wait Socket::waitReadable(Deadline deadline) { return waitFor(POLLIN, deadline); }

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
