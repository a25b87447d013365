// A read is a receive and a timer, whichever completes first, on a service that nobody else runs.
// Whatever ends the read, both have completed before it returns: the receive must not write into
// a buffer that its caller has taken back.
#include "time/UDPConnection.h"

#include "time/ConnectionExceptions.h"
#include "time/ConnectionFailure.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/date_time/posix_time/time_formatters.hpp>

#include <mutex>

using boost::asio::ip::udp;
using boost::system::error_code;

namespace commsconns {

namespace {

std::string target(std::string const& host, unsigned short port) {
    return host + ":" + std::to_string(port);
}

// The first result counts.
udp::endpoint resolved(char const* host, unsigned short port) {
    boost::asio::io_context service;
    error_code error;
    auto const results =
        udp::resolver(service).resolve(udp::v4(), host, std::to_string(port), error);
    check(error, "resolve");
    if (results.empty())
        check(boost::asio::error::host_not_found, "resolve");
    return results.begin()->endpoint();
}

}  // namespace

UDPConnection::UDPConnection(bool connectionFlag)
    : NetworkConnection(connectionFlag), mSocket(mService), mTimer(mService) {}

UDPConnection::~UDPConnection() = default;

std::int32_t UDPConnection::open() {
    guarded<SocketException>(mLog, Words::open, {}, {}, [this] {
        error_code error;
        mSocket.open(udp::v4(), error);
        check(error, "open");
        bindSocket();
    });
    mLog.getInfoStream() << "A UDP connection was opened successfully using " << describe();
    return 0;
}

// The system's socket is put into its non-blocking mode now, and not by the first read, which may
// run beside a write.
void UDPConnection::bindSocket() {
    error_code error;
    mSocket.native_non_blocking(true, error);
    if (!error)
        mSocket.bind(copied(mLocalEndpoint), error);
    if (!error)
        return;
    error_code ignored;
    mSocket.close(ignored);
    check(error, "bind");
}

void UDPConnection::close() {
    guarded<SocketException>(mLog, Words::close, describe(), {}, [this] {
        error_code error;
        mSocket.close(error);
        check(error, "close");
    });
    mLog.getInfoStream() << "A UDP connection (" << describe() << ") was closed successfully.";
}

// A read clears the stopped state before it runs the service; without one it is cleared here.
void UDPConnection::stop() {
    mService.stop();
    std::unique_lock const turn(mReadLock, std::try_to_lock);
    if (turn)
        mService.restart();
}

bool UDPConnection::isReadable() {
    bool readable = false;
    guarded<SocketException>(mLog, Words::isReadable, describe(), {}, [&] {
        error_code error;
        readable = mSocket.available(error) > 0;
        check(error, "available");
    });
    return readable;
}

std::int32_t UDPConnection::read(char* buffer, std::size_t const& capacity,
                                 std::size_t& bytesRead) {
    std::unique_lock<RecursiveMutex> turn;
    if (mSocket.is_open())
        turn = std::unique_lock(mReadLock, std::try_to_lock);
    if (!turn) {
        bytesRead = 0;
        return Status::refused;
    }
    mBytesTransferred = 0;
    mReadStatus = Status::failed;
    guarded<IOException>(mLog, Words::read, describe(), {},
                         [&] { receive(boost::asio::buffer(buffer, capacity)); });
    bytesRead = mBytesTransferred;
    return mReadStatus;
}

// Lets what a read has begun complete, however the read ended.
class UDPConnection::PendingRead {
  public:
    explicit PendingRead(UDPConnection& owner) : connection(owner) {}
    PendingRead(PendingRead const&) = delete;
    PendingRead& operator=(PendingRead const&) = delete;
    ~PendingRead() { connection.endRead(); }

  private:
    UDPConnection& connection;
};

void UDPConnection::receive(boost::asio::mutable_buffer const& buffer) {
    readOver = false;
    PendingRead const pendingRead(*this);
    mSocket.async_receive_from(buffer, sender, [this](error_code const& error, std::size_t count) {
        onReceived(error, count);
    });
    ++pending;
    error_code error;
    mTimer.expires_from_now(copied(mReceiveTimeOut), error);
    check(error, "expires_from_now");
    mTimer.async_wait([this](error_code const& result) { onTimer(result); });
    ++pending;
    mService.restart();
    mService.run();
}

// An error leaves the status alone, and the timer running.
void UDPConnection::onReceived(error_code const& error, std::size_t count) {
    --pending;
    if (readOver)
        return;
    std::lock_guard const guard(mCompletionLock);
    mBytesTransferred = count;
    if (error)
        return;
    mService.stop();
    mReadStatus = Status::done;
}

void UDPConnection::onTimer(error_code const& error) {
    --pending;
    if (readOver || error == boost::asio::error::operation_aborted)
        return;
    std::lock_guard const guard(mCompletionLock);
    mService.stop();
    error_code failure;
    mSocket.cancel(failure);
    check(failure, "cancel");
    mReadStatus = Status::timeOut;
}

void UDPConnection::endRead() {
    readOver = true;
    error_code ignored;
    mTimer.cancel(ignored);
    if (mSocket.is_open())
        mSocket.cancel(ignored);
    while (pending > 0) {  // a stop may come at any time
        mService.restart();
        mService.run();
    }
}

bool UDPConnection::isOpen() { return mSocket.is_open(); }

std::int32_t UDPConnection::write(char const* buffer, std::size_t const& length,
                                  std::size_t& bytesWritten) {
    std::unique_lock<RecursiveMutex> turn;
    if (mSocket.is_open())
        turn = std::unique_lock(mWriteLock, std::try_to_lock);
    if (!turn) {
        bytesWritten = 0;
        return Status::refused;
    }
    guarded<IOException>(mLog, Words::write, describe(), {}, [&] {
        error_code error;
        auto const sent =
            mSocket.send_to(boost::asio::buffer(buffer, length), copied(mRemoteEndpoint), 0, error);
        check(error, "send_to");
        bytesWritten = sent;
    });
    return Status::done;
}

void UDPConnection::setLocalEndpoint(Address const& address, std::uint16_t port) {
    guarded<SocketException>(mLog, Words::setLocalAddress, describe(),
                             target(address.to_string(), port),
                             [&] { replace(mLocalEndpoint, Endpoint(address.to_v4(), port)); });
    mLog.getInfoStream() << "A UDP connection's (" << describe()
                         << ") local endpoint was set successfully.";
}

void UDPConnection::setLocalEndpoint(char const* host, unsigned short const& port) {
    guarded<SocketException>(mLog, Words::setLocalHost, describe(), target(host, port),
                             [&] { replace(mLocalEndpoint, resolved(host, port)); });
    mLog.getInfoStream() << "A UDP connection's (" << describe()
                         << ") local endpoint was set successfully.";
}

std::string UDPConnection::getLocalAddress() {
    return copied(mLocalEndpoint).address().to_string();
}

void UDPConnection::setLocalPort(unsigned short const& port) {
    replace(mLocalEndpoint, Endpoint(copied(mLocalEndpoint).address(), port));
    mLog.getInfoStream() << "A UDP connection's (" << describe()
                         << ") local port number was set successfully.";
}

std::uint16_t UDPConnection::getLocalPort() { return copied(mLocalEndpoint).port(); }

void UDPConnection::setRemoteEndpoint(Address const& address, std::uint16_t port) {
    std::scoped_lock const turns(mReadLock, mWriteLock);
    replace(mRemoteEndpoint, Endpoint(address.to_v4(), port));
    mLog.getInfoStream() << "A UDP connection's (" << describe()
                         << ") remote endpoint has been modified.";
}

void UDPConnection::setRemoteEndpoint(char const* host, unsigned short const& port) {
    std::scoped_lock const turns(mReadLock, mWriteLock);
    guarded<SocketException>(mLog, Words::setRemoteHost, describe(), target(host, port),
                             [&] { replace(mRemoteEndpoint, resolved(host, port)); });
    mLog.getInfoStream() << "A UDP connection's (" << describe()
                         << ") remote endpoint has been modified.";
}

std::string UDPConnection::getRemoteAddress() {
    return copied(mRemoteEndpoint).address().to_string();
}

void UDPConnection::setRemotePort(unsigned short const& port) {
    replace(mRemoteEndpoint, Endpoint(copied(mRemoteEndpoint).address(), port));
    mLog.getInfoStream() << "The remote port number for a UDP connection (" << describe()
                         << ") has been modified.";
}

std::uint16_t UDPConnection::getRemotePort() { return copied(mRemoteEndpoint).port(); }

NetworkConnection::TimeDuration UDPConnection::getReceiveTimeOut() {
    return copied(mReceiveTimeOut);
}

void UDPConnection::setReceiveTimeOut(TimeDuration const& timeOut) {
    replace(mReceiveTimeOut, timeOut, mReadLock, "receive");
}

NetworkConnection::TimeDuration UDPConnection::getSendTimeOut() { return copied(mSendTimeOut); }

void UDPConnection::setSendTimeOut(TimeDuration const& timeOut) {
    replace(mSendTimeOut, timeOut, mWriteLock, "send");
}

std::int32_t UDPConnection::read(unsigned char* buffer, std::size_t const& capacity,
                                 std::size_t& bytesRead) {
    return UDPConnection::read(reinterpret_cast<char*>(buffer), capacity, bytesRead);
}

std::int32_t UDPConnection::write(unsigned char const* buffer, std::size_t const& length,
                                  std::size_t& bytesWritten) {
    return UDPConnection::write(reinterpret_cast<char const*>(buffer), length, bytesWritten);
}

UDPConnection::Endpoint UDPConnection::copied(Endpoint const& endpoint) {
    std::lock_guard const guard(endpointLock);
    return endpoint;
}

void UDPConnection::replace(Endpoint& endpoint, Endpoint const& value) {
    std::lock_guard const guard(endpointLock);
    endpoint = value;
}

NetworkConnection::TimeDuration UDPConnection::copied(TimeDuration const& timeOut) {
    std::lock_guard const guard(timeOutLock);
    return timeOut;
}

void UDPConnection::replace(TimeDuration& timeOut, TimeDuration const& value, RecursiveMutex& turn,
                            char const* which) {
    std::unique_lock const held(turn, std::try_to_lock);
    if (!held || copied(timeOut) == value)
        return;
    {
        std::lock_guard const guard(timeOutLock);
        timeOut = value;
    }
    mLog.getInfoStream() << "The " << which << " time out for a UDP connection (" << describe()
                         << ") has been set to: " << boost::posix_time::to_simple_string(value);
}

}  // namespace commsconns
