#include "Sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

Descriptor::~Descriptor() {
    if (fd >= 0)
        ::close(fd);
}

Descriptor boundSocket(char const* address) {
    Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in name{};
    name.sin_family = AF_INET;
    inet_pton(AF_INET, address, &name.sin_addr);
    if (::bind(socket.get(), reinterpret_cast<sockaddr*>(&name), sizeof name) != 0)
        throw std::runtime_error("no free port");
    return socket;
}

std::uint16_t portOf(Descriptor const& socket) {
    sockaddr_in name{};
    socklen_t size = sizeof name;
    getsockname(socket.get(), reinterpret_cast<sockaddr*>(&name), &size);
    return ntohs(name.sin_port);
}

std::uint16_t freePort(char const* address) { return portOf(boundSocket(address)); }

bool writeAll(Descriptor const& socket, std::string_view bytes) {
    while (!bytes.empty()) {
        auto const sent = ::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void closeWithReset(Descriptor& socket) {
    linger const atOnce{1, 0};
    setsockopt(socket.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    Descriptor const closed(std::move(socket));
}
