#pragma once

#include "platform/cplclient/CCallback.h"

#include <boost/shared_ptr.hpp>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace cplwire {
struct ListUpdate;
struct ParameterUpdate;
}  // namespace cplwire

/// Hands the frame's news to the registered callbacks, one at a time and in the order of their
/// coming, on a thread of its own. That thread is never the one that reads the socket, so a
/// callback may send and wait for the acknowledgement.
///
/// Thread: any. The object must be held by a shared pointer: the thread keeps it alive.
class CallbackThread : public std::enable_shared_from_this<CallbackThread> {
  public:
    static constexpr std::uint16_t noCallback = 0xFFFF;

    explicit CallbackThread(std::size_t mostBytes) : limit(mostBytes) {}
    CallbackThread(CallbackThread const&) = delete;
    CallbackThread& operator=(CallbackThread const&) = delete;
    ~CallbackThread() = default;

    void start();
    /// No callback begins after this returned; one that is running goes on. What is still queued
    /// is dropped.
    void stop();
    /// Stops for good and lets go of all callbacks. Waits for one that still runs, unless this is
    /// its own thread.
    void end();

    /// `noCallback` if there are too many.
    std::uint16_t add(boost::shared_ptr<CCallback> callback);
    /// A running call into it goes on, and keeps it alive.
    void remove(std::uint16_t identifier);

    /// Queue news. False, and not queued, if too many bytes are waiting.
    bool push(cplwire::ParameterUpdate const& update, bool isReply);
    bool push(cplwire::ListUpdate const& update);
    /// Drops what is queued.
    void clear();

  private:
    // A whole message as the callbacks take it; the buffer is used again and again.
    struct News {
        enum class Kind { Update, Reply, List } kind = Kind::Update;
        std::uint16_t callback = 0;
        std::uint16_t itemCount = 0;
        std::vector<unsigned char> bytes;
        std::size_t cost() const { return sizeof *this + bytes.size(); }
    };
    using Callbacks = std::map<std::uint16_t, boost::shared_ptr<CCallback>>;

    void run(unsigned ownTurn);
    bool waitForNews(std::unique_lock<std::mutex>& guard, unsigned ownTurn);
    void deliver(News& news, CCallback& target);
    void deliverToAll(std::unique_lock<std::mutex>& guard, News& news, unsigned ownTurn);
    void call(std::unique_lock<std::mutex>& guard, News& news, Callbacks::iterator registered);
    News takeNext();
    News takeSpare();
    void keepSpare(News&& news);
    bool enqueue(News&& news);

    std::size_t const limit;
    std::mutex lock;  // guards everything below
    std::condition_variable arrived;
    std::condition_variable ended;  // of live threads
    std::deque<News> queue;
    std::vector<News> spares;
    std::size_t queuedBytes = 0;
    unsigned turn = 0;  // odd while started; a thread of an earlier turn ends
    Callbacks callbacks;
    std::uint16_t nextIdentifier = 1;
    // Threads are detached and counted: a stop doesn't wait, and the next start doesn't either.
    unsigned live = 0;
    std::thread::id caller;  // the thread that delivers now, if any
};
