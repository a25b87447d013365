#pragma once

#include <chrono>
#include <string>
#include <string_view>

/// A TCP socket of the stand-in client, and an event to wake whoever waits on it. Failures are
/// told by result and `reason`; nothing throws.
///
/// Thread: one at a time, but `wake` any; one thread may write while another one waits and reads.
class Socket {
  public:
    using Deadline = std::chrono::steady_clock::time_point;
    enum class Wait { Ready, Woken, TimeOut, Failed };

    Socket();
    Socket(Socket const&) = delete;
    Socket& operator=(Socket const&) = delete;
    ~Socket();  ///< drops the connection

    /// Connects from the local address (empty: any) and port (0: any).
    bool connect(std::string const& host, unsigned short port, std::string const& localHost,
                 unsigned short localPort, Deadline deadline);
    /// True if all of `bytes` went out before the deadline or a wake. After a false the stream is
    /// no use.
    bool write(std::string_view bytes, Deadline deadline);
    /// Waits until there is something to read, or the peer is gone.
    Wait waitReadable(Deadline deadline);
    /// What is there to read, into `buffer`. 0 if the peer has closed, -1 on error; never waits.
    long read(char* buffer, std::size_t capacity);
    /// Ends every present and later wait for good. Any thread.
    void wake();
    /// Drops the connection at once, without lingering. Nobody may be writing.
    void drop();

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
    Wait waitFor(short what, Deadline deadline) const;

    int fd = -1;
    int wakeFd;
    std::string why;
};
