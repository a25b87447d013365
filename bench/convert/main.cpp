// Converts a stream of texts with dictionaries of growing size and prints how long a text takes.
//
//     bench_convert [--entries N] [--texts N] [--seed N] [--shape fids|issues|adversarial]

#include "bench/convert/Dictionary.h"
#include "bench/convert/Peers.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <string>
#include <string_view>
#include <vector>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::vector<double>;

struct Options {
    std::vector<std::size_t> sizes{100, 1'000, 10'000, 100'000};
    std::vector<Shape> shapes{std::begin(allShapes), std::end(allShapes)};
    std::size_t texts = 100'000;
    std::uint64_t seed = 1;
};

// The plain walk takes milliseconds a text with large dictionaries; it stops here, and the line
// tells how far it came.
constexpr std::chrono::seconds longestPass{3};

double nanoseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::nano>(duration).count();
}

// What reading the clock adds to each figure.
double clockCost() {
    Nanoseconds costs(10'001);
    for (auto& cost : costs) {
        auto const start = Clock::now();
        cost = nanoseconds(Clock::now() - start);
    }
    std::nth_element(costs.begin(), costs.begin() + 5'000, costs.end());
    return costs[5'000];
}

double quantile(Nanoseconds& times, double part) {
    if (times.empty())
        return 0;
    auto const place = static_cast<std::ptrdiff_t>(part * static_cast<double>(times.size() - 1));
    std::nth_element(times.begin(), times.begin() + place, times.end());
    return times[static_cast<std::size_t>(place)];
}

struct Figures {
    Nanoseconds times;  // of each text, the clock's own cost taken off
    double mean = 0;    // of a pass without looking at the clock
};

std::size_t volatile resultsSeen;

template <typename Peer>
Figures measure(Peer& peer, std::vector<std::string_view> const& texts, double clock) {
    Figures figures;
    std::size_t results = 0;
    auto const begin = Clock::now();
    std::size_t done = 0;
    for (; done < texts.size() && Clock::now() - begin < longestPass; done += 100) {
        for (auto i = done; i < std::min(done + 100, texts.size()); ++i)
            results += peer.convert(texts[i]);
    }
    done = std::min(done, texts.size());
    figures.mean = nanoseconds(Clock::now() - begin) / static_cast<double>(done);
    for (std::size_t i = 0; i < done; ++i) {
        auto const start = Clock::now();
        results += peer.convert(texts[i]);
        figures.times.push_back(nanoseconds(Clock::now() - start) - clock);
    }
    resultsSeen = results;
    return figures;
}

void print(std::string_view name, Figures figures, std::vector<bool> const& walks) {
    Nanoseconds missed;
    for (std::size_t i = 0; i < figures.times.size(); ++i) {
        if (walks[i])
            missed.push_back(figures.times[i]);
    }
    std::string stopped;
    if (figures.times.size() < walks.size())
        stopped.append("  |  stopped after ")
            .append(std::to_string(figures.times.size()))
            .append(" texts");
    std::printf("  %-18.*s median %7.0f  p99 %7.0f  mean %7.0f  |  missed: median %7.0f  p99 "
                "%7.0f%s\n",
                static_cast<int>(name.size()), name.data(), quantile(figures.times, 0.5),
                quantile(figures.times, 0.99), figures.mean, quantile(missed, 0.5),
                quantile(missed, 0.99), stopped.c_str());
}

// Which texts no kept list answers, so that they go through the tree.
template <typename Texts>
std::vector<bool> findWalks(std::vector<Entry> const& entries, Texts const& texts) {
    namespace conversion = FrameDriver::Conversion;
    std::vector<conversion::TemplateConversion> conversions;
    conversion::GroupNode root(nullptr, 0);
    for (auto const& entry : entries)
        root.add({templateOf(entry.from), {templateOf(entry.to)}});
    conversion::LookupIndex index(root);
    conversion::CandidateCache recent;
    conversion::SearchedText searched;
    conversion::ConversionPlan::Captures captures;
    std::vector<bool> walks;
    for (auto const text : texts) {
        searched.assign(text);
        bool answered = false;
        for (std::size_t age = 0; age < recent.size() && !answered; ++age)
            answered = !recent[age].empty() && recent[age].front()->match(searched, captures) !=
                                                   conversion::ConversionPlan::Match::no;
        walks.push_back(!answered);
        if (!answered) {
            index.collect(searched, recent.spare());
            recent.insert();
        }
    }
    return walks;
}

// Both know the same dictionary, so where one entry answers they must agree.
void compare(Engine& engine, Floor const& floor, std::vector<std::string_view> const& texts) {
    std::size_t one = 0;
    std::size_t several = 0;
    for (auto const text : texts) {
        auto const found = engine.results(text);
        auto const expected = floor.results(text);
        one += found.size() == 1 ? 1 : 0;
        several += found.size() > 1 ? 1 : 0;
        if (!std::equal(found.begin(), found.end(), expected.begin(), expected.end())) {
            std::printf("different results for %.*s: %zu, floor %zu\n",
                        static_cast<int>(text.size()), text.data(), found.size(), expected.size());
            std::exit(1);
        }
    }
    std::printf("  %zu texts match one entry, %zu several, %zu none\n", one, several,
                texts.size() - one - several);
}

template <typename Peer>
void load(Peer& peer, std::vector<Entry> const& entries) {
    auto const before = mallinfo2().uordblks;
    auto const begin = Clock::now();
    for (auto const& entry : entries)
        peer.add(entry);
    auto const filled = Clock::now();
    peer.prepare();
    auto const done = Clock::now();
    auto const memory = static_cast<double>(mallinfo2().uordblks - before);
    std::printf("  %-18.*s filled in %.1f ms, index made in %.1f ms, %.0f bytes an entry\n",
                static_cast<int>(Peer::name.size()), Peer::name.data(),
                nanoseconds(filled - begin) / 1e6, nanoseconds(done - filled) / 1e6,
                memory / static_cast<double>(entries.size()));
}

template <typename Peer>
void run(Peer& peer, std::vector<std::string_view> const& texts, std::vector<bool> const& walks,
         double clock) {
    print(Peer::name, measure(peer, texts, clock), walks);
}

void runAll(Shape shape, std::size_t size, Options const& options, double clock) {
    auto const entries = makeDictionary(shape, size, options.seed);
    Stream const stream(shape, entries, options.texts, options.seed);
    auto const& texts = stream.texts();
    auto const walks = findWalks(entries, texts);
    std::printf("%s, %zu entries, %.1f %% of the texts missed by the kept lists\n",
                std::string(nameOf(shape)).c_str(), size,
                100.0 * static_cast<double>(std::count(walks.begin(), walks.end(), true)) /
                    static_cast<double>(walks.size()));
    Floor floor(shape);
    Engine engine;
    Uncached uncached;
    PlainWalk plain;
    load(floor, entries);
    load(engine, entries);
    load(uncached, entries);
    load(plain, entries);
    compare(engine, floor, texts);
    run(floor, texts, walks, clock);
    run(engine, texts, walks, clock);
    run(uncached, texts, walks, clock);
    run(plain, texts, walks, clock);
    std::fflush(stdout);
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
    auto const clock = bench::clockCost();
    std::printf("nanoseconds per text; reading the clock costs %.0f, taken off but for the mean\n",
                clock);
    for (auto const shape : options.shapes) {
        for (auto const size : options.sizes)
            bench::runAll(shape, size, options, clock);
    }
}
