#pragma once

#include "sims/time/FieldTime.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TimeSim {

/// Numbers of one kind, summed up as they come.
class Spread {
  public:
    void add(double value);
    void add(Spread const& others);

    std::size_t count() const { return number; }
    double mean() const { return average; }
    double lowest() const { return least; }
    double highest() const { return most; }
    /// The standard deviation; 0 for fewer than two.
    double deviation() const;

  private:
    std::size_t number = 0;
    double average = 0;
    double squares = 0;  // of the distances from the average, summed
    double least = 0;
    double most = 0;
};

/// By how much one number goes up with another, by least squares.
class Trend {
  public:
    void add(double x, double y);
    /// 0 for fewer than two different x.
    double slope() const;

  private:
    double number = 0, meanX = 0, meanY = 0, squaresX = 0, products = 0;
};

/// A request that has been answered.
struct TimeSample {
    Moment sent{};
    Moment received{};
    FieldTime frame;
};

/// What a sample says.
struct TimeReading {
    std::chrono::nanoseconds since{};  ///< from the first sample to this one
    std::chrono::nanoseconds roundTrip{};
    /// The frame's clock less this machine's in the middle of the round trip, less the same of
    /// the first sample. Where the way there and the way back take different times, it is wrong
    /// by half of the difference.
    std::chrono::nanoseconds offset{};
    /// From the boundary that the sample before saw to the next one. Nothing if both are the
    /// same, or lie so far apart that there may be another between them.
    std::optional<std::chrono::nanoseconds> period;
};

/// Makes readings of samples, as they come. Thread: one.
class TimeMeter {
  public:
    /// Two samples no further apart than this have one boundary at most between them: fields of
    /// that length and more are measured.
    static constexpr std::chrono::nanoseconds shortestField = std::chrono::milliseconds(10);

    TimeReading take(TimeSample const& sample);
    /// The frame's clock less this machine's at the first sample.
    std::chrono::nanoseconds firstOffset() const { return reference; }

  private:
    std::optional<std::chrono::nanoseconds> periodTo(FieldTime frame) const;

    std::optional<TimeSample> previous;
    Moment begin{};
    std::chrono::nanoseconds reference{};
};

/// All readings of some time, summed up. Times are in nanoseconds.
struct TimeSurvey {
    void add(TimeReading const& reading);
    void add(TimeSurvey const& others);

    std::size_t asked = 0;
    std::size_t lost = 0;    ///< not answered in time
    std::size_t strays = 0;  ///< datagrams that answered nothing that was asked just then
    Spread roundTrip;
    Spread offset;
    Spread period;
};

/// What a picture is drawn from: the surveys of equal stretches of time, one after the other,
/// made twice as long whenever there would be more than `limit` of them.
class TimeHistory {
  public:
    static constexpr std::size_t limit = 480;

    explicit TimeHistory(std::chrono::nanoseconds firstStretch = std::chrono::milliseconds(10))
        : length(firstStretch) {}

    /// The survey of the stretch that holds this time from the beginning, to add to.
    TimeSurvey& at(std::chrono::nanoseconds since);
    std::chrono::nanoseconds stretch() const { return length; }
    std::vector<TimeSurvey> const& surveys() const { return stretches; }

  private:
    void halve();

    std::chrono::nanoseconds length;
    std::vector<TimeSurvey> stretches;
};

}  // namespace TimeSim
