#pragma once

#include "sims/time/FieldTime.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace TimeSim {

/// The period of a field rate: "59.94" and its like mean 60000/1001, any other number what it
/// says; from 1 to 1000 a second. Rounded to a whole nanosecond, so that the time from one
/// boundary to the next is always the same. Nothing for what is no such number.
std::optional<std::chrono::nanoseconds> fieldPeriod(std::string_view rate);

/// A frame's field clock: an oscillator that runs a little fast or slow, and fields that are
/// cut from it.
///
/// The clock shows what its own oscillator counts. Drift is therefore not seen in the times of
/// its fields, which are a period apart to the nanosecond, but by who holds them against another
/// clock.
///
/// Every change is continuous: the clock never jumps but by `restart`. Changes and readings may
/// come at any moments, but a reading before the last change is the reading at that change.
///
/// Thread: one at a time.
class FieldClock {
  public:
    /// At the moment `start` the clock shows `reading`, and a field begins there. A clock that
    /// shows the machine's own time is FieldClock(period, now, now).
    explicit FieldClock(std::chrono::nanoseconds period = std::chrono::nanoseconds(16683333),
                        Moment start = Moment(0), std::chrono::nanoseconds reading = {});

    FieldTime at(Moment now) const;

    std::chrono::nanoseconds period() const { return length; }
    /// The field that runs gets the new length already. At least 1 microsecond.
    void setPeriod(Moment now, std::chrono::nanoseconds period);
    /// Parts per million by which the clock runs fast; -100000 to 100000.
    double drift() const { return static_cast<double>(driftPpb) / 1000.0; }
    void setDrift(Moment now, double ppm);
    /// Moves all boundaries from the running field's on; the clock itself goes on. Modulo the
    /// period.
    void shift(Moment now, std::chrono::nanoseconds by);
    /// Begins anew, as after a power failure: the clock shows `reading` and a field begins.
    void restart(Moment now, std::chrono::nanoseconds reading);
    /// From now on each boundary is told up to so much too early or too late, the same error for
    /// the same boundary; less than half a period, or it is cut to that.
    void setStampError(std::chrono::nanoseconds upTo, std::uint64_t seed);

  private:
    std::int64_t reading(Moment now) const;
    void settle(Moment now);
    std::int64_t boundaryBefore(std::int64_t clock) const;
    std::int64_t told(std::int64_t boundary) const;

    std::chrono::nanoseconds length;
    std::int64_t driftPpb = 0;
    Moment since;              // of the last change
    std::int64_t readingThen;  // the clock at that moment
    std::int64_t boundary;     // one of the fields' boundaries, by this clock
    std::int64_t stampError = 0;
    std::uint64_t errorSeed = 0;
};

}  // namespace TimeSim
