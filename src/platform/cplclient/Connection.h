#pragma once

#include "platform/cplclient/CPLTypes.h"
#include "platform/cplclient/CallbackThread.h"
#include "platform/cplclient/ClientTimings.h"
#include "platform/cplclient/Socket.h"
#include "platform/cplclient/wire/MessageSplitter.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

/// Where a connection leaves from and goes to.
struct ConnectionEnds {
    std::string localHost;
    unsigned short localPort = 0;
    std::string host;
    unsigned short port = 0;
};

/// One connection to a frame, from its handshake to its end: a thread that reads, the requests
/// that wait for their acknowledgement, the heartbeat.
///
/// Thread: `request` from any, several at once; the others by one owner.
class Connection {
  public:
    Connection(ClientTimings const& clientTimings, std::shared_ptr<CallbackThread> newsTarget,
               std::atomic<ClientConnectionState>& clientState);
    Connection(Connection const&) = delete;
    Connection& operator=(Connection const&) = delete;
    /// Ends without a bye if it hasn't ended yet.
    ~Connection();

    /// Connects and shakes hands. False, with one log line, if that fails within the limit.
    bool open(ConnectionEnds const& ends, std::string const& clientName);

    /// Once after a successful open: the state is "connected" from here on, and reading begins.
    void start();

    /// Sends a message of the wire and waits for its acknowledgement; a `timeOut` of 0 or less
    /// doesn't wait.
    template <typename Message>
    Status request(Message const& message, std::chrono::milliseconds timeOut);

    /// Says goodbye, lets the frame close first, and ends.
    void close();

  private:
    using Clock = std::chrono::steady_clock;

    // A request on its caller's stack, in the list of those that wait.
    struct Waiting {
        std::uint32_t sequence;
        Status status;  // what it comes to if nothing is heard
        bool done = false;
        std::condition_variable changed{};
        Waiting* next = nullptr;
    };

    bool shakeHands(std::string const& clientName, Socket::Deadline deadline);
    std::optional<cplwire::RawMessage> readOne(Socket::Deadline deadline);

    template <typename Message>
    Status send(Message const& message, std::uint32_t sequence, std::chrono::milliseconds limit);
    bool enlist(Waiting& request);
    void strike(Waiting& request);
    Status outcome(Waiting& request, Status sent, Clock::time_point deadline);
    void acknowledge(std::uint32_t sequence, Status status);
    void failAllWaiting();

    void readLoop();
    bool readSome();
    bool handleAll();
    bool handle(cplwire::RawMessage const& message);
    bool heartbeat();
    bool ping();
    bool lose(std::string const& why);

    ClientTimings const timings;
    std::shared_ptr<CallbackThread> const news;
    std::atomic<ClientConnectionState>& state;
    Socket socket;

    std::mutex writeLock;  // one message at a time on the socket
    std::string outgoing;  // guarded by writeLock; keeps its room from message to message

    std::mutex waitingLock;
    Waiting* waiting = nullptr;     // guarded by waitingLock
    bool over = false;              // guarded by waitingLock
    std::condition_variable ended;  // over has become true
    std::atomic<std::uint32_t> nextSequence{1};

    // The reading thread's own.
    cplwire::MessageSplitter splitter;
    Clock::time_point lastHeard;

    std::atomic<bool> closing{false};
    std::thread reader;
};
