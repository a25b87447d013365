#pragma once

#include "sims/frame/Faults.h"
#include "sims/frame/Frame.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace FrameSim {

using TimePoint = std::chrono::steady_clock::time_point;

/// So many times a second; what was missed for more than a second is left out.
class Pace {
  public:
    /// Ends by itself at `end`, if there is one. Nothing ever comes of 0.
    void begin(std::uint32_t perSecond, TimePoint now, std::optional<TimePoint> end);
    /// How often it has been time since the last call; no more than a second's worth.
    std::uint32_t times(TimePoint now);
    std::optional<TimePoint> nextDue() const;

  private:
    std::uint32_t rate = 0;
    TimePoint start;
    std::uint64_t done = 0;
    std::optional<TimePoint> last;
};

/// Those who change a frame's values beside its panels: a flood of changes, and an operator at
/// another panel. Thread: the server's own.
class OtherHands {
  public:
    void flood(Flood const& wanted, TimePoint now);
    /// Sets parameters that may be written to values of their range, all by the seed's chance,
    /// with all consequences.
    void operate(std::uint32_t perSecond, std::uint32_t seed, TimePoint now);
    /// The frame has other parameters now.
    void lookAgain() { writable.reset(); }

    void work(Frame& frame, TimePoint now);
    std::optional<TimePoint> nextDue() const;

  private:
    std::vector<ParameterKey> const& keys(Frame const& frame);
    void floodOnce(Frame& frame);
    void operateOnce(Frame& frame);

    Pace floodPace;
    Pace operatorPace;
    std::optional<ParameterKey> flooded;
    std::uint32_t floodCount = 0;
    std::mt19937 chance;
    std::optional<std::vector<ParameterKey>> writable;
};

}  // namespace FrameSim
