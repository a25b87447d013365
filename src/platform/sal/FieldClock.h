#pragma once

#include "platform/Visibility.h"
#include "platform/sal/TimeStampType.h"

#include <chrono>
#include <cstdint>

namespace sal {

/// The stand-in's field clock without interrupts or threads: an oscillator that may run a little
/// fast or slow, and the fields that are counted off from it. Moments are those of a machine's
/// steady clock, always given by the caller, and never earlier than the last change.
///
/// Thread: one at a time.
class QFD_PUBLIC FieldClock {
  public:
    using Moment = std::chrono::nanoseconds;
    static constexpr unsigned usualKt = 16683335;

    /// At `start` the clock shows `reading`, and a field begins.
    explicit FieldClock(Moment start = {}, std::uint64_t reading = 0, unsigned period = usualKt);

    /// What `PanelFieldInterrupt` promises.
    TimeStampType at(Moment now) const;
    unsigned setKt(Moment now, unsigned nanoseconds);
    void setClock(Moment now, TimeStampType const& time, unsigned wait);
    int trim(Moment now, int microseconds);
    void setBack(Moment now, unsigned milliseconds);

    unsigned getKt() const { return kt; }
    /// The moment of the first boundary after `now`.
    Moment nextBoundary(Moment now) const;

    /// Parts per million by which the oscillator runs fast, -100000 to 100000. The clock can't
    /// tell.
    void setDrift(Moment now, double ppm);
    /// Moves all boundaries from the running field's on; earlier if negative. The clock goes
    /// with them.
    void shift(Moment now, std::chrono::nanoseconds by);

  private:
    std::int64_t ticks(Moment now) const;
    Moment momentOf(std::int64_t tick) const;
    std::int64_t length() const { return std::int64_t{kt} + std::int64_t{trimmed} * 1000; }
    std::int64_t fieldsUntil(std::int64_t tick) const;
    void settle(Moment now);

    Moment since;             // of the last change
    std::int64_t ticksThen;   // the oscillator's count at that moment, nanoseconds
    std::int64_t boundary;    // a field's beginning, by that count
    std::uint64_t fieldTime;  // of that field
    unsigned kt;
    int trimmed = 0;  // microseconds
    std::int64_t driftPpb = 0;
};

}  // namespace sal
