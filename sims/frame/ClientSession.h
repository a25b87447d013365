#pragma once

#include "platform/cplclient/wire/MessageSplitter.h"
#include "platform/cplclient/wire/Messages.h"
#include "sims/frame/FaultPlan.h"
#include "sims/frame/Frame.h"
#include "sims/frame/Sockets.h"
#include "sims/frame/TrafficRecord.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace FrameSim {

/// What a session needs of its server.
struct SessionServices {
    Frame& frame;
    TrafficRecord& record;
    FaultPlan& faults;
    std::function<void(std::vector<Change> const&)> publish;  ///< to all sessions
    std::size_t queueLimit;  ///< bytes that may wait for a panel that doesn't read
    std::string name;        ///< the frame's, for the welcome
};

/// One panel's connection: its handshake, its requests, its subscriptions, and what waits to be
/// sent to it. Thread: the server's own.
class ClientSession {
  public:
    ClientSession(SessionServices& server, std::uint32_t id, ListenPort::Accepted accepted,
                  TimePoint now);

    std::uint32_t id() const { return number; }
    int handle() const { return socket.get(); }
    bool isOpen() const { return socket.isOpen(); }
    bool isWelcome() const { return welcomed; }
    bool wantsToWrite() const { return taken < outbox.size(); }
    TimePoint since() const { return connectedAt; }
    /// When the first message that a fault holds back is due.
    std::optional<TimePoint> nextDue() const;
    /// "#1 panel name=... from=..." for the list of clients.
    Line summary() const;

    /// There is something to read: takes at most 64 KiB and does what it says.
    void readSome();
    /// Moves what is due to the socket, as far as the system takes it.
    void writeSome(TimePoint now);
    /// Tells a change to the panel if it has subscribed to it.
    void tell(Change const& change);
    /// Says goodbye before the frame stops.
    void sayBye();
    /// Ends the session, with one line that says why.
    void close(std::string const& reason);

  private:
    using Subscribers = std::set<std::uint16_t>;

    void handleAll();
    bool handle(cplwire::RawMessage const& message);
    bool handleFirst(cplwire::RawMessage const& message);
    template <typename Message>
    bool take(cplwire::RawMessage const& message);

    void on(cplwire::Set const& message, std::uint32_t sequence);
    void on(cplwire::Event const& message, std::uint32_t sequence);
    void on(cplwire::SetList const& message, std::uint32_t sequence);
    void on(cplwire::SubscribeParameter const& message, std::uint32_t sequence);
    void on(cplwire::SubscribeList const& message, std::uint32_t sequence);
    void on(cplwire::SubscribeBatch const& message, std::uint32_t sequence);
    void on(cplwire::Cancel const& message, std::uint32_t sequence);
    void on(cplwire::Ping const& message, std::uint32_t sequence);
    void on(cplwire::Pong const& message, std::uint32_t sequence);
    void on(cplwire::Bye const& message, std::uint32_t sequence);

    Outcome subscribe(std::vector<std::pair<std::int32_t, std::uint32_t>> const& parameters,
                      std::uint16_t callback, std::int32_t flag, std::vector<ParameterChange>& now);
    bool beginSubscription(std::int32_t flag);
    void acknowledge(std::uint32_t sequence, Outcome const& outcome);
    void tellParameter(ParameterChange const& change);
    void tellItems(ListKey key, std::vector<ListItem> const& items);
    void sendUpdate(std::uint16_t callback, ParameterChange const& change);
    void sendItems(ListKey key, std::uint16_t count, std::string_view payload,
                   ListItem const* single);

    std::size_t waitingBytes() const { return heldBytes + outbox.size() - taken; }
    Line received(std::string_view what) const;
    Line sent(std::string_view what) const;
    template <typename Message>
    void send(Message const& message, Line line, std::uint32_t sequence = 0);

    SessionServices& services;
    std::uint32_t number;
    Descriptor socket;
    std::string peer;
    TimePoint connectedAt;
    std::string name;  // the panel's, from its hello
    bool welcomed = false;
    cplwire::MessageSplitter splitter{cplwire::maximumHelloLength};
    std::map<ParameterKey, Subscribers> parameters;
    std::set<ListKey> lists;
    std::deque<Delivery> held;  // by the faults, in order
    std::size_t heldBytes = 0;
    std::string outbox;     // on its way to the system,
    std::size_t taken = 0;  // which has taken so much of it
};

}  // namespace FrameSim
