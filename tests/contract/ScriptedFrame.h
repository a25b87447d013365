#pragma once

#include "ContractFrame.h"
#include "Sockets.h"
#include "platform/cplclient/wire/MessageSplitter.h"
#include "platform/cplclient/wire/Messages.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

/// A small frame in the test's own process, one client at a time. Left alone it welcomes,
/// acknowledges, answers pings, tells subscribers of sets, and closes after a bye. A script may
/// answer in its place.
class ScriptedFrame : public ContractFrame {
  public:
    /// What goes out for a message, byte for byte; nothing: the frame's own answer. Runs on the
    /// frame's thread; set it before `listen`.
    using Script = std::function<std::optional<std::string>(cplwire::RawMessage const&)>;

    explicit ScriptedFrame(Script answers = {});
    ~ScriptedFrame() override;

    std::uint16_t port() const override { return portOf(listener); }
    void listen() override;
    void freeze() override;
    void cut() override;

    void setScript(Script answers) { script = std::move(answers); }
    /// Ends the frame: no script runs after this.
    void stop();
    /// Ends the connection in good order, without a bye.
    void closeConnection();
    /// Sends bytes to the client that is connected, at once. False if there is none.
    bool sendBytes(std::string_view bytes);
    template <typename Message>
    bool send(Message const& message, std::uint32_t sequence = 0) {
        return sendBytes(bytesOf(message, sequence));
    }
    template <typename Message>
    static std::string bytesOf(Message const& message, std::uint32_t sequence = 0) {
        std::string bytes;
        cplwire::encode(bytes, message, sequence);
        return bytes;
    }

    /// Waits until so many messages have come, pings left out, and gives their texts (see
    /// WireText.h); fewer after the patience has run out.
    std::vector<std::string> waitForMessages(std::size_t count);
    /// Waits for so many of that text.
    bool waitFor(std::string const& message, std::size_t count = 1);
    /// Waits until the connection has ended, whoever ended it.
    bool waitForEnd();
    /// Whether the end that was waited for was a reset.
    bool endedByReset() const { return resetSeen; }
    /// What the client's end of the connection is called, "address:port".
    std::string peer();

  private:
    using Key = std::pair<std::int32_t, std::uint32_t>;
    enum class Order { none, stop, closeOrderly, closeHard };

    void run();
    bool obey();
    void serve();
    void acceptOne();
    void readSome();
    void endConnection(bool reset);
    void answer(cplwire::RawMessage const& message);
    std::string ownAnswer(cplwire::RawMessage const& message);
    std::string consequences(cplwire::Set const& set) const;
    void wake() const;

    Script script;
    Descriptor listener;
    Descriptor waker;
    std::thread thread;
    std::atomic<Order> order{Order::none};
    std::atomic<bool> frozen{false};
    std::atomic<bool> resetSeen{false};

    std::mutex lock;  // guards the rest
    std::condition_variable changed;
    Descriptor connection;
    unsigned ends = 0;        // of connections
    unsigned endsWaited = 0;  // of them that were waited for
    std::vector<std::string> messages;
    std::map<Key, std::set<std::uint16_t>> subscribers;
    cplwire::MessageSplitter splitter;
};
