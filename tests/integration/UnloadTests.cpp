// Whatever the network does just then, the driver can be told to stop and has stopped soon.

#include "Stand.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

namespace FrameDriver::Testing {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t panelsAtOnce = 50;

/// What goes on while the panel is told to stop.
using Trouble = void (*)(Stand&);

constexpr Trouble troubles[] = {
    [](Stand&) {},
    [](Stand& stand) { playShow(stand); },
    [](Stand& stand) { stand.frame.disconnect(); },
    [](Stand& stand) { stand.frame.stop(); },
    [](Stand& stand) { stand.frame.freeze(true); },
    [](Stand& stand) { stand.frame.refuse(true), stand.frame.disconnect(); },
    [](Stand& stand) { stand.frame.mute(true), stand.frame.disconnect(); },
    [](Stand& stand) { stand.frame.delay(milliseconds(400)), playShow(stand); },
    [](Stand& stand) { stand.frame.sendGarbage(FrameSim::Garbage::random); },
    [](Stand& stand) { stand.frame.operate(500); },
};

/// 0 to 3500 ms: all that the driver does by itself comes round in that time.
class Unload : public testing::TestWithParam<int> {};

TEST_P(Unload, AtAnyMomentIsSoonDone) {
    Installation const installation("127.0.0.1");
    Stands stands;
    for (std::size_t index = 0; index < panelsAtOnce; ++index)
        stands.push_back(std::make_unique<Stand>(static_cast<int>(index)));
    std::mt19937 seeds(static_cast<unsigned>(GetParam()));
    std::vector<std::mt19937> randoms;
    for (std::size_t index = 0; index < panelsAtOnce; ++index) {
        randoms.emplace_back(seeds());
        stands[index]->startPanel(installation);
    }
    onAll(stands, [&](Stand& stand, std::size_t place) {
        auto& random = randoms[place];
        auto const wait = [&random] { std::this_thread::sleep_for(milliseconds(random() % 1750)); };
        wait();
        std::thread hand(
            [&, trouble = troubles[random() % std::size(troubles)]] { trouble(stand); });
        wait();
        auto const start = steady_clock::now();
        stand.panel->stop();
        EXPECT_LT(steady_clock::now() - start, milliseconds(5000));
        hand.join();
    });
}

// Two hundred in all.
INSTANTIATE_TEST_SUITE_P(Seeds, Unload, testing::Range(1, 5));

}  // namespace
}  // namespace FrameDriver::Testing
