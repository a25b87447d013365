// The oscillator counts ticks of nominally a nanosecond; its drift is in how many of them go into
// a span of the machine's time. Fields are laid out over the ticks. Every change first settles the
// clock: what is running becomes the new reference, so that a change never reaches back.
#include "platform/sal/FieldClock.h"

#include <algorithm>
#include <cmath>

namespace sal {

namespace {

constexpr std::int64_t billion = 1000000000;
constexpr unsigned shortestKt = 1000000;
constexpr unsigned longestKt = 1000000000;
constexpr std::int64_t mostDrift = 100000000;  // parts per billion

// In two steps, since the product of a long span and a drift doesn't fit into 64 bits.
std::int64_t scaled(std::int64_t span, std::int64_t ppb) {
    return span + span / billion * ppb + span % billion * ppb / billion;
}

std::int64_t floorDivided(std::int64_t value, std::int64_t by) {
    auto const quotient = value / by;
    return value % by < 0 ? quotient - 1 : quotient;
}

}  // namespace

FieldClock::FieldClock(Moment start, std::uint64_t reading, unsigned period)
    : since(start),
      ticksThen(start.count()),
      boundary(start.count()),
      fieldTime(reading),
      kt(std::clamp(period, shortestKt, longestKt)) {}

std::int64_t FieldClock::ticks(Moment now) const {
    return ticksThen + scaled((now - since).count(), driftPpb);
}

// The first moment at which the oscillator has counted so far.
FieldClock::Moment FieldClock::momentOf(std::int64_t tick) const {
    auto const span = tick - ticksThen;
    auto const back = static_cast<std::int64_t>(
        std::llround(static_cast<long double>(driftPpb) * static_cast<long double>(span) /
                     static_cast<long double>(billion + driftPpb)));
    auto moment = since + Moment(span - back - 2);
    while (ticks(moment) < tick)
        ++moment;
    return moment;
}

std::int64_t FieldClock::fieldsUntil(std::int64_t tick) const {
    return floorDivided(tick - boundary, length());
}

void FieldClock::settle(Moment now) {
    ticksThen = ticks(now);
    since = now;
    auto const fields = fieldsUntil(ticksThen);
    boundary += fields * length();
    fieldTime += static_cast<std::uint64_t>(fields * std::int64_t{kt});
}

TimeStampType FieldClock::at(Moment now) const {
    auto const tick = ticks(now);
    auto const fields = fieldsUntil(tick);
    auto const into = tick - boundary - fields * length();
    return {fieldTime + static_cast<std::uint64_t>(fields * std::int64_t{kt}),
            static_cast<std::uint32_t>(into / 1000)};
}

FieldClock::Moment FieldClock::nextBoundary(Moment now) const {
    return momentOf(boundary + (fieldsUntil(ticks(now)) + 1) * length());
}

unsigned FieldClock::setKt(Moment now, unsigned nanoseconds) {
    if (nanoseconds >= shortestKt && nanoseconds <= longestKt) {
        settle(now);
        kt = nanoseconds;
        trimmed = 0;
    }
    return kt / 1000000;
}

// A reading of n microseconds stands for n to n + 1, so the clock takes n and a half.
void FieldClock::setClock(Moment now, TimeStampType const& time, unsigned wait) {
    settle(now);
    auto const span = (std::int64_t{time.fieldOffset} + std::int64_t{wait}) * 1000;
    auto const fields = (span + kt / 2) / kt;
    boundary = ticksThen + std::int64_t{wait} * 1000 - 500;
    fieldTime = time.fieldTime + static_cast<std::uint64_t>(fields * std::int64_t{kt});
}

int FieldClock::trim(Moment now, int microseconds) {
    settle(now);
    auto const most = static_cast<int>(kt / 2000);
    trimmed = std::clamp(microseconds, -most, most);
    return trimmed;
}

void FieldClock::setBack(Moment now, unsigned milliseconds) {
    shift(now, std::chrono::milliseconds(milliseconds));
}

void FieldClock::setDrift(Moment now, double ppm) {
    settle(now);
    driftPpb =
        std::clamp(static_cast<std::int64_t>(std::llround(ppm * 1000.0)), -mostDrift, mostDrift);
}

void FieldClock::shift(Moment now, std::chrono::nanoseconds by) {
    settle(now);
    boundary += by.count();
}

}  // namespace sal
