#pragma once

#include "sims/frame/Line.h"

#include <chrono>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace FrameSim {

using TimePoint = std::chrono::steady_clock::time_point;

/// What must stay in order even if answers are shuffled: the news of one parameter, of one list,
/// and everything of the connection itself. Each acknowledgement is alone.
struct Lane {
    enum class Kind { all, news, connection, acknowledgement, parameter, list };
    Kind kind = Kind::all;
    std::int64_t id = 0;
    std::uint32_t did = 0;

    // clang-tidy takes the comparison with 0 that the compiler makes for a pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    auto operator<=>(Lane const&) const = default;
};

/// A message on its way from the server to a panel's socket.
struct Delivery {
    TimePoint due;  ///< not to be sent earlier
    std::string bytes;
    Line line;  ///< what is told once it is sent
};

/// The messages that wait for their time. Thread: one.
class DeliveryQueue {
  public:
    /// In order of their times; of the same time, in order of coming. It leaves no earlier than
    /// the last of the lane `behind` so far.
    void add(Lane own, Lane behind, Delivery delivery, TimePoint now);
    /// The first one, if it is due.
    std::optional<Delivery> takeDue(TimePoint now);

    std::optional<TimePoint> nextDue() const;
    std::size_t bytes() const { return byteCount; }
    void clear();

  private:
    void note(Lane lane, TimePoint due);

    std::multimap<TimePoint, Delivery> waiting;
    std::map<Lane, TimePoint> latest;  // of the lanes of those that were late; not of all
    std::size_t byteCount = 0;
};

}  // namespace FrameSim
