#include "sims/frame/TrafficRecord.h"

#include <gtest/gtest.h>

#include <thread>

namespace FrameSim {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

Line note(std::string what) { return {.what = std::move(what)}; }

TEST(TrafficRecord, KeepsLinesInOrderAndPrintsEach) {
    Texts printed;
    TrafficRecord record([&](Line const& line) { printed.push_back(line.text()); });
    record.add(note("one"));
    record.add(note("two"));
    EXPECT_EQ(record.texts(), (Texts{"one", "two"}));
    EXPECT_EQ(record.lines(), (std::vector<Line>{note("one"), note("two")}));
    EXPECT_EQ(printed, record.texts());
    record.clear();
    EXPECT_EQ(record.texts(), Texts{});
}

TEST(TrafficRecord, KeepsTheNewestUpToItsLimit) {
    TrafficRecord record({}, 2);
    for (auto const* const what : {"one", "two", "three"}) {
        record.add(note(what));
    }
    EXPECT_EQ(record.texts(), (Texts{"two", "three"}));
    int printed = 0;
    TrafficRecord nothing([&](Line const&) { ++printed; }, 0);
    nothing.add(note("one"));
    EXPECT_EQ(nothing.texts(), Texts{});
    EXPECT_EQ(printed, 1);
}

TEST(TrafficRecord, WaitsForTheNthLineThatContainsAPart) {
    TrafficRecord record;
    record.add(note("a tick"));
    EXPECT_TRUE(record.waitFor("tick", 1, 0ms));
    EXPECT_FALSE(record.waitFor("tick", 2, 0ms));
    EXPECT_FALSE(record.waitFor("tock", 1, 1ms));
    std::thread other([&] {
        record.add(note("a tock"));
        record.add(note("a tick"));
    });
    EXPECT_TRUE(record.waitFor("tick", 2));
    other.join();
    EXPECT_EQ(record.count("tick"), 2U);
    EXPECT_EQ(record.count("t"), 3U);
}

TEST(TrafficRecord, AWaitSurvivesLinesThatAreDropped) {
    TrafficRecord record({}, 10);
    std::thread other([&] {
        for (int i = 0; i < 1000; ++i) {
            record.add(note(i % 100 == 99 ? "tick" : "noise"));
        }
        record.add(note("end"));
    });
    EXPECT_TRUE(record.waitFor("end"));
    other.join();
    EXPECT_EQ(record.texts().size(), 10U);
}

}  // namespace
}  // namespace FrameSim
