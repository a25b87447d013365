#include "sims/time/TimeFaultPlan.h"

#include "sims/time/FieldTime.h"
#include "sims/time/Random.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace TimeSim {
namespace {

constexpr std::string_view names[timeFaults] = {"none",    "lost",       "stale", "held",
                                                "doubled", "wrong-echo", "cut",   "stretched"};
constexpr std::size_t mostStretched = 36;

/// Each decision about a request draws a number of its own, told apart by these and by the
/// faults' own numbers.
enum Draw : std::uint64_t { cutLength = 100, stretchedLength, requestJitter, replyJitter };

std::chrono::nanoseconds part(std::chrono::nanoseconds whole, double share) {
    return std::chrono::nanoseconds(std::llround(static_cast<double>(whole.count()) * share));
}

std::size_t upTo(std::size_t limit, double share) {
    return static_cast<std::size_t>(static_cast<double>(limit) * share);
}

}  // namespace

std::string_view name(TimeFault fault) { return names[static_cast<std::size_t>(fault)]; }

std::optional<TimeFault> timeFault(std::string_view name) {
    auto const* const found = std::find(std::begin(names), std::end(names), name);
    if (found == std::end(names)) {
        return std::nullopt;
    }
    return static_cast<TimeFault>(found - std::begin(names));
}

double TimeFaultPlan::chance(std::uint64_t what) const { return fraction(seed, number, what); }

std::optional<TimeFault> TimeFaultPlan::doomed() {
    if (dooms.empty()) {
        return std::nullopt;
    }
    auto const fault = dooms.front().fault;
    if (--dooms.front().count == 0) {
        dooms.pop_front();
    }
    return fault;
}

void TimeFaultPlan::mark(TimeFate& fate, TimeFault fault) const {
    fate.faults[static_cast<std::size_t>(fault)] = true;
    if (fault == TimeFault::cut) {
        fate.length = upTo(datagramSize, chance(cutLength));
    } else if (fault == TimeFault::stretched) {
        fate.length = datagramSize + 1 + upTo(mostStretched, chance(stretchedLength));
    }
}

TimeFate TimeFaultPlan::next() {
    ++number;
    TimeFate fate;
    if (auto const fault = doomed()) {
        mark(fate, *fault);
    } else {
        for (std::size_t index = 1; index < timeFaults; ++index) {
            if (chance(index) * 100 < chances[index]) {
                mark(fate, static_cast<TimeFault>(index));
            }
        }
    }
    fate.requestDelay = ways.request + part(ways.jitter, chance(requestJitter));
    fate.replyDelay = ways.reply + part(ways.jitter, chance(replyJitter));
    return fate;
}

void TimeFaultPlan::setChance(TimeFault fault, double percent) {
    chances[static_cast<std::size_t>(fault)] = percent;
}

void TimeFaultPlan::doom(TimeFault fault, std::size_t count) {
    if (!dooms.empty() && dooms.back().fault == fault) {
        dooms.back().count += count;
    } else if (count > 0 && dooms.size() < doomLimit) {
        dooms.push_back({fault, count});
    }
}

void TimeFaultPlan::restart(std::uint64_t newSeed) {
    seed = newSeed;
    number = 0;
}

void TimeFaultPlan::clear() {
    std::fill(std::begin(chances), std::end(chances), 0.0);
    dooms.clear();
    ways = {};
}

}  // namespace TimeSim
