#pragma once

#include "foundation/SpinLock.h"
#include "time/NetworkConnection.h"

#include <boost/asio/deadline_timer.hpp>
#include <boost/asio/ip/udp.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace commsconns {

/// Datagrams over UDP and IPv4. Both endpoints are 0.0.0.0:0 at first, and both time-outs zero.
///
/// A read takes a datagram from whoever sent it: the service may answer from another address
/// than the one it was asked at. The remote endpoint is where writes go to, and stays that.
class UDPConnection : public NetworkConnection {
  public:
    explicit UDPConnection(bool connectionFlag = false);
    ~UDPConnection() override;

    std::int32_t open() override;
    void close() override;
    void stop() override;
    bool isReadable() override;
    std::int32_t read(char* buffer, std::size_t const& capacity, std::size_t& bytesRead) override;
    bool isOpen() override;
    std::int32_t write(char const* buffer, std::size_t const& length,
                       std::size_t& bytesWritten) override;
    void setLocalEndpoint(Address const& address, std::uint16_t port) override;
    void setLocalEndpoint(char const* host, unsigned short const& port) override;
    std::string getLocalAddress() override;
    void setLocalPort(unsigned short const& port) override;
    std::uint16_t getLocalPort() override;
    void setRemoteEndpoint(Address const& address, std::uint16_t port) override;
    void setRemoteEndpoint(char const* host, unsigned short const& port) override;
    std::string getRemoteAddress() override;
    void setRemotePort(unsigned short const& port) override;
    std::uint16_t getRemotePort() override;
    TimeDuration getReceiveTimeOut() override;
    void setReceiveTimeOut(TimeDuration const& timeOut) override;
    TimeDuration getSendTimeOut() override;
    void setSendTimeOut(TimeDuration const& timeOut) override;
    std::int32_t read(unsigned char* buffer, std::size_t const& capacity,
                      std::size_t& bytesRead) override;
    std::int32_t write(unsigned char const* buffer, std::size_t const& length,
                       std::size_t& bytesWritten) override;

  protected:
    using Endpoint = boost::asio::ip::udp::endpoint;
    using RecursiveMutex = FrameDriver::Tools::SpinRecursiveMutex;

    Endpoint mLocalEndpoint;   // guarded by endpointLock
    Endpoint mRemoteEndpoint;  // guarded by endpointLock
    boost::asio::ip::udp::socket mSocket;
    boost::asio::deadline_timer mTimer;
    TimeDuration mReceiveTimeOut;  // guarded by timeOutLock
    TimeDuration mSendTimeOut;     // guarded by timeOutLock
    RecursiveMutex mReadLock;
    RecursiveMutex mWriteLock;
    RecursiveMutex mCompletionLock;
    std::size_t mBytesTransferred = 0;
    std::int32_t mReadStatus = -1;

  private:
    class PendingRead;

    void bindSocket();
    void receive(boost::asio::mutable_buffer const& buffer);
    void onReceived(boost::system::error_code const& error, std::size_t count);
    void onTimer(boost::system::error_code const& error);
    void endRead();
    Endpoint copied(Endpoint const& endpoint);
    void replace(Endpoint& endpoint, Endpoint const& value);
    TimeDuration copied(TimeDuration const& timeOut);
    void replace(TimeDuration& timeOut, TimeDuration const& value, RecursiveMutex& turn,
                 char const* which);

    FrameDriver::Tools::SpinMutex endpointLock;
    FrameDriver::Tools::SpinMutex timeOutLock;
    // The reader's own.
    Endpoint sender;        // of the last datagram
    int pending = 0;        // completions that are still to come
    bool readOver = false;  // they are of no interest any more
};

}  // namespace commsconns
