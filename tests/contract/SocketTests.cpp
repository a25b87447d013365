#include "Sockets.h"
#include "StandInTest.h"
#include "platform/cplclient/Socket.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// The other end of `socket`, with little room.
Descriptor connectTo(Socket& socket) {
    auto const listener = boundSocket();
    int const small = 4096;
    setsockopt(listener.get(), SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    ::listen(listener.get(), 1);
    EXPECT_TRUE(socket.connect("127.0.0.1", portOf(listener), "", 0, Clock::now() + patience));
    return Descriptor(::accept(listener.get(), nullptr, nullptr));
}

// Reads until there is nothing more for a while.
std::size_t drain(Descriptor const& socket) {
    timeval const pause{0, 200000};
    setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &pause, sizeof pause);
    std::array<char, 65536> buffer;
    std::size_t total = 0;
    for (long count = 1; count > 0; total += static_cast<std::size_t>(std::max(count, 0L)))
        count = ::recv(socket.get(), buffer.data(), buffer.size(), 0);
    return total;
}

// What came next would be taken for the other half of the message that was cut off.
TEST(Socket, AfterHalfAMessageNothingMoreGoesOut) {
    Socket socket;
    auto const peer = connectTo(socket);
    std::string const large(std::size_t{64} << 20U, 'x');
    EXPECT_TRUE(socket.write("first", patience));
    EXPECT_FALSE(socket.write(large, 50ms));
    auto const arrived = drain(peer);
    EXPECT_GT(arrived, 5U);
    EXPECT_LT(arrived, large.size());
    EXPECT_FALSE(socket.write("next", patience));
    EXPECT_EQ(drain(peer), 0U);
}

/// No further descriptor for the process while this lives.
class NoDescriptors {
  public:
    NoDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before);
        auto const none = rlimit{0, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before); }
    NoDescriptors(NoDescriptors const&) = delete;
    NoDescriptors& operator=(NoDescriptors const&) = delete;

  private:
    rlimit before{};
};

// That sanitizer looks at objects through a pipe, and takes every one for a wrong one while there
// is no descriptor to be had.
#ifndef QFD_UNDEFINED_SANITIZER
class Shortage : public StandInTest {};

TEST_F(Shortage, WithoutADescriptorThereIsNoConnectionAndNobodyHangs) {
    frame.listen();
    client();
    {
        NoDescriptors const none;
        EXPECT_FALSE(connect());
    }
    EXPECT_EQ(log.all(), Texts{"info: no connection to 127.0.0.1:" + std::to_string(frame.port()) +
                               ": socket: Too many open files"});
    EXPECT_EQ(client().getConnectionState(), eNotConnected);
    EXPECT_TRUE(connect());
    EXPECT_EQ(setNumber(1), eStatusOk);
}
#endif

}  // namespace
