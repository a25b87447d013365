#pragma once

#include <array>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace bench {

/// A TCP connection over loopback with nothing on it, but as many threads as panel and frame
/// have on the road, and the same hand-overs between them: the caller, a thread that reads the
/// panel's socket, one that takes news from it, and one that serves the frame's socket.
///
/// Thread: the operations from one thread.
class BareLink {
  public:
    BareLink();
    ~BareLink();
    BareLink(BareLink const&) = delete;
    BareLink& operator=(BareLink const&) = delete;

    /// Sends 64 bytes, which come back: what a FID and its acknowledgement take at least.
    void ask();
    /// Has the other side send 64 bytes, and waits for them to be taken: what a change at the
    /// frame takes at least to a sink.
    void waitForNews();

  private:
    using Message = std::array<char, 64>;

    void serve();
    void read();
    void takeNews();
    void raise(bool& flag);
    void await(bool& flag);

    int panelEnd = -1;
    int frameEnd = -1;
    int changed = -1;  // wakes the serving thread
    std::mutex lock;
    std::condition_variable raised;
    bool answered = false;  // these three guarded by lock
    bool news = false;
    bool heard = false;
    bool ending = false;
    std::thread server;
    std::thread reader;
    std::thread taker;
};

}  // namespace bench
