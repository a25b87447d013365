#pragma once

#include "sims/frame/TrafficRecord.h"
#include "sims/time/TimeKeeper.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace TimeSim {

/// How much of its traffic the service tells.
enum class Telling {
    none,
    few,  ///< each panel's first request, and a sum every now and then
    all   ///< every datagram as well
};

struct TimeServiceOptions {
    std::string address = "127.0.0.1";
    std::uint16_t port = 0;  ///< 0 takes a free one
    TimeKeeper keeper = {};

    Telling telling = Telling::all;
    std::chrono::milliseconds sumEvery{10000};      ///< while there is traffic
    FrameSim::TrafficRecord::Printer printer = {};  ///< see TrafficRecord
    std::size_t recordLimit = 100000;               ///< lines kept
    /// Replies that may wait for their delay to pass. One more, and it is dropped.
    std::size_t queueLimit = 1024;
};

/// The machine's steady clock, by which the service runs.
Moment steadyNow();

/// The frame's field time service on a UDP port. Its lines, of which Telling::few gives the
/// ones marked *, and Telling::none the first and the last:
///
///     time-listening  address port period           * at the start
///     time-panel      from                          * the first request of that panel
///     time-request    from fieldTime fieldOffset
///     time-reply      to fieldTime fieldOffset [faults]   the frame's clock
///     time-reply      to bytes faults                     not of 28 bytes
///     time-silence    to reason                           nothing is answered
///     time-traffic    datagrams replies faulty silences   * since the last such line
///     time-stopped                                  * at the end
///
/// Thread: safe for concurrent use, but `start` and `stop` from one thread at a time, and
/// nothing from the printer.
class TimeService {
  public:
    explicit TimeService(TimeServiceOptions options);
    /// Stops.
    ~TimeService();
    TimeService(TimeService const&) = delete;
    TimeService& operator=(TimeService const&) = delete;

    /// Takes the port, and tells nothing. Throws `FrameSim::StartError` if it can't be had.
    /// Nothing if it has it.
    void open();
    /// Serves on a thread of its own; opens if need be. May be called again after `stop`; the
    /// clock has gone on.
    void start();
    /// Replies that wait are dropped. Nothing if it isn't running.
    void stop();

    /// The port that it listens on; 0 before the first `open`.
    std::uint16_t port() const;
    FrameSim::TrafficRecord& record();
    void tell(Telling howMuch);

    /// Has `change` look at the keeper or change it, between two requests; `now` is the moment
    /// that the keeper's clock is at.
    void operate(std::function<void(TimeKeeper&, Moment now)> const& change);

  private:
    class Loop;
    std::unique_ptr<Loop> loop;
};

}  // namespace TimeSim
