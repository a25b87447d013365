#include "sims/time/DatagramSocket.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>

namespace TimeSim {
namespace {

struct FreeAddresses {
    void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};

std::string joined(std::string const& host, std::string const& port) {
    bool const colons = host.find(':') != std::string::npos;
    return (colons ? "[" + host + "]" : host) + ":" + port;
}

/// Opens a socket and has `attach` (bind or connect) tie it to the address.
FrameSim::Descriptor opened(std::string const& host, std::uint16_t port, int flags,
                            int (*attach)(int, sockaddr const*, socklen_t),
                            std::string const& failure) {
    auto const fail = [&](std::string const& reason) {
        throw FrameSim::StartError(failure + joined(host, std::to_string(port)) + ": " + reason);
    };
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_DGRAM;
    hints.ai_flags = flags | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    int const result = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (result != 0) {
        fail(::gai_strerror(result));
    }
    std::unique_ptr<addrinfo, FreeAddresses> const addresses(found);
    FrameSim::Descriptor socket(
        ::socket(addresses->ai_family, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket.isOpen() || attach(socket.get(), addresses->ai_addr, addresses->ai_addrlen) != 0) {
        fail(std::strerror(errno));
    }
    return socket;
}

}  // namespace

std::string Peer::text() const {
    char host[NI_MAXHOST] = "";
    char port[NI_MAXSERV] = "";
    ::getnameinfo(reinterpret_cast<sockaddr const*>(&address), length, host, sizeof host, port,
                  sizeof port, NI_NUMERICHOST | NI_NUMERICSERV);
    return joined(host, port);
}

DatagramSocket DatagramSocket::listening(std::string const& host, std::uint16_t port) {
    return DatagramSocket(opened(host, port, AI_PASSIVE, ::bind, "cannot listen on "));
}

DatagramSocket DatagramSocket::asking(std::string const& host, std::uint16_t port) {
    return DatagramSocket(opened(host, port, 0, ::connect, "cannot reach "));
}

std::uint16_t DatagramSocket::port() const {
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&bound), &length);
    if (bound.ss_family == AF_INET6) {
        return ntohs(reinterpret_cast<sockaddr_in6 const&>(bound).sin6_port);
    }
    return ntohs(reinterpret_cast<sockaddr_in const&>(bound).sin_port);
}

std::optional<DatagramSocket::Datagram> DatagramSocket::receive() {
    char buffer[2048];
    Datagram datagram;
    ssize_t const got =
        ::recvfrom(socket.get(), buffer, sizeof buffer, 0,
                   reinterpret_cast<sockaddr*>(&datagram.from.address), &datagram.from.length);
    if (got < 0) {
        return std::nullopt;
    }
    datagram.bytes.assign(buffer, static_cast<std::size_t>(got));
    return datagram;
}

bool DatagramSocket::send(std::string_view bytes, Peer const& to) {
    return ::sendto(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL,
                    reinterpret_cast<sockaddr const*>(&to.address), to.length) >= 0;
}

bool DatagramSocket::send(std::string_view bytes) {
    return ::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) >= 0;
}

void awaitReadable(int first, int second, std::chrono::nanoseconds atMost) {
    pollfd waits[] = {{first, POLLIN, 0}, {second, POLLIN, 0}};
    auto const left = std::max(atMost, std::chrono::nanoseconds(0)).count();
    timespec const limit{left / 1000000000, left % 1000000000};
    ::ppoll(waits, 2, &limit, nullptr);
}

}  // namespace TimeSim
