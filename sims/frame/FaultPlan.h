#pragma once

#include "sims/frame/Line.h"

#include <chrono>
#include <string>

namespace FrameSim {

using TimePoint = std::chrono::steady_clock::time_point;

/// A message on its way from the server to a panel's socket.
struct Delivery {
    TimePoint due;  ///< not to be sent earlier
    std::string bytes;
    Line line;  ///< what is told once it is sent
};

/// All that may go wrong between the server and its sockets, in one place. The server asks it
/// before it accepts, reads or writes, and passes every message to it on its way out; what a
/// fault does to a message it does in `deliver`.
///
/// Thread: the server's own.
class FaultPlan {
  public:
    bool refusing = false;               ///< connections are refused; those that stand stay
    bool frozen = false;                 ///< nothing is accepted, read or written; all stays open
    std::chrono::milliseconds delay{0};  ///< between an answer and its way out

    bool mayAccept() const { return !refusing && !frozen; }
    bool mayRead() const { return !frozen; }
    bool mayWrite() const { return !frozen; }

    Delivery deliver(std::string bytes, Line line, TimePoint now) const {
        return {now + delay, std::move(bytes), std::move(line)};
    }
};

}  // namespace FrameSim
