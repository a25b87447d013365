#pragma once

#include "sims/frame/DeliveryQueue.h"
#include "sims/frame/Faults.h"

#include <array>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace FrameSim {

/// All that may go wrong between the server and its sockets, in one place. The server asks it
/// before it accepts, reads or writes, and passes every payload and every message to it on
/// their way out. docs/faults.md is the page on it.
///
/// Thread: the server's own.
class FaultPlan {
  public:
    bool refusing = false;  ///< connections are refused; those that stand stay
    bool frozen = false;    ///< nothing is accepted, read or written; all stays open
    bool mute = false;      ///< connections are accepted, and then nothing is read of them
    Delay delay;            ///< between an answer and its way out
    std::optional<std::uint16_t> welcomeVersion;  ///< what a welcome says instead of its own

    bool mayAccept() const { return !refusing && !frozen; }
    bool mayRead() const { return !frozen; }
    bool mayWrite() const { return !frozen; }

    /// Everything that is left to chance from now on goes by this. 1 at first.
    void seed(std::uint32_t number) { random.seed(number); }

    /// Takes the place of what was ordered for the same sort of payload.
    void order(Damage const& wanted);
    /// Spoils a payload if it is the turn of its sort: "truncated" or "corrupted"; empty if not.
    std::string_view spoil(Damage::What what, std::string& payload);

    std::string garbage(Garbage kind);

    void deliver(DeliveryQueue& queue, Lane lane, std::string bytes, Line line, TimePoint now);

  private:
    std::size_t below(std::size_t bound) { return random() % bound; }
    std::chrono::milliseconds lateness(Lane lane);
    Lane behind(Lane lane) const;

    std::mt19937 random{1};
    std::array<Damage, 2> damages{Damage{.count = 0}, Damage{.count = 0}};  // by Damage::What
};

}  // namespace FrameSim
