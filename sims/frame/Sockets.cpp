#include "sims/frame/Sockets.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/sockios.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace FrameSim {
namespace {

std::string joined(std::string const& host, std::uint16_t port) {
    bool const colons = host.find(':') != std::string::npos;
    return (colons ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

[[noreturn]] void failToListen(std::string const& host, std::uint16_t port,
                               std::string const& reason) {
    throw StartError("cannot listen on " + joined(host, port) + ": " + reason);
}

struct FreeAddresses {
    void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

Addresses resolve(std::string const& host, std::uint16_t port) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    int const result = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (result != 0) {
        failToListen(host, port, ::gai_strerror(result));
    }
    return Addresses(found);
}

Descriptor boundSocket(std::string const& host, std::uint16_t port) {
    auto const addresses = resolve(host, port);
    Descriptor socket(
        ::socket(addresses->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    int const on = 1;
    // The two sockets of a ListenPort share its port.
    ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (!socket.isOpen() || ::bind(socket.get(), addresses->ai_addr, addresses->ai_addrlen) != 0) {
        failToListen(host, port, std::strerror(errno));
    }
    return socket;
}

std::uint16_t portOf(sockaddr_storage const& address) {
    if (address.ss_family == AF_INET6) {
        return ntohs(reinterpret_cast<sockaddr_in6 const&>(address).sin6_port);
    }
    return ntohs(reinterpret_cast<sockaddr_in const&>(address).sin_port);
}

std::string shownPeer(sockaddr_storage const& address, socklen_t length) {
    char host[NI_MAXHOST] = "";
    ::getnameinfo(reinterpret_cast<sockaddr const*>(&address), length, host, sizeof host, nullptr,
                  0, NI_NUMERICHOST);
    return joined(host, portOf(address));
}

bool wouldWait() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

Transfer lost() { return {0, true, std::strerror(errno)}; }

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        close();
        number = std::exchange(other.number, -1);
    }
    return *this;
}

void Descriptor::close() {
    if (number >= 0) {
        ::close(number);
        number = -1;
    }
}

ListenPort::ListenPort(std::string const& address, std::uint16_t wantedPort) : host(address) {
    reserve = boundSocket(host, wantedPort);
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    if (::getsockname(reserve.get(), reinterpret_cast<sockaddr*>(&bound), &length) != 0) {
        failToListen(host, wantedPort, std::strerror(errno));
    }
    number = portOf(bound);
    listen(true);
}

void ListenPort::listen(bool on) {
    if (on == listener.isOpen()) {
        return;
    }
    if (!on) {
        listener.close();
        return;
    }
    auto socket = boundSocket(host, number);
    if (::listen(socket.get(), SOMAXCONN) != 0) {
        failToListen(host, number, std::strerror(errno));
    }
    listener = std::move(socket);
}

std::optional<ListenPort::Accepted> ListenPort::accept() {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    Descriptor socket(::accept4(listener.get(), reinterpret_cast<sockaddr*>(&address), &length,
                                SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket.isOpen()) {
        return std::nullopt;
    }
    int const on = 1;
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return Accepted{std::move(socket), shownPeer(address, length)};
}

Transfer receive(int socket, std::string& target, std::size_t most) {
    std::size_t const before = target.size();
    target.resize(before + most);
    ssize_t const got = ::recv(socket, target.data() + before, most, 0);
    target.resize(before + (got > 0 ? static_cast<std::size_t>(got) : 0));
    if (got > 0) {
        return {static_cast<std::size_t>(got), false, {}};
    }
    if (got == 0) {
        return {0, true, {}};
    }
    return wouldWait() ? Transfer{} : lost();
}

Transfer transmit(int socket, std::string_view bytes) {
    ssize_t const sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent >= 0) {
        return {static_cast<std::size_t>(sent), false, {}};
    }
    return wouldWait() ? Transfer{} : lost();
}

bool hasUnsent(int socket) {
    int bytes = 0;
    return ::ioctl(socket, SIOCOUTQ, &bytes) == 0 && bytes > 0;
}

Waker::Waker() : event(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (!event.isOpen()) {
        throw StartError(std::string("cannot make an event: ") + std::strerror(errno));
    }
}

void Waker::wake() {
    std::uint64_t const one = 1;
    // Fails only when the counter is full, and then the thread is awake already.
    [[maybe_unused]] auto const written = ::write(event.get(), &one, sizeof one);
}

void Waker::drain() {
    std::uint64_t count = 0;
    [[maybe_unused]] auto const got = ::read(event.get(), &count, sizeof count);
}

}  // namespace FrameSim
