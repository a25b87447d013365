#include "StreamPeers.h"
#include "template/ContextStore.h"
#include "template/DecoratorTable.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

// For each decorator two lines: the driver's own, and the same work done with string streams.
// The counter "allocations" is per call and includes the result's own text, where that doesn't
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

}  // namespace
}  // namespace FrameDriver::Template::Bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (!FrameDriver::Template::Bench::registerAll())
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
