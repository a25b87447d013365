#include "sims/time/FieldClock.h"

#include "sims/time/Random.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

namespace TimeSim {
namespace {

constexpr std::int64_t billion = 1000000000;

struct BroadcastRate {
    std::string_view name;
    std::int64_t nominal;  // times 1000/1001
};

constexpr BroadcastRate broadcastRates[] = {
    {"23.98", 24},  {"23.976", 24}, {"29.97", 30},   {"47.95", 48},
    {"47.952", 48}, {"59.94", 60},  {"119.88", 120},
};

/// Without a number that is too large for 64 bits on the way, for as long as a machine runs.
std::int64_t scaled(std::int64_t time, std::int64_t ppb) {
    return time / billion * ppb + time % billion * ppb / billion;
}

std::int64_t floorModulo(std::int64_t value, std::int64_t by) {
    auto const rest = value % by;
    return rest < 0 ? rest + by : rest;
}

}  // namespace

std::optional<std::chrono::nanoseconds> fieldPeriod(std::string_view rate) {
    auto const* const known = std::find_if(std::begin(broadcastRates), std::end(broadcastRates),
                                           [&](auto const& each) { return each.name == rate; });
    if (known != std::end(broadcastRates)) {
        auto const thousandths = known->nominal * 1000;
        return std::chrono::nanoseconds((billion * 1001 + thousandths / 2) / thousandths);
    }
    double number = 0;
    auto const* const end = rate.data() + rate.size();
    auto const result = std::from_chars(rate.data(), end, number, std::chars_format::fixed);
    if (result.ec != std::errc() || result.ptr != end || !(number >= 1 && number <= 1000)) {
        return std::nullopt;
    }
    return std::chrono::nanoseconds(std::llround(1e9 / number));
}

FieldClock::FieldClock(std::chrono::nanoseconds period, Moment start,
                       std::chrono::nanoseconds reading)
    : length(std::max(period, std::chrono::nanoseconds(1000))),
      since(start),
      readingThen(reading.count()),
      boundary(reading.count()) {}

std::int64_t FieldClock::reading(Moment now) const {
    auto const passed = std::max<std::int64_t>(0, (now - since).count());
    return readingThen + passed + scaled(passed, driftPpb);
}

std::int64_t FieldClock::boundaryBefore(std::int64_t clock) const {
    return clock - floorModulo(clock - boundary, length.count());
}

std::int64_t FieldClock::told(std::int64_t exact) const {
    auto const error = fraction(errorSeed, static_cast<std::uint64_t>(exact), 0) * 2 - 1;
    auto const limit = std::min(stampError, (length.count() - 1) / 2);
    return exact + std::llround(error * static_cast<double>(limit));
}

FieldTime FieldClock::at(Moment now) const {
    auto const clock = reading(now);
    auto const last = told(boundaryBefore(clock));
    // A boundary that is told too late may lie ahead of the clock; then no time has passed.
    auto const passed = std::max<std::int64_t>(0, clock - last);
    return {static_cast<std::uint64_t>(last), static_cast<std::uint32_t>(passed / 1000)};
}

/// Makes `now` the moment of the last change.
void FieldClock::settle(Moment now) {
    readingThen = reading(now);
    since = std::max(since, now);
    boundary = boundaryBefore(readingThen);
}

void FieldClock::setPeriod(Moment now, std::chrono::nanoseconds period) {
    settle(now);
    length = std::max(period, std::chrono::nanoseconds(1000));
}

void FieldClock::setDrift(Moment now, double ppm) {
    settle(now);
    driftPpb = std::llround(std::clamp(ppm, -100000.0, 100000.0) * 1000.0);
}

void FieldClock::shift(Moment now, std::chrono::nanoseconds by) {
    settle(now);
    boundary += by.count() % length.count();
}

void FieldClock::restart(Moment now, std::chrono::nanoseconds reading) {
    since = now;
    readingThen = reading.count();
    boundary = readingThen;
}

void FieldClock::setStampError(std::chrono::nanoseconds upTo, std::uint64_t seed) {
    stampError = std::max<std::int64_t>(0, upTo.count());
    errorSeed = seed;
}

}  // namespace TimeSim
