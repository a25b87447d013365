#pragma once

#include "platform/logging/LogCategory.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace commsconns {

/// What `read` and `write` answer.
namespace Status {
constexpr std::int32_t done = 1;
constexpr std::int32_t timeOut = 0;   ///< `read` only
constexpr std::int32_t failed = -1;   ///< `read` only: an error, or `stop`
constexpr std::int32_t refused = -4;  ///< not open, or the other's turn; the count is 0
}  // namespace Status

/// A connection that carries datagrams, with transfers that answer a status instead of throwing
/// when time runs out. Every change is one line in the log category "NetworkIO".
///
/// Thread: one reader and one writer on threads of their own, and a third that changes the
/// endpoints or stops a read. `open` and `close` while none of them is at work.
/// Errors: SocketException if the connection as such fails, IOException if a transfer does. All
/// is then as it was before the call.
class NetworkConnection {
  public:
    using TimeDuration = boost::posix_time::time_duration;
    using Address = boost::asio::ip::address;

    NetworkConnection(NetworkConnection const&) = delete;
    NetworkConnection& operator=(NetworkConnection const&) = delete;

    // The order of the virtual operations is part of the design.
    virtual ~NetworkConnection();

    /// Opens the connection and binds it to the local endpoint, which is done here only. Always
    /// 0.
    virtual std::int32_t open() = 0;
    virtual void close() = 0;
    /// Ends a running `read`, from any thread; that answers `Status::failed`.
    virtual void stop() = 0;
    /// Whether a datagram waits to be read.
    virtual bool isReadable() = 0;
    /// One datagram, of which what doesn't fit into `capacity` is lost. Blocks for as long as
    /// the receive time-out.
    virtual std::int32_t read(char* buffer, std::size_t const& capacity,
                              std::size_t& bytesRead) = 0;
    virtual bool isOpen() = 0;
    /// One datagram, to the remote endpoint. Blocks until the system has taken it.
    virtual std::int32_t write(char const* buffer, std::size_t const& length,
                               std::size_t& bytesWritten) = 0;

    /// Of an open connection this changes what it says of itself, and nothing else.
    virtual void setLocalEndpoint(Address const& address, std::uint16_t port) = 0;
    /// `host` is a name or an address; of several the first one counts.
    virtual void setLocalEndpoint(char const* host, unsigned short const& port) = 0;
    virtual std::string getLocalAddress() = 0;
    virtual void setLocalPort(unsigned short const& port) = 0;
    virtual std::uint16_t getLocalPort() = 0;

    /// Waits for running transfers to end.
    virtual void setRemoteEndpoint(Address const& address, std::uint16_t port) = 0;
    virtual void setRemoteEndpoint(char const* host, unsigned short const& port) = 0;
    virtual std::string getRemoteAddress() = 0;
    virtual void setRemotePort(unsigned short const& port) = 0;
    virtual std::uint16_t getRemotePort() = 0;

    virtual TimeDuration getReceiveTimeOut() = 0;
    /// Nothing happens while a read is running.
    virtual void setReceiveTimeOut(TimeDuration const& timeOut) = 0;
    virtual TimeDuration getSendTimeOut() = 0;
    /// Kept and told, and not used. Nothing happens while a write is running.
    virtual void setSendTimeOut(TimeDuration const& timeOut) = 0;

    /// "local address:port to remote address:port", as in "0.0.0.0:0 to 10.0.0.2:1506".
    virtual std::string describe();

    virtual std::int32_t read(unsigned char* buffer, std::size_t const& capacity,
                              std::size_t& bytesRead) = 0;
    virtual std::int32_t write(unsigned char const* buffer, std::size_t const& length,
                               std::size_t& bytesWritten) = 0;

  protected:
    explicit NetworkConnection(bool connectionFlag);

    boost::asio::io_context mService;
    Brindlemoor::Utilities::Logging::LogCategory mLog;
    bool const mFlag;  // kept for the owner; nothing here looks at it
};

}  // namespace commsconns
