#pragma once

#include "sims/time/FieldClock.h"
#include "sims/time/FieldTime.h"
#include "sims/time/TimeFaultPlan.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace TimeSim {

/// A datagram on its way to a panel.
struct OutgoingReply {
    Moment due{};  ///< not to be sent earlier
    std::string bytes;
    std::string faults;  ///< the names of what is wrong with it, between "+"; empty if nothing
};

struct TimeAnswer {
    std::vector<OutgoingReply> replies;  ///< in the order in which they are to go
    std::string silence;                 ///< why there is none: see `TimeKeeper::answer`
};

/// The frame's field time service without its socket: requests in, replies out, by a clock that
/// the caller gives.
///
///     TimeKeeper keeper;
///     auto const answer = keeper.answer(request, now);
///     // send each of answer.replies when it is due
///
/// Thread: one at a time.
class TimeKeeper {
  public:
    /// How many panels it knows at once; of more it forgets the one not heard longest.
    static constexpr std::size_t panelLimit = 64;

    TimeKeeper() : TimeKeeper(FieldClock()) {}
    explicit TimeKeeper(FieldClock fieldClock, std::uint64_t seed = 1)
        : fields(fieldClock), plan(seed) {}

    /// What comes of a datagram that arrives at `now`. `panel` tells panels apart; a reply that
    /// is held or stale is always one to the same panel.
    ///
    /// No replies: "no request: ..." for what is none, "off", "silent", "lost", or "held".
    TimeAnswer answer(std::string_view datagram, Moment now, std::string_view panel = {});

    FieldClock& clock() { return fields; }
    FieldClock const& clock() const { return fields; }
    TimeFaultPlan& faults() { return plan; }
    TimeFaultPlan const& faults() const { return plan; }

    /// Whether there is a field time service at all. When it comes back, the clock goes on as if
    /// it had never been away; see `FieldClock::restart` for a frame that was switched off.
    void setPresent(bool on) { present = on; }
    bool isPresent() const { return present; }
    /// Hears everything and says nothing.
    void setSilent(bool on) { silent = on; }
    bool isSilent() const { return silent; }
    /// How many stale replies come at once.
    void setStaleCount(std::size_t count) { staleCount = count; }
    /// From `now` on the period goes up by `by` and back again, in turn, each time `every` has
    /// passed. Zero ends it with the period as it was before. `every` is at least 10 ms, or cut
    /// to that.
    void wander(Moment now, std::chrono::nanoseconds by, std::chrono::nanoseconds every);
    /// Ends all that is wrong with the service: it is present and not silent, loses and delays
    /// nothing, and its boundaries are exact. The clock keeps its period, drift and phase.
    void recover(Moment now);

  private:
    /// What a panel has been told, for the faults that come back to it.
    struct Panel {
        std::string name;
        std::string last;  ///< the reply to the request before
        std::string held;  ///< waits for the next request
    };
    struct Wander {
        std::chrono::nanoseconds by{};
        std::chrono::nanoseconds every{};
        Moment next{};
        bool up = false;
    };

    Panel& panelOf(std::string_view name);
    void reply(FieldTime request, Moment now, Panel& panel, TimeAnswer& answer);
    void wanderUntil(Moment now);

    FieldClock fields;
    TimeFaultPlan plan;
    std::list<Panel> panels;  // the last one heard first
    Wander wandering;
    std::size_t staleCount = 1;
    bool present = true;
    bool silent = false;
};

}  // namespace TimeSim
