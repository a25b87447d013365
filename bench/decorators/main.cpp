#include "StreamPeers.h"
#include "template/ContextStore.h"
#include "template/DecoratorTable.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <vector>

// For each decorator the driver's own, and the same work done with string streams, in one row of a
// Markdown table. Allocations are per call and include the result's own text, where that doesn't
// fit into a string object. Both sides must agree on the result before anything is measured.

namespace {

std::size_t allocations = 0;

}  // namespace

void* operator new(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace FrameDriver::Template::Bench {
namespace {

std::unique_ptr<SegmentDecorator> make(std::string_view word) {
    for (auto const& row : decoratorTable()) {
        if (word.starts_with(row.keyword))
            return row.make(word);
    }
    return nullptr;
}

template <typename Call>
void measure(benchmark::State& run, Call call) {
    std::size_t const before = allocations;
    for (auto _ : run) {
        auto result = call();
        benchmark::DoNotOptimize(result);
    }
    run.counters["allocations"] = benchmark::Counter(static_cast<double>(allocations - before),
                                                     benchmark::Counter::kAvgIterations);
}

void fill(ContextStore& store) {
    for (auto const& [key, text] : sampleState())
        store.set(key, text);
}

void driver(benchmark::State& run, StreamPeer const& peer) {
    ContextStore store;
    fill(store);
    auto const decorator = make(peer.word);
    std::string const value(peer.value);
    measure(run, [&] { return decorator->decorate(value, &store); });
}

void streams(benchmark::State& run, StreamPeer const& peer) {
    PlainState state = sampleState();
    std::string const value(peer.value);
    measure(run, [&] { return peer.decorate(value, state); });
}

bool agree(StreamPeer const& peer) {
    ContextStore store;
    fill(store);
    PlainState state = sampleState();
    std::string const value(peer.value);
    std::string const ours = make(peer.word)->decorate(value, &store);
    std::string const theirs = peer.decorate(value, state);
    if (ours != theirs)
        std::fprintf(stderr, "%s: \"%s\", but with streams \"%s\"\n",
                     std::string(peer.word).c_str(), ours.c_str(), theirs.c_str());
    return ours == theirs;
}

bool registerAll() {
    bool good = true;
    for (auto const peers : {numberPeers(), timePeers(), statePeers()}) {
        for (auto const& peer : peers) {
            std::string const word(peer.word);
            good = agree(peer) && good;
            benchmark::RegisterBenchmark((word + "/driver").c_str(), driver, peer);
            benchmark::RegisterBenchmark((word + "/streams").c_str(), streams, peer);
        }
    }
    return good;
}

// Prints a row when both sides of a decorator are there. Several repetitions count by their
// fastest: nothing but other work on the machine makes one slower.
class TableReporter : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(Context const&) override {
        std::printf("| Decorator | driver, ns | streams, ns | times faster | allocations "
                    "| with streams |\n|---|---|---|---|---|---|\n");
        return true;
    }

    void ReportRuns(std::vector<Run> const& runs) override {
        Side side;
        bool measured = false;
        for (auto const& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred)
                continue;
            side.time = std::min(side.time, run.GetAdjustedCPUTime());
            side.allocations = run.counters.at("allocations");
            measured = true;
        }
        if (!measured)
            return;  // the library's own summary
        auto const name = runs.front().run_name.function_name;
        if (name.ends_with("/driver")) {
            driverSide = side;
            return;
        }
        auto const word = name.substr(0, name.rfind('/'));
        std::printf("| `%s` | %.1f | %.1f | %.1f | %.0f | %.0f |\n", word.c_str(), driverSide.time,
                    side.time, side.time / driverSide.time, driverSide.allocations,
                    side.allocations);
        std::fflush(stdout);
    }

  private:
    struct Side {
        double time = std::numeric_limits<double>::max();
        double allocations = 0;
    };
    Side driverSide;
};

}  // namespace
}  // namespace FrameDriver::Template::Bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (!FrameDriver::Template::Bench::registerAll())
        return 1;
    FrameDriver::Template::Bench::TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
