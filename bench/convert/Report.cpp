#include "bench/convert/Report.h"

#include "bench/convert/Peers.h"
#include "bench/convert/RegexPeers.h"

#include <algorithm>
#include <cstdio>

namespace bench {

namespace {

// "1.8 times at issues, 1000 entries"
std::string told(double value, std::string const& where) {
    char number[32];
    std::snprintf(number, sizeof number, "%.2f", value);
    return std::string(number) + " (" + where + ")";
}

std::string placeOf(Shape shape, std::size_t entries) {
    return std::string(nameOf(shape)) + ", " + std::to_string(entries);
}

}  // namespace

Report::Line const* Report::Round::find(std::string_view peer) const {
    auto const found = std::find_if(lines.begin(), lines.end(), [&](Line const& line) {
        return line.peer == peer && line.texts != 0;
    });
    return found == lines.end() ? nullptr : &*found;
}

Report::Line Report::lineOf(Contestant const& contestant, std::vector<bool> const& missed) const {
    Figures walked;
    for (std::size_t i = 0; i < contestant.times.size(); ++i) {
        if (missed[i])
            walked.push_back(contestant.times[i]);
    }
    auto const& times = contestant.times;
    return {contestant.name,
            times.size(),
            quantile(times, 0.5, clock.step),
            quantile(times, 0.99, clock.step),
            quantile(walked, 0.5, clock.step),
            quantile(walked, 0.99, clock.step)};
}

void Report::beginShape(Shape shape) {
    std::printf("\n%s:\n\n", std::string(nameOf(shape)).c_str());
    std::printf("| Entries | Peer | median | p99 | missed: median | missed: p99 "
                "| x floor | missed: x floor |\n|---|---|---|---|---|---|---|---|\n");
}

void Report::add(Shape shape, std::size_t entries, std::vector<bool> const& missed,
                 std::vector<Contestant> const& contestants) {
    auto& round = rounds.emplace_back(Round{shape, entries, {}});
    for (auto const& contestant : contestants)
        round.lines.push_back(lineOf(contestant, missed));
    for (auto const& contestant : contestants)
        printRow(round, contestant);
    std::fflush(stdout);
}

void Report::printRow(Round const& round, Contestant const& contestant) const {
    auto const* const line = round.find(contestant.name);
    auto const* const floor = round.find(Floor::name);
    if (!line || !floor) {
        std::printf("| %zu | %s | %s |\n", round.entries, contestant.name.c_str(),
                    contestant.absence.c_str());
        return;
    }
    auto name = line->peer;
    if (!contestant.absence.empty())
        name += ", " + contestant.absence;
    if (line->texts < round.find(Floor::name)->texts)
        name += ", stopped after " + std::to_string(line->texts) + " texts";
    std::printf("| %zu | %s | %.0f | %.0f | %.0f | %.0f | %.2f | %.2f |\n", round.entries,
                name.c_str(), line->median, line->late, line->missedMedian, line->missedLate,
                line->median / floor->median, line->missedMedian / floor->missedMedian);
}

Report::Ratios Report::againstPeer(std::string_view peer, std::string_view engine,
                                   std::size_t smallest, double Line::*peerFigure,
                                   double Line::*engineFigure) const {
    Ratios ratios;
    for (auto const& round : rounds) {
        auto const* const theirs = round.find(peer);
        auto const* const ours = round.find(engine);
        if (round.entries >= smallest && theirs && ours)
            ratios.push_back(
                {theirs->*peerFigure / (ours->*engineFigure), placeOf(round.shape, round.entries)});
    }
    return ratios;
}

Report::Ratios Report::againstSmaller(std::string_view engine) const {
    Ratios ratios;
    for (auto const& large : rounds) {
        for (auto const& small : rounds) {
            if (large.shape != small.shape || large.entries != 100'000 || small.entries != 1'000)
                continue;
            ratios.push_back({large.find(engine)->median / small.find(engine)->median,
                              std::string(nameOf(large.shape))});
        }
    }
    return ratios;
}

void Report::printTargets() const {
    auto const byValue = [](Ratio const& left, Ratio const& right) {
        return left.value < right.value;
    };
    auto const print = [&](char const* what, double target, bool atMost, Ratios const& ratios) {
        if (ratios.empty())
            return;
        auto const [least, most] = std::minmax_element(ratios.begin(), ratios.end(), byValue);
        auto const& worst = atMost ? *most : *least;
        bool const reached = atMost ? worst.value <= target : worst.value >= target;
        std::printf("| %s | %s %.1f | %s | %s |\n", what, atMost ? "at most" : "at least", target,
                    told(worst.value, worst.where).c_str(), reached ? "yes" : "**no**");
    };
    // For comparison, without a target.
    auto const printLeast = [&](char const* what, Ratios const& ratios) {
        if (ratios.empty())
            return;
        auto const& least = *std::min_element(ratios.begin(), ratios.end(), byValue);
        std::printf("| %s | | %s | |\n", what, told(least.value, least.where).c_str());
    };
    auto const inverse = [](Ratios ratios) {
        for (auto& ratio : ratios)
            ratio.value = 1 / ratio.value;
        return ratios;
    };
    auto const median = &Line::median;
    auto const missed = &Line::missedMedian;
    std::printf("\n| Times | Target | Worst | Reached |\n|---|---|---|---|\n");
    print("median of the floor", 2, true,
          inverse(againstPeer(Floor::name, Engine::name, 0, median, median)));
    print("median of the floor, texts that missed the kept lists", 3.5, true,
          inverse(againstPeer(Floor::name, Engine::name, 0, missed, missed)));
    print("median of the floor, kept lists left out", 3.5, true,
          inverse(againstPeer(Floor::name, Uncached::name, 0, median, median)));
    print("100,000 entries against 1,000, median", 1.5, true, againstSmaller(Engine::name));
    print("100,000 entries against 1,000, median without the kept lists", 1.5, true,
          againstSmaller(Uncached::name));
    print("faster than RE2::Set with captures, from 1,000 entries", 6, false,
          againstPeer(RegexSet::name, Engine::name, 1'000, median, median));
    printLeast("the same without the kept lists",
               againstPeer(RegexSet::name, Uncached::name, 1'000, median, median));
    print("faster than Hyperscan with captures, from 1,000 entries", 1.5, false,
          againstPeer(Hyperscan::name, Engine::name, 1'000, median, median));
    printLeast("the same without the kept lists",
               againstPeer(Hyperscan::name, Uncached::name, 1'000, median, median));
}

}  // namespace bench
