#pragma once

#include <arpa/inet.h>
#include <cstdint>
#include <netinet/in.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace FrameDriver::Testing {

/// An address of the loopback network for one test, on which TCP port 5000 is free: a frame is
/// always sought there. Tests that run at the same time, in any number of processes, get
/// different ones for as long as this lives: it holds the address by the UDP port of the same
/// number, which nobody else uses and the system gives only once.
class LoopbackAddress {
  public:
    /// Throws std::runtime_error if nothing is free.
    LoopbackAddress() {
        // 127.200.0.1 to 127.252.255.254; where to begin goes by the process, to meet nobody.
        auto const first = 0x7FC80001U + (static_cast<std::uint32_t>(::getpid()) % 0x3500U) * 256U;
        for (auto candidate = first; candidate < first + 254; ++candidate) {
            if (reserve(candidate))
                return;
        }
        throw std::runtime_error("port 5000 is taken on every loopback address that was tried");
    }
    ~LoopbackAddress() { ::close(reservation); }
    LoopbackAddress(LoopbackAddress const&) = delete;
    LoopbackAddress& operator=(LoopbackAddress const&) = delete;

    /// Four decimal numbers with dots.
    std::string const& text() const { return dotted; }

  private:
    static constexpr std::uint16_t port = 5000;

    static int bound(int type, std::uint32_t address) {
        int const socket = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
        sockaddr_in end{};
        end.sin_family = AF_INET;
        end.sin_port = htons(port);
        end.sin_addr.s_addr = htonl(address);
        if (::bind(socket, reinterpret_cast<sockaddr*>(&end), sizeof end) == 0)
            return socket;
        ::close(socket);
        return -1;
    }

    bool reserve(std::uint32_t address) {
        int const hold = bound(SOCK_DGRAM, address);
        if (hold < 0)
            return false;
        int const probe = bound(SOCK_STREAM, address);
        if (probe < 0) {
            ::close(hold);
            return false;
        }
        ::close(probe);
        reservation = hold;
        in_addr const binary{htonl(address)};
        char buffer[INET_ADDRSTRLEN];
        dotted = inet_ntop(AF_INET, &binary, buffer, sizeof buffer);
        return true;
    }

    int reservation = -1;
    std::string dotted;
};

}  // namespace FrameDriver::Testing
