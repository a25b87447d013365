#pragma once

#include "sims/frame/Sockets.h"
#include "sims/frame/StartError.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <utility>

namespace TimeSim {

/// Where a datagram comes from or goes to.
class Peer {
  public:
    /// "address:port", numeric; "[address]:port" for IPv6.
    std::string text() const;

  private:
    friend class DatagramSocket;
    sockaddr_storage address{};
    socklen_t length = sizeof(sockaddr_storage);
};

/// A UDP socket that never waits by itself.
class DatagramSocket {
  public:
    /// For a service. `host` is a numeric address or a name; port 0 takes a free one. Throws
    /// `FrameSim::StartError`: "cannot listen on HOST:PORT: the system's reason".
    static DatagramSocket listening(std::string const& host, std::uint16_t port);
    /// For one who asks: hears that service and nobody else. Throws `FrameSim::StartError`:
    /// "cannot reach HOST:PORT: the system's reason".
    static DatagramSocket asking(std::string const& host, std::uint16_t port);

    int handle() const { return socket.get(); }
    std::uint16_t port() const;

    struct Datagram {
        std::string bytes;  ///< the first 2048 of a longer one
        Peer from;
    };
    /// The next datagram; nothing if there is none, and after an error, which is used up.
    std::optional<Datagram> receive();
    /// False if the system doesn't take it.
    bool send(std::string_view bytes, Peer const& to);
    bool send(std::string_view bytes);

  private:
    explicit DatagramSocket(FrameSim::Descriptor opened) : socket(std::move(opened)) {}

    FrameSim::Descriptor socket;
};

/// Waits for one of two descriptors to become readable; a handle of -1 is none. May return
/// early, for a signal.
void awaitReadable(int first, int second, std::chrono::nanoseconds atMost);

}  // namespace TimeSim
