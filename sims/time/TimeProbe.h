#pragma once

#include "sims/time/DatagramSocket.h"
#include "sims/time/TimeMeter.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace TimeSim {

/// Asks a field time service, as a panel does. Thread: one.
class TimeProbe {
  public:
    /// Throws `FrameSim::StartError`: "cannot reach HOST:PORT: the system's reason".
    TimeProbe(std::string const& host, std::uint16_t port);

    /// Asks once, and waits for the reply; nothing if it doesn't come in time. Other datagrams
    /// that come meanwhile are counted and let go: both fields of the echo must be right, and
    /// the length. (A panel is content with the echo's fieldOffset.)
    std::optional<TimeSample> ask(std::chrono::nanoseconds timeOut);
    /// Waits, and counts what comes unasked.
    void pause(std::chrono::nanoseconds time);

    std::size_t strays() const { return strayCount; }

  private:
    /// Lets datagrams go until the reply to the request, or until that moment.
    std::optional<TimeSample> await(std::optional<FieldTime> request, Moment until);

    DatagramSocket socket;
    std::size_t strayCount = 0;
};

}  // namespace TimeSim
