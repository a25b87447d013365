#pragma once

#include "sims/frame/Frame.h"
#include "sims/frame/FrameModel.h"
#include "sims/frame/StartError.h"
#include "sims/frame/TrafficRecord.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace FrameSim {

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

    /// Refuses connections, or takes them again. Throws `StartError` if the port has been lost.
    void refuse(bool on);
    /// Holds back everything that is sent from now on.
    void delay(std::chrono::milliseconds time);
    /// Stops reading and writing while everything stays open, or goes on.
    void freeze(bool on);
    /// Cuts all connections, without a goodbye.
    void disconnect();
    /// Sends the whole list to those who have subscribed to it. False if there is none.
    bool sendList(ListKey key);

    /// One line for each panel.
    std::vector<Line> clients();

  private:
    class Loop;
    std::unique_ptr<Loop> loop;
};

}  // namespace FrameSim
