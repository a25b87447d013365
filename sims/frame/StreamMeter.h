#pragma once

#include "sims/frame/Faults.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace FrameSim {

/// Counts one way of a connection, and says where it is to be cut. A stream that has no
/// messages any more is counted in bytes only. Thread: one.
class StreamMeter {
  public:
    /// The next bytes of the stream: takes them up to the cut, and tells how many that are.
    std::size_t pass(std::string_view bytes);

    Crossed const& crossed() const { return count; }
    /// False, and nothing is changed, if that place lies behind already.
    bool cutAt(std::size_t message, std::size_t byte);
    /// The cut has been reached: nothing passes any more.
    bool isCut() const { return reached; }
    std::optional<Cut> const& cut() const { return place; }

  private:
    std::size_t passSome(std::string_view bytes);
    std::size_t untilCut(std::size_t wanted);
    void endMessage();

    Crossed count;
    std::size_t length = 0;  // of the message under way, its prefix included, as far as known
    std::size_t done = 0;    // of it
    bool lost = false;       // where messages end isn't known any more
    bool reached = false;
    std::optional<Cut> place;
};

}  // namespace FrameSim
