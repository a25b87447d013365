#pragma once

#include "bench/support/Figures.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Peers that take turns with one stream of texts, so that whatever else the machine does meets
/// them all.
namespace bench {

using Texts = std::span<std::string_view const>;

/// The clock by which a text is timed.
struct TickingClock {
    TickingClock();
    double cost;  ///< what reading it adds to a figure, nanoseconds
    double step;  ///< what it advances by at least
};

struct Contestant {
    std::string name;
    std::string absence{};  ///< why it takes no part, or empty
    Figures times{};        ///< of the texts in their order, nanoseconds, without the clock's cost
    /// Converts the texts; appends to `times` only if `timed`.
    std::function<void(Texts, bool timed)> run{};
};

class Contest {
  public:
    explicit Contest(TickingClock const& usedClock) : clock(usedClock) {}

    template <typename Peer>
    void enter(Peer& peer) {
        auto& added = contestants.emplace_back(Contestant{std::string(Peer::name)});
        added.run = [this, &peer, place = contestants.size() - 1](Texts texts, bool timed) {
            if (timed)
                time(peer, texts, contestants[place].times);
            else
                for (auto const text : texts)
                    resultsSeen = resultsSeen + peer.convert(text);
        };
    }
    void enterAbsent(std::string_view name, std::string why) {
        contestants.push_back(Contestant{std::string(name), std::move(why)});
    }

    /// Once through the texts to get warm, each on its own; once by turns. A contestant that
    /// takes too long over its turns stops early, and has fewer figures.
    void run(Texts texts, std::chrono::seconds longest);

    std::vector<Contestant> const& results() const { return contestants; }

  private:
    using Clock = std::chrono::steady_clock;

    template <typename Peer>
    void time(Peer& peer, Texts texts, Figures& times) {
        for (auto const text : texts) {
            auto const start = Clock::now();
            resultsSeen = resultsSeen + peer.convert(text);
            std::chrono::duration<double, std::nano> const taken = Clock::now() - start;
            times.push_back(taken.count() - clock.cost);
        }
    }

    TickingClock clock;
    std::vector<Contestant> contestants;
    std::size_t volatile resultsSeen = 0;
};

}  // namespace bench
