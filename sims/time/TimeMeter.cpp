#include "sims/time/TimeMeter.h"

#include <algorithm>
#include <cmath>

namespace TimeSim {

// Sums of squares would lose all digits that matter: a period has eight, and differs in the last.
// So the distances from the average are summed, and corrected as the average moves.

void Spread::add(double value) {
    least = number == 0 ? value : std::min(least, value);
    most = number == 0 ? value : std::max(most, value);
    ++number;
    auto const distance = value - average;
    average += distance / static_cast<double>(number);
    squares += distance * (value - average);
}

void Spread::add(Spread const& others) {
    if (others.number == 0) {
        return;
    }
    if (number == 0) {
        *this = others;
        return;
    }
    auto const ours = static_cast<double>(number), theirs = static_cast<double>(others.number);
    auto const distance = others.average - average;
    average += distance * theirs / (ours + theirs);
    squares += others.squares + distance * distance * ours * theirs / (ours + theirs);
    number += others.number;
    least = std::min(least, others.least);
    most = std::max(most, others.most);
}

double Spread::deviation() const {
    return number < 2 ? 0 : std::sqrt(squares / static_cast<double>(number - 1));
}

void Trend::add(double x, double y) {
    ++number;
    auto const distance = x - meanX;
    meanX += distance / number;
    meanY += (y - meanY) / number;
    squaresX += distance * (x - meanX);
    products += distance * (y - meanY);
}

double Trend::slope() const { return squaresX > 0 ? products / squaresX : 0; }

TimeReading TimeMeter::take(TimeSample const& sample) {
    TimeReading reading;
    reading.roundTrip = sample.received - sample.sent;
    auto const middle = sample.sent + reading.roundTrip / 2;
    auto const offset = std::chrono::nanoseconds(sample.frame.nanoseconds()) - middle;
    if (previous) {
        reading.period = periodTo(sample.frame);
    } else {
        begin = sample.sent;
        reference = offset;
    }
    reading.since = sample.sent - begin;
    reading.offset = offset - reference;
    previous = sample;
    return reading;
}

/// How far apart two samples are is told by the frame's clock: this machine may have been busy.
std::optional<std::chrono::nanoseconds> TimeMeter::periodTo(FieldTime frame) const {
    auto const& before = previous->frame;
    auto const apart = frame.nanoseconds() - before.nanoseconds();
    if (apart < 0 || apart > shortestField.count() || frame.fieldTime <= before.fieldTime) {
        return std::nullopt;
    }
    return std::chrono::nanoseconds(frame.fieldTime - before.fieldTime);
}

void TimeSurvey::add(TimeReading const& reading) {
    roundTrip.add(static_cast<double>(reading.roundTrip.count()));
    offset.add(static_cast<double>(reading.offset.count()));
    if (reading.period) {
        period.add(static_cast<double>(reading.period->count()));
    }
}

void TimeSurvey::add(TimeSurvey const& others) {
    asked += others.asked;
    lost += others.lost;
    strays += others.strays;
    roundTrip.add(others.roundTrip);
    offset.add(others.offset);
    period.add(others.period);
}

TimeSurvey& TimeHistory::at(std::chrono::nanoseconds since) {
    auto const at = std::max(since, std::chrono::nanoseconds(0));
    while (static_cast<std::size_t>(at / length) >= limit) {
        halve();
    }
    auto const index = static_cast<std::size_t>(at / length);
    if (index >= stretches.size()) {
        stretches.resize(index + 1);
    }
    return stretches[index];
}

void TimeHistory::halve() {
    std::vector<TimeSurvey> longer((stretches.size() + 1) / 2);
    for (std::size_t index = 0; index < stretches.size(); ++index) {
        longer[index / 2].add(stretches[index]);
    }
    stretches = std::move(longer);
    length *= 2;
}

}  // namespace TimeSim
