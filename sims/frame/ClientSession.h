#pragma once

#include "platform/cplclient/wire/MessageSplitter.h"
#include "platform/cplclient/wire/Messages.h"
#include "sims/frame/FaultPlan.h"
#include "sims/frame/Frame.h"
#include "sims/frame/Happening.h"
#include "sims/frame/Sockets.h"
#include "sims/frame/StreamMeter.h"
#include "sims/frame/TrafficRecord.h"

#include <cstddef>
#include <cstdint>
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
    std::function<void(Happening const&)> notice;             ///< may work any fault
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
    bool wantsToRead() const { return !silent && !ending; }
    bool wantsToWrite() const { return taken < outbox.size() && !silent; }
    /// Whether it is still expected to say hello: not if nobody listens.
    bool owesHello() const { return !welcomed && wantsToRead(); }
    TimePoint since() const { return connectedAt; }
    /// When there is something to do without the panel.
    std::optional<TimePoint> nextDue() const;
    /// "#1 panel name=... from=..." for the list of clients.
    Line summary() const;

    /// There is something to read: takes at most 64 KiB and does what it says. Or, if it isn't
    /// to read, the panel is gone.
    void readSome();
    /// Moves what is due to the socket, as far as the system takes it.
    void writeSome(TimePoint now);
    /// Tells a change to the panel if it has subscribed to it.
    void tell(Change const& change);
    /// Says goodbye before the frame stops.
    void sayBye();

    // Faults, as FrameServer promises them.

    /// Nothing keeps it silent any more: does what has been read, and waits anew for a hello.
    void goOn(TimePoint now);
    bool cutAt(Cut const& place);
    void sendGarbage(std::string bytes);
    bool drop(ParameterKey key) { return parameters.erase(key) != 0; }
    bool drop(ListKey key) { return lists.erase(key) != 0; }
    ConnectionCount crossed() const;
    Holding holding(FrameModel const& model) const;

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
    void sendItems(ListKey key, std::uint16_t count, std::string& payload, ListItem const* single);

    void commit(Delivery delivery);
    void endIfCut();
    void finishCut(TimePoint now);

    std::size_t waitingBytes() const { return held.bytes() + outbox.size() - taken; }
    Line received(std::string_view what) const;
    Line sent(std::string_view what) const;
    template <typename Message>
    void send(Message const& message, Line line, Lane lane, std::uint32_t sequence = 0);
    void deliver(std::string bytes, Line line, Lane lane);

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
    DeliveryQueue held;
    std::string outbox;     // on its way to the system,
    std::size_t taken = 0;  // which has taken so much of it

    Happening happening;  // what the message under way has been
    StreamMeter toPanel;
    StreamMeter fromPanel;
    bool silent = false;  // nothing is read or written
    bool ending = false;  // it has been cut: only what is in the outbox still goes out,
    std::optional<TimePoint> endCheck;  // and then the system is asked whether it has arrived
};

}  // namespace FrameSim
