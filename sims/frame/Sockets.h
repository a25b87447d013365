#pragma once

#include "sims/frame/StartError.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace FrameSim {

/// Owns a file descriptor.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int handle) : number(handle) {}
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { close(); }

    int get() const { return number; }
    bool isOpen() const { return number >= 0; }
    void close();

  private:
    int number = -1;
};

/// A port that is held from construction on, whether it listens or not. While it doesn't,
/// connections to it are refused by the system as by a machine without a server.
class ListenPort {
  public:
    /// `address` is a numeric address or a name; port 0 takes a free one. Listens. Throws
    /// `StartError`.
    ListenPort(std::string const& address, std::uint16_t wantedPort);

    std::uint16_t port() const { return number; }
    std::string const& address() const { return host; }
    /// The socket to wait on; -1 while it doesn't listen.
    int handle() const { return listener.get(); }
    /// Stops listening, or listens again. Throws `StartError` if that fails.
    void listen(bool on);

    struct Accepted {
        Descriptor socket;
        std::string peer;  ///< "address:port"
    };
    /// The next connection, its socket non-blocking; nothing if there is none.
    std::optional<Accepted> accept();

  private:
    std::string host;
    std::uint16_t number = 0;
    Descriptor reserve;  // bound and never listening: keeps the port ours
    Descriptor listener;
};

/// How a read or write went.
struct Transfer {
    std::size_t count = 0;
    bool closed = false;  ///< the other side is done, or the connection is lost
    std::string reason;   ///< of a loss; empty if the other side has closed in good order
};

/// What there is to read, at most `most` bytes, appended to `target`; without waiting.
Transfer receive(int socket, std::string& target, std::size_t most);
/// What the system takes of `bytes`, without waiting.
Transfer transmit(int socket, std::string_view bytes);

/// Whether bytes are on their way that the other machine hasn't confirmed.
bool hasUnsent(int socket);

/// Wakes a thread that polls.
class Waker {
  public:
    Waker();
    int handle() const { return event.get(); }
    void wake();
    void drain();

  private:
    Descriptor event;
};

}  // namespace FrameSim
