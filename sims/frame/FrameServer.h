#pragma once

#include "sims/frame/Faults.h"
#include "sims/frame/Frame.h"
#include "sims/frame/FrameModel.h"
#include "sims/frame/StartError.h"
#include "sims/frame/TrafficRecord.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameSim {

class Scenario;

struct FrameServerOptions {
    std::string address = "127.0.0.1";
    std::uint16_t port = 0;  ///< 0 takes a free one
    FrameModel model;
    /// Fields pass by the machine's clock. Otherwise only by `Frame::advanceFields`.
    bool realFields = false;

    TrafficRecord::Printer printer;    ///< see TrafficRecord
    std::size_t recordLimit = 100000;  ///< lines kept

    /// Bytes that may wait for a panel. One that doesn't read is dropped at this many.
    std::size_t queueLimit = std::size_t{8} << 20U;
    /// More panels at once are turned away.
    std::size_t clientLimit = 64;
    /// A connection that hasn't said hello by then is closed.
    std::chrono::milliseconds helloLimit{5000};

    /// Does a command for the field time, on any thread. Throws `CommandError` if it is wrong.
    /// None for a frame without field time.
    std::function<void(std::string_view command)> fieldTime = {};
};

/// The frame as a panel meets it: a frame behind a TCP port, for any number of panels.
///
/// A panel's request is acknowledged, then its consequences are told, to each panel that has
/// subscribed, in the order in which they happened. A subscription with the flag immediate,
/// replace or append is answered by the present value at once; one with update isn't.
///
/// Thread: safe for concurrent use, but `start` and `stop` from one thread at a time, and
/// nothing from the printer. Every operation below has taken effect when it returns.
class FrameServer {
  public:
    explicit FrameServer(FrameServerOptions options);
    /// Stops.
    ~FrameServer();
    FrameServer(FrameServer const&) = delete;
    FrameServer& operator=(FrameServer const&) = delete;

    /// Listens, and serves on a thread of its own. Throws `StartError` if the address can't be
    /// had. May be called again after `stop`; the state of the frame stays.
    void start();
    /// Says goodbye to all panels and closes everything. Nothing if it isn't running.
    void stop();

    std::string address() const;
    /// The port that it listens on; 0 before the first start.
    std::uint16_t port() const;

    /// The state, to look at and to change; panels are told of changes.
    Frame& frame();
    /// All that has been told since construction.
    TrafficRecord& record();

    // Faults; docs/faults.md tells more of each. They stay over a `stop` and `start`.

    /// Refuses connections, or takes them again. Throws `StartError` if the port has been lost.
    void refuse(bool on);
    /// Accepts connections and never answers them; those that stand aren't touched. Off, it
    /// answers what they have said in the meantime.
    void mute(bool on);
    /// Stops accepting, reading and writing, pongs included, while everything stays open, or
    /// goes on. What has been ordered to go on by itself, fields too, stands still.
    void freeze(bool on);
    /// Cuts all connections, without a goodbye.
    void disconnect();
    /// Cuts a connection at a byte; a later order for the same way of it takes the place of the
    /// first. False if that place or that connection is past, or 1000 orders are waiting.
    bool cut(Cut const& place);

    /// Holds back everything that is sent from now on, in order.
    void delay(std::chrono::milliseconds time);
    /// The same in all its kinds. Throws `FaultError` unless 0 <= least <= most.
    void delay(Delay const& wanted);
    /// Everything that these faults leave to chance from now on goes by this.
    void seed(std::uint32_t number);

    /// Spoils the next payloads that go out, whoever they are for.
    void damage(Damage const& wanted);
    /// Sends bytes that make no sense to a panel, 0 for all. Gives how many got them.
    std::size_t sendGarbage(Garbage kind, std::uint32_t client = 0);
    /// What the next welcomes say of the protocol's version; nothing for the truth.
    void welcomeVersion(std::optional<std::uint16_t> number);

    /// Ends a subscription without a word. False if that panel has none such.
    bool dropSubscription(std::uint32_t client, ParameterKey key);
    bool dropSubscription(std::uint32_t client, ListKey key);

    void flood(Flood const& wanted);
    /// Another operator: so many sets a second of what may be written, by chance; 0 ends it.
    void operate(std::uint32_t perSecond, std::uint32_t chance = 1);
    /// Drops all connections without a goodbye and comes back with other state. Throws
    /// `FaultError`, and nothing has happened, if a value fits no parameter.
    void restart(Restart wanted);
    /// Ends all faults above, with what is still waiting for its turn: cuts, damage, floods, the
    /// other operator. What has been held back stays so. The state stays as it has become.
    void heal();

    /// Has a command for the field time done. Throws `CommandError`.
    void fieldTime(std::string_view command);

    /// Sends the whole list to those who have subscribed to it. False if there is none.
    bool sendList(ListKey key);

    /// Begins a scenario: its times count from now. One that was running ends.
    void play(Scenario const& scenario);

    // What there is to see.

    /// One line for each panel.
    std::vector<Line> clients();
    /// The connections that stand, and the last 64 that have ended, by their numbers.
    std::vector<ConnectionCount> crossed();
    /// What the frame holds of all that a panel has subscribed to; nothing if it is no more.
    /// All of it is either sent already or on its way when this returns.
    std::optional<Holding> holding(std::uint32_t client);

  private:
    class Loop;
    std::unique_ptr<Loop> loop;
};

}  // namespace FrameSim
