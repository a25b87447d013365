#include "bench/convert/Contest.h"

#include <algorithm>

namespace bench {

namespace {

// Short enough for another program's burst to meet several peers.
constexpr std::size_t turn = 20'000;
// So many texts of the turn before come again, untimed: the peer is back in the processor's
// caches when it counts.
constexpr std::size_t warmUp = 2'000;
// How often the time is looked at.
constexpr std::size_t stride = 100;

}  // namespace

TickingClock::TickingClock() : cost(0), step(1'000) {
    Figures readings;
    for (int i = 0; i < 10'001; ++i) {
        auto const start = std::chrono::steady_clock::now();
        std::chrono::duration<double, std::nano> const taken =
            std::chrono::steady_clock::now() - start;
        readings.push_back(taken.count());
    }
    // Two neighbouring values of the clock; those one nanosecond apart are its rounding.
    std::sort(readings.begin(), readings.end());
    for (std::size_t i = 1; i < readings.size() / 2; ++i) {
        if (readings[i] - readings[i - 1] > 1.5)
            step = std::min(step, readings[i] - readings[i - 1]);
    }
    if (step == 1'000)
        step = 10;
    cost = quantile(readings, 0.5, step);
}

void Contest::run(Texts texts, std::chrono::seconds longest) {
    for (auto& contestant : contestants) {
        auto const begin = Clock::now();
        for (std::size_t i = 0; contestant.run && i < texts.size(); i += stride) {
            if (Clock::now() - begin > longest / 2)
                break;
            contestant.run(texts.subspan(i, std::min(stride, texts.size() - i)), false);
        }
        contestant.times.reserve(texts.size());
    }
    std::vector<Clock::duration> spent(contestants.size());
    for (std::size_t first = 0; first < texts.size(); first += turn) {
        auto const slice = texts.subspan(first, std::min(turn, texts.size() - first));
        for (std::size_t k = 0; k < contestants.size(); ++k) {
            auto& contestant = contestants[k];
            if (!contestant.run || contestant.times.size() < first)
                continue;
            auto const begin = Clock::now();
            for (auto i = first - std::min(first, warmUp); i < first; i += stride) {
                if (spent[k] + (Clock::now() - begin) <= longest)
                    contestant.run(texts.subspan(i, stride), false);
            }
            for (std::size_t i = 0; i < slice.size(); i += stride) {
                if (spent[k] + (Clock::now() - begin) > longest)
                    break;
                contestant.run(slice.subspan(i, std::min(stride, slice.size() - i)), true);
            }
            spent[k] += Clock::now() - begin;
        }
    }
}

}  // namespace bench
