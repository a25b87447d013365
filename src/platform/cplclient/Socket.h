#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

/// A TCP socket of the stand-in client. Failures are told by result and `reason`; nothing throws.
///
/// Thread: one after another until it is connected; from then on one may write while another one
/// reads, and any may `wake`.
class Socket {
  public:
    using Deadline = std::chrono::steady_clock::time_point;

    Socket() = default;
    Socket(Socket const&) = delete;
    Socket& operator=(Socket const&) = delete;
    ~Socket();  ///< drops the connection

    /// Connects from the local address (empty: any) and port (0: any).
    bool connect(std::string const& host, unsigned short port, std::string const& localHost,
                 unsigned short localPort, Deadline deadline);
    /// True if all of `bytes` went out in that time and before a wake. A false wakes, and is the
    /// answer to every later write.
    bool write(std::string_view bytes, std::chrono::milliseconds limit);
    /// Waits until there is something to read, or the peer is gone. False after the deadline.
    bool waitReadable(Deadline deadline) const;
    /// How long `read` waits; at first for ever.
    void setReadLimit(std::chrono::milliseconds limit) const;
    /// What there is to read, into `buffer`, waiting for it. 0 if the peer has closed or after a
    /// wake, `readTimeOut` if nothing came, another negative number on error.
    long read(char* buffer, std::size_t capacity) const;
    static constexpr long readTimeOut = -2;
    /// Ends every present and later wait for good.
    void wake();
    bool woken() const { return isWoken; }
    /// Drops the connection at once, without lingering.
    void drop() const;

    std::string const& reason() const { return why; }
    /// False, for a caller who found the reason elsewhere.
    bool refuse(std::string const& text) {
        why = text;
        return false;
    }

  private:
    bool fail(char const* what);
    bool bindLocal(std::string const& localHost, unsigned short localPort);
    bool finishConnect(Deadline deadline);
    bool writeAll(std::string_view bytes, std::chrono::milliseconds limit) const;
    bool waitFor(short what, Deadline deadline) const;

    int fd = -1;  // from `connect` to the end the same
    std::atomic<bool> isWoken{false};
    std::string why;
};
