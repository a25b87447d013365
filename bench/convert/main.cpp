// Converts a stream of texts with dictionaries of growing size, by the engine and its peers in
// turns, and prints how long a text takes.
//
//     bench_convert [--entries N] [--texts N] [--seed N] [--shape fids|issues|adversarial]
//                   [--patience SECONDS]
//
// `--patience` is how long a peer may take to compile a dictionary, and over the texts.

#include "bench/convert/Contest.h"
#include "bench/convert/Dictionary.h"
#include "bench/convert/Peers.h"
#include "bench/convert/RegexPeers.h"
#include "bench/convert/Report.h"
#include "bench/convert/Trial.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {
namespace {

struct Options {
    std::vector<std::size_t> sizes{100, 1'000, 10'000, 100'000};
    std::vector<Shape> shapes{std::begin(allShapes), std::end(allShapes)};
    std::size_t texts = 100'000;
    std::uint64_t seed = 1;
    std::chrono::seconds patience{60};
};

// Of the time that a peer is given to compile, over the texts.
constexpr int partForTexts = 20;

// Which texts no kept list answers, so that they go through the tree.
std::vector<bool> findMisses(std::vector<Entry> const& entries, Texts texts) {
    namespace conversion = FrameDriver::Conversion;
    conversion::GroupNode root(nullptr, 0);
    for (auto const& entry : entries)
        root.add({templateOf(entry.from), {templateOf(entry.to)}});
    conversion::LookupIndex index(root);
    conversion::CandidateCache recent;
    conversion::SearchedText searched;
    conversion::ConversionPlan::Captures captures;
    std::vector<bool> misses;
    for (auto const text : texts) {
        searched.assign(text);
        bool answered = false;
        for (std::size_t age = 0; age < recent.size() && !answered; ++age)
            answered = !recent[age].empty() && recent[age].front()->match(searched, captures) !=
                                                   conversion::ConversionPlan::Match::no;
        misses.push_back(!answered);
        if (!answered) {
            index.collect(searched, recent.spare());
            recent.insert();
        }
    }
    return misses;
}

// All know the same dictionary, so they must agree. A kept list can answer without the entries
// that it doesn't hold, but here each text's own list holds all that match.
template <typename Peer>
void compare(Peer& peer, Floor const& floor, Texts texts) {
    for (auto const text : texts) {
        auto const found = peer.results(text);
        auto const expected = floor.results(text);
        if (!std::equal(found.begin(), found.end(), expected.begin(), expected.end())) {
            std::fprintf(stderr, "%s: different results for %.*s: %zu, floor %zu\n",
                         std::string(Peer::name).c_str(), static_cast<int>(text.size()),
                         text.data(), found.size(), expected.size());
            std::exit(1);
        }
    }
}

template <typename Peer>
void load(Peer& peer, std::vector<Entry> const& entries) {
    for (auto const& entry : entries)
        peer.add(entry);
    peer.prepare();
}

// Enters the peer if it can be compiled in time, and says so otherwise.
template <typename Peer>
void tryToEnter(Contest& contest, Peer& peer, std::vector<Entry> const& entries, Floor const& floor,
                Texts texts, std::chrono::seconds patience) {
    for (auto const& entry : entries)
        peer.add(entry);
    auto const complaint = tryOut([&] { return peer.compile(); }, patience);
    if (!complaint.empty())
        return contest.enterAbsent(Peer::name, complaint);
    peer.compile();
    peer.prepare();
    // The first texts show whether it can do the work at all.
    peer.convert(texts.front());
    auto const begin = std::chrono::steady_clock::now();
    std::size_t tried = 0;
    while (tried < std::min<std::size_t>(texts.size(), 200) &&
           std::chrono::steady_clock::now() - begin < patience / partForTexts)
        peer.convert(texts[tried++]);
    if (peer.refusals() != 0)
        return contest.enterAbsent(Peer::name, "gives up on texts: out of the memory it may take");
    compare(peer, floor, texts.first(std::min<std::size_t>(tried, 200)));
    contest.enter(peer);
}

void runAll(Shape shape, std::size_t size, Options const& options, TickingClock const& clock,
            Report& report) {
    auto const entries = makeDictionary(shape, size, options.seed);
    Stream const stream(shape, entries, options.texts, options.seed);
    Texts const texts(stream.texts());
    auto const misses = findMisses(entries, texts);
    Floor floor(shape);
    Engine engine;
    Uncached uncached;
    PlainWalk plain;
    RegexSet set;
    Hyperscan hyperscan;
    load(floor, entries);
    load(engine, entries);
    load(uncached, entries);
    load(plain, entries);
    compare(engine, floor, texts);
    Contest contest(clock);
    contest.enter(floor);
    contest.enter(engine);
    contest.enter(uncached);
    tryToEnter(contest, hyperscan, entries, floor, texts, options.patience);
    tryToEnter(contest, set, entries, floor, texts, options.patience);
    contest.enter(plain);
    contest.run(texts, std::max(std::chrono::seconds(1), options.patience / partForTexts));
    report.add(shape, size, misses, contest.results());
}

Options readOptions(int count, char** words) {
    Options options;
    for (int i = 1; i + 1 < count; i += 2) {
        std::string_view const name = words[i];
        auto const number = std::strtoull(words[i + 1], nullptr, 10);
        if (name == "--entries")
            options.sizes = {static_cast<std::size_t>(number)};
        else if (name == "--texts")
            options.texts = static_cast<std::size_t>(number);
        else if (name == "--seed")
            options.seed = number;
        else if (name == "--patience")
            options.patience = std::chrono::seconds(number);
        else if (name == "--shape")
            std::erase_if(options.shapes,
                          [&](Shape shape) { return nameOf(shape) != words[i + 1]; });
    }
    return options;
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
    auto const options = bench::readOptions(count, words);
    bench::TickingClock const clock;
    std::printf("Nanoseconds per text, streams of %zu texts, seed %llu. The clock ticks in steps "
                "of %.0f; reading it costs %.0f, which is taken off.\n",
                options.texts, static_cast<unsigned long long>(options.seed), clock.step,
                clock.cost);
    bench::Report report(clock);
    for (auto const shape : options.shapes) {
        report.beginShape(shape);
        for (auto const size : options.sizes)
            bench::runAll(shape, size, options, clock, report);
    }
    report.printTargets();
}
