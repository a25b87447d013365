#include "sims/panel/PanelRecord.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace PanelSim;
using namespace std::chrono_literals;

FIDParameterList list(std::initializer_list<FIDParameter> parameters) {
    FIDParameterList result;
    for (auto const& parameter : parameters) {
        result.add(parameter);
    }
    return result;
}

std::vector<std::string> lines(std::vector<PanelEvent> const& events) {
    std::vector<std::string> result;
    for (auto const& event : events) {
        result.push_back(shown(event));
    }
    return result;
}

using Lines = std::vector<std::string>;

TEST(PanelRecord, KeepsTheLastValueOfAStateAndOfAText) {
    PanelRecord record;
    EXPECT_EQ(record.sid("A"), std::nullopt);
    record.setState("A", "1");
    record.setText("A", "text");
    record.setState("A", "2");
    EXPECT_EQ(record.sid("A"), "2");
    EXPECT_EQ(record.tid("A"), "text");
    EXPECT_EQ(record.sid("a"), std::nullopt);
}

TEST(PanelRecord, PrintsBytesAsTheyCame) {
    PanelRecord record;
    record.setState("A", std::string("\222\0\xff =", 5));
    record.setText("", "");
    record.sendFunction("F", list({{"P", "x y"}, {"", "\xb0"}}));
    EXPECT_EQ(lines(record.history()),
              (Lines{std::string("SID A = \222\0\xff =", 13), "TID  = ", "FID F P=x y =\xb0"}));
}

TEST(PanelRecord, ShowsStatesAheadOfTextsByName) {
    PanelRecord record;
    record.setText("A1", "t");
    record.setState("B2", "b");
    record.setState("A2", "a");
    EXPECT_EQ(lines(record.state()), (Lines{"SID A2 = a", "SID B2 = b", "TID A1 = t"}));
    EXPECT_EQ(lines(record.state("A*")), (Lines{"SID A2 = a", "TID A1 = t"}));
    EXPECT_EQ(lines(record.state("?2")), (Lines{"SID A2 = a", "SID B2 = b"}));
    EXPECT_EQ(lines(record.state("A")), Lines{});
}

TEST(PanelRecord, TellsTheListenerInTheOrderOfTheRecord) {
    Lines heard;
    PanelRecord record([&heard](PanelEvent const& event) { heard.push_back(shown(event)); });
    record.setState("A", "1");
    record.sendFunction("F", {});
    record.setText("T", "x");
    EXPECT_EQ(heard, (Lines{"SID A = 1", "FID F", "TID T = x"}));
    EXPECT_EQ(heard, lines(record.history()));
}

TEST(PanelRecord, AStateThatIsShownAlreadyMeetsAWait) {
    PanelRecord record;
    record.setState("A", "1");
    record.setText("T", "");
    EXPECT_TRUE(record.wait({Heard::sid, "A", "1", {}}, 0ms));
    EXPECT_TRUE(record.wait({Heard::sid, "A", std::nullopt, {}}, 0ms));
    EXPECT_TRUE(record.wait({Heard::tid, "T", "", {}}, 0ms));
    EXPECT_FALSE(record.wait({Heard::sid, "A", "2", {}}, 0ms));
    EXPECT_FALSE(record.wait({Heard::tid, "A", std::nullopt, {}}, 0ms));
}

TEST(PanelRecord, AStateThatIsPastDoesNotMeetAWait) {
    PanelRecord record;
    record.setState("A", "1");
    record.setState("A", "2");
    EXPECT_FALSE(record.wait({Heard::sid, "A", "1", {}}, 0ms));
}

TEST(PanelRecord, AWaitConsumesTheOldestFIDThatFits) {
    PanelRecord record;
    record.sendFunction("F", list({{"N", "1"}}));
    record.sendFunction("F", list({{"N", "2"}, {"M", "x"}}));
    record.sendFunction("F", list({{"N", "1"}, {"M", "y"}}));
    EXPECT_TRUE(record.wait({Heard::fid, "F", {}, list({{"M", "x"}})}, 0ms));
    EXPECT_FALSE(record.wait({Heard::fid, "F", {}, list({{"M", "x"}})}, 0ms));
    EXPECT_TRUE(record.wait({Heard::fid, "F", {}, {}}, 0ms));
    EXPECT_FALSE(record.wait({Heard::fid, "F", {}, list({{"N", "1"}, {"M", "z"}})}, 0ms));
    EXPECT_TRUE(record.wait({Heard::fid, "F", {}, list({{"M", "y"}})}, 0ms));
    EXPECT_FALSE(record.wait({Heard::fid, "F", {}, {}}, 0ms));
}

TEST(PanelRecord, AWaitIsWokenByAnotherThread) {
    PanelRecord record;
    std::thread other([&record] { record.setState("A", "1"); });
    EXPECT_TRUE(record.wait({Heard::sid, "A", "1", {}}, 60s));
    other.join();
}

TEST(PanelRecord, TakesAllCallsFromSeveralThreadsAtOnce) {
    constexpr int each = 500;
    std::atomic<int> told = 0;
    PanelRecord record([&told](PanelEvent const&) { ++told; });
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&record, t] {
            for (int i = 0; i < each; ++i) {
                record.setState("S" + std::to_string(t), std::to_string(i));
                record.setText("T", std::to_string(i));
                record.sendFunction("F", {});
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(record.count(), 4U * 3 * each);
    EXPECT_EQ(told, 4 * 3 * each);
    EXPECT_EQ(record.sid("S3"), "499");
}

TEST(PanelRecord, HistoryFromAnEventOn) {
    PanelRecord record;
    record.setState("A", "1");
    auto const before = record.count();
    record.setState("A", "2");
    EXPECT_EQ(lines(record.history(before)), Lines{"SID A = 2"});
    EXPECT_EQ(lines(record.history(7)), Lines{});
}

TEST(PanelRecord, ForgetsTheOldestBeyondItsBounds) {
    PanelRecord record;
    for (std::size_t i = 0; i < PanelRecord::historyBound + 2; ++i) {
        record.sendFunction("F" + std::to_string(i), {});
    }
    EXPECT_EQ(record.history().size(), PanelRecord::historyBound);
    EXPECT_EQ(record.history(0).front().name, "F2");
    EXPECT_EQ(record.history(record.count() - 1).front().name,
              "F" + std::to_string(PanelRecord::historyBound + 1));
    EXPECT_FALSE(record.wait({Heard::fid, "F2", {}, {}}, 0ms));
    auto const oldestKept = record.count() - PanelRecord::unconsumedBound;
    EXPECT_FALSE(record.wait({Heard::fid, "F" + std::to_string(oldestKept - 1), {}, {}}, 0ms));
    EXPECT_TRUE(record.wait({Heard::fid, "F" + std::to_string(oldestKept), {}, {}}, 0ms));
}

TEST(PanelRecord, TheOperationsThatNoDriverCallsChangeNothing) {
    PanelRecord record;
    IStateSink& sink = record;
    sink.setStateNumber("A", 1.0F);
    sink.reservedState2(nullptr, nullptr);
    sink.reservedState3(nullptr, nullptr);
    sink.reservedState4(nullptr);
    EXPECT_EQ(record.count(), 0U);
}

}  // namespace
