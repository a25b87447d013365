#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>

namespace TimeSim {

/// What may go wrong with the answer to one request.
enum class TimeFault {
    none,
    lost,       ///< no reply
    stale,      ///< the reply to the panel's request before comes first, once more
    held,       ///< the reply comes behind the one to the panel's next request
    doubled,    ///< the reply comes twice
    wrongEcho,  ///< the echoed fieldOffset is one too high
    cut,        ///< the reply is shorter than 28 bytes
    stretched   ///< the reply is longer than 28 bytes
};
constexpr std::size_t timeFaults = 8;

/// "none", "lost", "stale", "held", "doubled", "wrong-echo", "cut", "stretched".
std::string_view name(TimeFault fault);
std::optional<TimeFault> timeFault(std::string_view name);

/// All that happens to the answer to one request.
struct TimeFate {
    bool has(TimeFault fault) const { return faults[static_cast<std::size_t>(fault)]; }

    bool faults[timeFaults] = {};
    std::size_t length = 28;                  ///< of the reply
    std::chrono::nanoseconds requestDelay{};  ///< before the frame's clock is read
    std::chrono::nanoseconds replyDelay{};    ///< after that
};

/// How long a datagram takes on each way, and up to how much more by chance.
struct TimeDelays {
    std::chrono::nanoseconds request{};
    std::chrono::nanoseconds reply{};
    std::chrono::nanoseconds jitter{};
};

/// Decides about each request in turn. The same seed, settings and order give the same fates,
/// on every machine, and a fault switched on or off changes nothing about the others.
///
/// Thread: one at a time.
class TimeFaultPlan {
  public:
    static constexpr std::size_t doomLimit = 1000;

    explicit TimeFaultPlan(std::uint64_t firstSeed = 1) : seed(firstSeed) {}

    /// The fate of the next request. `doom` comes first, then chance; delays are always added.
    TimeFate next();

    /// How often the fault befalls a request, 0 to 100 percent.
    void setChance(TimeFault fault, double percent);
    TimeDelays const& delays() const { return ways; }
    /// The next `count` requests, behind those that are doomed already, have this fault and no
    /// other. The fault may change `doomLimit` times; nothing comes of what goes beyond.
    void doom(TimeFault fault, std::size_t count);
    double chanceOf(TimeFault fault) const { return chances[static_cast<std::size_t>(fault)]; }
    /// Different delays make the way asymmetric: a panel takes half of the round trip for the
    /// way back.
    void setDelays(TimeDelays const& wanted) { ways = wanted; }
    /// Begins anew, with the settings as they are.
    void restart(std::uint64_t newSeed);
    std::uint64_t currentSeed() const { return seed; }
    /// No faults and no delays any more; the seed and the count of requests stay.
    void clear();

  private:
    struct Doom {
        TimeFault fault;
        std::size_t count;
    };

    double chance(std::uint64_t what) const;
    void mark(TimeFate& fate, TimeFault fault) const;
    std::optional<TimeFault> doomed();

    std::uint64_t seed;
    std::uint64_t number = 0;  // of the request
    double chances[timeFaults] = {};
    std::deque<Doom> dooms;
    TimeDelays ways;
};

}  // namespace TimeSim
