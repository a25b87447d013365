#include "tests/support/LogCapture.h"
#include "time/ConnectionExceptions.h"
#include "time/ConnectionFailure.h"
#include "time/UDPConnection.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/asio/post.hpp>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace commsconns;
using namespace FrameDriver::Testing;
using boost::asio::ip::udp;
using boost::posix_time::milliseconds;

namespace {

using Lines = std::vector<std::string>;

/// The connection with its inside open to a test.
class OpenConnection : public UDPConnection {
  public:
    using UDPConnection::mLocalEndpoint;
    using UDPConnection::mReadLock;
    using UDPConnection::mService;
    using UDPConnection::mSocket;
    using UDPConnection::mWriteLock;
};

/// A plain socket on the loopback network.
class Peer {
  public:
    Peer() : socket(service, udp::endpoint(boost::asio::ip::make_address("127.0.0.1"), 0)) {}

    unsigned short port() const { return socket.local_endpoint().port(); }
    std::string receive() {
        std::array<char, 256> buffer;
        auto const size = socket.receive_from(boost::asio::buffer(buffer), sender);
        return {buffer.data(), size};
    }
    void answer(std::string const& text) { socket.send_to(boost::asio::buffer(text), sender); }

    boost::asio::io_context service;
    udp::socket socket;
    udp::endpoint sender;
};

class UDP : public testing::Test {
  protected:
    /// Open, and pointed at the peer.
    void connect() {
        connection.open();
        connection.setRemoteEndpoint("127.0.0.1", peer.port());
        connection.setReceiveTimeOut(boost::posix_time::seconds(20));
        log.take();
    }
    std::int32_t write(std::string const& text) {
        std::size_t written = 99;
        auto const status = connection.write(text.data(), text.size(), written);
        EXPECT_EQ(written, status == 1 ? text.size() : 0);
        return status;
    }
    std::int32_t read(std::size_t capacity = 64) {
        std::size_t count = 99;
        std::string buffer(capacity, '?');
        auto const status = connection.read(buffer.data(), capacity, count);
        heard = buffer.substr(0, count);
        return status;
    }
    std::string toPeer() const { return "127.0.0.1:" + std::to_string(peer.port()); }
    template <typename Failure>
    std::string failure(std::function<void()> const& action) {
        try {
            action();
        } catch (Failure const& error) {
            return error.what();
        }
        return "nothing thrown";
    }

    Peer peer;
    OpenConnection connection;
    LogCapture log{"NetworkIO"};
    std::string heard;
};

}  // namespace

TEST_F(UDP, IsClosedAndPointsNowhereAtFirst) {
    EXPECT_FALSE(connection.isOpen());
    EXPECT_EQ(connection.describe(), "0.0.0.0:0 to 0.0.0.0:0");
    EXPECT_EQ(connection.getReceiveTimeOut(), milliseconds(0));
    EXPECT_EQ(connection.getSendTimeOut(), milliseconds(0));
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(UDP, EachChangeIsOneLine) {
    EXPECT_EQ(connection.open(), 0);
    EXPECT_TRUE(connection.isOpen());
    connection.setLocalEndpoint("127.0.0.1", 7001);
    connection.setLocalPort(7002);
    connection.setLocalEndpoint(boost::asio::ip::make_address("127.0.0.3"), 7003);
    connection.setRemoteEndpoint("10.0.0.2", 1506);
    connection.setRemotePort(1507);
    connection.setRemoteEndpoint(boost::asio::ip::make_address("10.0.0.3"), 1508);
    connection.setReceiveTimeOut(boost::posix_time::microseconds(100000));
    connection.setSendTimeOut(boost::posix_time::seconds(3723));
    connection.close();
    EXPECT_EQ(
        log.take(),
        (Lines{
            "info: A UDP connection was opened successfully using 0.0.0.0:0 to 0.0.0.0:0",
            "info: A UDP connection's (127.0.0.1:7001 to 0.0.0.0:0) local endpoint was set "
            "successfully.",
            "info: A UDP connection's (127.0.0.1:7002 to 0.0.0.0:0) local port number was set "
            "successfully.",
            "info: A UDP connection's (127.0.0.3:7003 to 0.0.0.0:0) local endpoint was set "
            "successfully.",
            "info: A UDP connection's (127.0.0.3:7003 to 10.0.0.2:1506) remote endpoint has been "
            "modified.",
            "info: The remote port number for a UDP connection (127.0.0.3:7003 to 10.0.0.2:1507) "
            "has been modified.",
            "info: A UDP connection's (127.0.0.3:7003 to 10.0.0.3:1508) remote endpoint has been "
            "modified.",
            "info: The receive time out for a UDP connection (127.0.0.3:7003 to 10.0.0.3:1508) has "
            "been set to: 00:00:00.100000",
            "info: The send time out for a UDP connection (127.0.0.3:7003 to 10.0.0.3:1508) has "
            "been set to: 01:02:03",
            "info: A UDP connection (127.0.0.3:7003 to 10.0.0.3:1508) was closed successfully."}));
    EXPECT_FALSE(connection.isOpen());
    EXPECT_EQ(connection.getLocalAddress(), "127.0.0.3");
    EXPECT_EQ(connection.getLocalPort(), 7003);
    EXPECT_EQ(connection.getRemoteAddress(), "10.0.0.3");
    EXPECT_EQ(connection.getRemotePort(), 1508);
}

TEST_F(UDP, ThePresentTimeOutAgainLogsNothing) {
    connection.setReceiveTimeOut(milliseconds(100));
    connection.setSendTimeOut(milliseconds(100));
    log.take();
    connection.setReceiveTimeOut(milliseconds(100));
    connection.setSendTimeOut(milliseconds(100));
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(UDP, CarriesDatagramsBothWays) {
    connect();
    EXPECT_EQ(write("hello"), 1);
    EXPECT_EQ(peer.receive(), "hello");
    peer.answer("good day");
    EXPECT_EQ(read(), 1);
    EXPECT_EQ(heard, "good day");
    unsigned char bytes[4] = {'b', 'y', 'e', 0};
    std::size_t count = 0;
    EXPECT_EQ(connection.write(bytes, 3, count), 1);
    EXPECT_EQ(peer.receive(), "bye");
    peer.answer("yes");
    EXPECT_EQ(connection.read(bytes, 4, count), 1);
    EXPECT_EQ(std::string(bytes, bytes + count), "yes");
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(UDP, AReadTakesAnybodysDatagramAndTheRemoteEndpointStays) {
    connect();
    write("hello");
    peer.receive();
    Peer stranger;
    stranger.sender = peer.sender;
    stranger.answer("not you");
    EXPECT_EQ(read(), 1);
    EXPECT_EQ(heard, "not you");
    EXPECT_EQ(connection.describe(), "0.0.0.0:0 to " + toPeer());
}

TEST_F(UDP, ALongDatagramIsCutAndAnEmptyOneCounts) {
    connect();
    write("hello");
    peer.receive();
    peer.answer("0123456789");
    peer.answer("");
    peer.answer("next");
    EXPECT_EQ(read(4), 1);
    EXPECT_EQ(heard, "0123");
    EXPECT_EQ(read(4), 1);
    EXPECT_EQ(heard, "");
    EXPECT_EQ(read(4), 1);
    EXPECT_EQ(heard, "next");
}

TEST_F(UDP, AReadWithoutADatagramEndsWithItsTimeOut) {
    connect();
    connection.setReceiveTimeOut(milliseconds(20));
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_EQ(read(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(19));
    EXPECT_EQ(heard, "");
    write("hello");  // and the connection is as good as before
    peer.receive();
    peer.answer("good day");
    connection.setReceiveTimeOut(boost::posix_time::seconds(20));
    EXPECT_EQ(read(), 1);
}

TEST_F(UDP, AClosedConnectionRefusesTransfers) {
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(read(), -4);
        EXPECT_EQ(heard, "");
        EXPECT_EQ(write("hello"), -4);
        connection.open();
        connection.close();
    }
}

TEST_F(UDP, ATransferIsRefusedWhileAnotherThreadHasItsTurn) {
    connect();
    std::lock_guard const reading(connection.mReadLock);
    std::lock_guard const writing(connection.mWriteLock);
    std::async(std::launch::async, [this] {
        EXPECT_EQ(read(), -4);
        EXPECT_EQ(heard, "");
        EXPECT_EQ(write("hello"), -4);
        connection.setReceiveTimeOut(milliseconds(7));
        connection.setSendTimeOut(milliseconds(7));
    }).get();
    EXPECT_NE(connection.getReceiveTimeOut(), milliseconds(7));
    EXPECT_NE(connection.getSendTimeOut(), milliseconds(7));
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(UDP, AWriteGoesOutWhileAReadIsRunning) {
    connect();
    auto reader = std::async(std::launch::async, [this] { return read(); });
    write("hello");
    peer.receive();
    peer.answer("good day");
    EXPECT_EQ(reader.get(), 1);
    EXPECT_EQ(heard, "good day");
}

TEST_F(UDP, AStopEndsARunningReadWithoutAStatus) {
    connect();
    auto reader = std::async(std::launch::async, [this] { return read(); });
    while (reader.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
        connection.stop();
    auto const status = reader.get();  // -4 if a stop had the turn just when the read began
    EXPECT_TRUE(status == -1 || status == -4) << status;
    EXPECT_EQ(heard, "");
    connection.setReceiveTimeOut(milliseconds(1));
    EXPECT_EQ(read(), 0);
}

TEST_F(UDP, ANewRemoteEndpointWaitsForTheRunningTransfers) {
    connect();
    connection.setReceiveTimeOut(milliseconds(30));
    auto reader = std::async(std::launch::async, [this] { return read(); });
    auto changer =
        std::async(std::launch::async, [this] { connection.setRemoteEndpoint("127.0.0.9", 9); });
    EXPECT_EQ(reader.get() == 1, false);
    changer.get();
    EXPECT_EQ(connection.getRemoteAddress(), "127.0.0.9");
}

TEST_F(UDP, ALocalEndpointGivenAfterTheOpeningLeavesTheSocketWhereItIs) {
    connect();
    auto const port = connection.mSocket.local_endpoint().port();
    connection.setLocalEndpoint("127.0.0.1", 1506);
    EXPECT_EQ(connection.getLocalPort(), 1506);
    EXPECT_EQ(connection.mSocket.local_endpoint().port(), port);
    write("hello");
    peer.receive();
    EXPECT_EQ(peer.sender.port(), port);
    EXPECT_NE(port, 1506);
}

TEST_F(UDP, ALocalEndpointGivenBeforeTheOpeningIsBound) {
    connection.setLocalEndpoint("127.0.0.5", 0);
    connect();
    write("hello");
    peer.receive();
    EXPECT_EQ(peer.sender.address().to_string(), "127.0.0.5");
}

TEST_F(UDP, IsReadableWhenADatagramWaits) {
    connect();
    EXPECT_FALSE(connection.isReadable());
    write("hello");
    peer.receive();
    peer.answer("good day");
    while (!connection.isReadable())
        std::this_thread::yield();
    EXPECT_EQ(read(), 1);
    EXPECT_FALSE(connection.isReadable());
}

TEST_F(UDP, AnOccupiedPortFailsTheOpening) {
    connection.setLocalEndpoint("127.0.0.1", peer.port());
    log.take();
    std::string const text =
        "An error occurred while opening a UDP connection: bind: Address already in use";
    EXPECT_EQ(failure<SocketException>([this] { connection.open(); }), text);
    EXPECT_EQ(log.take(), (Lines{"error: " + text}));
    EXPECT_FALSE(connection.isOpen());
}

TEST_F(UDP, ASecondOpeningFailsAndLeavesTheFirst) {
    connect();
    EXPECT_EQ(failure<SocketException>([this] { connection.open(); }),
              "An error occurred while opening a UDP connection: open: Already open");
    EXPECT_TRUE(connection.isOpen());
}

TEST_F(UDP, ASocketThatIsGoneFailsTheClosing) {
    connect();
    ::close(connection.mSocket.native_handle());
    std::string const text = "An error occurred while closing a UDP connection (0.0.0.0:0 to " +
                             toPeer() + "): close: Bad file descriptor";
    EXPECT_EQ(failure<SocketException>([this] { connection.close(); }), text);
    EXPECT_EQ(log.take(), (Lines{"error: " + text}));
}

TEST_F(UDP, AClosedConnectionCannotTellWhetherItIsReadableAndLogsNothing) {
    EXPECT_EQ(failure<SocketException>([this] { connection.isReadable(); }),
              "An error occurred while checking the read-readiness of a UDP connection (0.0.0.0:0 "
              "to 0.0.0.0:0): available: Bad file descriptor");
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(UDP, ASocketThatGoesAwayUnderAReadFailsIt) {
    connect();
    connection.setReceiveTimeOut(milliseconds(5));
    log.take();
    boost::asio::post(connection.mService, [this] { connection.mSocket.close(); });
    std::string const text =
        "An error occurred while reading data from a UDP connection (0.0.0.0:0 to " + toPeer() +
        "): cancel: Bad file descriptor";
    EXPECT_EQ(failure<IOException>([this] { read(); }), text);
    EXPECT_EQ(log.take(), (Lines{"error: " + text}));
}

TEST_F(UDP, WhateverElseEndsAReadIsUnhandledAndLeavesTheConnectionUsable) {
    connect();
    boost::asio::post(connection.mService, [] { throw 7; });
    std::string const text =
        "An unhandled error occurred while reading data from a UDP connection (0.0.0.0:0 to " +
        toPeer() + ").";
    EXPECT_EQ(failure<IOException>([this] { read(); }), text);
    EXPECT_EQ(log.take(), (Lines{"error: " + text}));
    connection.setReceiveTimeOut(milliseconds(1));
    EXPECT_EQ(read(), 0);
}

TEST_F(UDP, AWriteToNowhereFails) {
    connection.open();
    log.take();
    std::string const text =
        "An error occurred while writing data to a UDP connection (0.0.0.0:0 to 0.0.0.0:0): "
        "send_to: Invalid argument";
    EXPECT_EQ(failure<IOException>([this] { write("hello"); }), text);
    EXPECT_EQ(log.take(), (Lines{"error: " + text}));
    std::size_t count = 0;
    connection.setRemoteEndpoint("127.0.0.1", peer.port());  // the turn was given back
    EXPECT_EQ(connection.write("again", 5, count), 1);
}

TEST_F(UDP, AHostThatCannotBeResolvedIsNamedInTheText) {
    auto const host = std::string(300, 'a');
    boost::asio::io_context service;
    boost::system::error_code error;
    udp::resolver(service).resolve(udp::v4(), host, "7", error);
    auto const reason = host + ":7: resolve: " + error.message();
    std::string const local = "An error occurred while setting or binging a local UDP endpoint "
                              "(0.0.0.0:0 to 0.0.0.0:0) to " +
                              reason;
    std::string const remote = "An error occurred while setting or finding a remote UDP endpoint "
                               "(0.0.0.0:0 to 0.0.0.0:0) to " +
                               reason;
    EXPECT_EQ(failure<SocketException>([&] { connection.setLocalEndpoint(host.c_str(), 7); }),
              local);
    EXPECT_EQ(failure<SocketException>([&] { connection.setRemoteEndpoint(host.c_str(), 7); }),
              remote);
    EXPECT_EQ(log.take(), (Lines{"error: " + local, "error: " + remote}));
    EXPECT_EQ(connection.describe(), "0.0.0.0:0 to 0.0.0.0:0");
}

TEST_F(UDP, ALocalAddressOfTheOtherKindIsAnUnknownError) {
    std::string const text = "An unknown error occurred while setting or binging a local UDP "
                             "endpoint (0.0.0.0:0 to 0.0.0.0:0) to ::1:7.";
    EXPECT_EQ(failure<SocketException>(
                  [this] { connection.setLocalEndpoint(boost::asio::ip::make_address("::1"), 7); }),
              text);
    EXPECT_EQ(log.take(), (Lines{"error: " + text}));
}

TEST(ConnectionFailure, EachOperationHasItsWords) {
    struct {
        FailureWords const& words;
        char const* known;
        char const* unknown;
        bool logged;
    } const rows[] = {
        {Words::open,
         "An error occurred while opening a UDP connection: op: Address already in use",
         "An unhandled error occurred while opening a UDP connection.", true},
        {Words::close,
         "An error occurred while closing a UDP connection (D): op: Address already in use",
         "An unhandled error occurred while closing a UDP connection (D): ", true},
        {Words::isReadable,
         "An error occurred while checking the read-readiness of a UDP connection (D): op: Address "
         "already in use",
         "An unhandled error occurred while checking for the read-readiness of a UDP connection "
         "(D).",
         false},
        {Words::read,
         "An error occurred while reading data from a UDP connection (D): op: Address already in "
         "use",
         "An unhandled error occurred while reading data from a UDP connection (D).", true},
        {Words::write,
         "An error occurred while writing data to a UDP connection (D): op: Address already in use",
         "An unhandled error occurred while writing data to a UDP connection (D).", true},
        {Words::setLocalHost,
         "An error occurred while setting or binging a local UDP endpoint (D) to h:1: op: Address "
         "already in use",
         "An unknown error occurred while setting or binging a local UDP endpoint (D) to h:1.",
         true},
        {Words::setLocalAddress,
         "An error occurred while setting a local UDP endpoint (D) to h:1: op: Address already in "
         "use",
         "An unknown error occurred while setting or binging a local UDP endpoint (D) to h:1.",
         true},
        {Words::setRemoteHost,
         "An error occurred while setting or finding a remote UDP endpoint (D) to h:1: op: Address "
         "already in use",
         "An unknown error occurred while setting or finding a remote UDP endpoint (D) to h:1.",
         true},
    };
    LogCapture log("NetworkIO");
    auto const category =
        Brindlemoor::Utilities::Logging::LogManager::getInstance()->getCategory("NetworkIO");
    auto const text = [&](FailureWords const& words, auto const& action) -> std::string {
        try {
            guarded<SocketException>(category, words, "D", "h:1", action);
        } catch (SocketException const& error) {
            return error.what();
        }
        return "nothing thrown";
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.known);
        boost::system::error_code const code = boost::asio::error::address_in_use;
        EXPECT_EQ(text(row.words, [&] { check(code, "op"); }), row.known);
        EXPECT_EQ(text(row.words, [] { throw 7; }), row.unknown);
        EXPECT_EQ(text(row.words, [] {}), "nothing thrown");
        EXPECT_EQ(log.take(), row.logged ? (Lines{std::string("error: ") + row.known,
                                                  std::string("error: ") + row.unknown})
                                         : Lines{});
    }
}
