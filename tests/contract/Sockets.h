#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

/// A file descriptor that closes itself.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int handle) : fd(handle) {}
    Descriptor(Descriptor&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd, other.fd);
        return *this;
    }
    ~Descriptor();

    int get() const { return fd; }
    bool isOpen() const { return fd >= 0; }

  private:
    int fd = -1;
};

/// A TCP socket with a free port of the loopback address, which it keeps; it doesn't listen yet.
Descriptor boundSocket(char const* address = "127.0.0.1");
std::uint16_t portOf(Descriptor const& socket);

/// A local port of that address that is free at this moment.
std::uint16_t freePort(char const* address);

/// Blocks until all is written; false if the peer is gone.
bool writeAll(Descriptor const& socket, std::string_view bytes);

/// The peer sees a reset instead of an orderly end.
void closeWithReset(Descriptor& socket);
