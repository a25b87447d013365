#include "tests/support/HandClock.h"
#include "tools/MonkeyTestRunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Tools {
namespace {

using MonkeyTest::FIDGenerator;
using Testing::HandClock;

/// Keeps the names that a monkey raises.
class Cage : public FIDHandler {
  public:
    bool handleFID(std::string const& name, FIDParameterList const& parameters) override {
        std::lock_guard const guard(lock);
        names.push_back(name + (parameters.empty() ? "" : " with parameters"));
        if (names.back() == failing)
            throw std::runtime_error("enough");
        return true;
    }
    std::vector<std::string> take() {
        std::lock_guard const guard(lock);
        return std::exchange(names, {});
    }

    std::string failing;

  private:
    std::mutex lock;
    std::vector<std::string> names;
};

class Monkey : public testing::Test {
  protected:
    ~Monkey() override {
        runner.stop(nullptr);
        clock.release();
        runner.waitUntilEnded(boost::posix_time::pos_infin);
    }

    HandClock clock;
    Cage cage;
    MonkeyTestRunner runner{clock};
};

TEST_F(Monkey, WithoutAFileRaisesNullFidInBurstsOfTwoToFive) {
    runner.setFIDHandler(&cage);
    runner.start(nullptr);
    std::set<std::size_t> sizes;
    for (int burst = 0; burst < 200; ++burst) {
        long const pause = burst == 0 ? clock.sleeping() : clock.next();
        EXPECT_GE(pause, 0);
        EXPECT_LE(pause, 500);
        auto const names = cage.take();
        sizes.insert(names.size());
        EXPECT_EQ(std::ranges::count(names, "NULL_FID"), static_cast<long>(names.size()));
    }
    EXPECT_EQ(sizes, (std::set<std::size_t>{2, 3, 4, 5}));
}

TEST_F(Monkey, WithoutAHandlerOnlyPauses) {
    runner.start(nullptr);
    clock.sleeping();
    EXPECT_GE(clock.next(), 0);
    EXPECT_TRUE(runner.isRunning());
}

TEST_F(Monkey, PicksFromAllThatWasAddedAndWhatCameTwiceCountsTwice) {
    runner.addGenerators({FIDGenerator("A"), FIDGenerator("B")});
    runner.addGenerators({FIDGenerator("B")});
    runner.setFIDHandler(&cage);
    runner.start(nullptr);
    clock.sleeping();
    for (int burst = 0; burst < 600; ++burst)
        clock.next();
    auto const names = cage.take();
    auto const first = std::ranges::count(names, "A");
    auto const second = std::ranges::count(names, "B");
    EXPECT_EQ(first + second, static_cast<long>(names.size()));
    EXPECT_GT(second, first * 3 / 2);
    EXPECT_LT(second, first * 3);
}

TEST_F(Monkey, ASecondStartRunsASecondMonkeyAndOneStopEndsBoth) {
    runner.setFIDHandler(&cage);
    clock.release();
    runner.start(nullptr);
    runner.start(nullptr);
    TimedSyncEvent stopped(0);
    runner.stop(&stopped);
    EXPECT_TRUE(runner.waitUntilEnded(boost::posix_time::seconds(30)));
    EXPECT_FALSE(runner.isRunning());
}

TEST_F(Monkey, StartsAgainAfterAStop) {
    runner.setFIDHandler(&cage);
    clock.release();
    for (int round = 0; round < 3; ++round) {
        runner.start(nullptr);
        runner.stop(nullptr);
        ASSERT_TRUE(runner.waitUntilEnded(boost::posix_time::seconds(30)));
    }
}

TEST_F(Monkey, GeneratorsMayBeAddedWhileItRuns) {
    runner.setFIDHandler(&cage);
    clock.release();
    runner.start(nullptr);
    for (int round = 0; round < 300; ++round)
        runner.addGenerators({FIDGenerator("A" + std::to_string(round))});
    runner.stop(nullptr);
    EXPECT_TRUE(runner.waitUntilEnded(boost::posix_time::seconds(30)));
}

TEST_F(Monkey, AnExceptionEndsItWithItsFlagStillSet) {
    cage.failing = "NULL_FID";
    runner.setFIDHandler(&cage);
    runner.start(nullptr);
    EXPECT_TRUE(runner.waitUntilEnded(boost::posix_time::seconds(30)));
    EXPECT_EQ(cage.take(), std::vector<std::string>{"NULL_FID"});
    EXPECT_TRUE(runner.isRunning());
}

}  // namespace
}  // namespace FrameDriver::Tools
