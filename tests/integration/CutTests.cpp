// The connection breaks at every place where it can. The panel comes back by itself, and then
// shows what the frame holds, whatever has become of that meanwhile.

#include "Stand.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace FrameDriver::Testing {
namespace {

using FrameSim::ConnectionCount;
using FrameSim::Way;
using Truth = std::vector<std::string>;
using Cuts = std::vector<FrameSim::Cut>;

/// A panel that comes back waits for most of the time, so there may be many of them.
constexpr std::size_t standCount = 100;

std::string shown(FrameSim::Cut const& cut) {
    return std::string(cut.way == Way::toPanel ? "to the panel" : "from the panel") + ", message " +
           std::to_string(cut.message) + ", byte " + std::to_string(cut.byte);
}

/// The boundary ahead of each message of either way that `whole` has and `before` hadn't yet.
/// They count from what `before` had.
Cuts boundaries(ConnectionCount const& before, ConnectionCount const& whole) {
    Cuts cuts;
    for (auto message = before.toPanel.messages; message < whole.toPanel.messages; ++message)
        cuts.push_back({Way::toPanel, message - before.toPanel.messages + 1, 0});
    for (auto message = before.fromPanel.messages; message < whole.fromPanel.messages; ++message)
        cuts.push_back({Way::fromPanel, message - before.fromPanel.messages + 1, 0});
    return cuts;
}

class Cut : public testing::Test {
  protected:
    void TearDown() override { stopAll(stands); }

    /// The cuts are shared out among all stands; `once` makes one of them.
    template <typename Once>
    void makeAll(Cuts const& cuts, Once once) {
        onAll(stands, [&](Stand& stand, std::size_t place) {
            std::mt19937 random(static_cast<unsigned>(place));
            for (auto at = place; at < cuts.size(); at += stands.size()) {
                SCOPED_TRACE(shown(cuts[at]));
                once(stand, cuts[at], random);
            }
        });
    }

    /// The next connection is cut, and no sooner than it is made: from its beginning.
    void cutNext(Stand& stand, FrameSim::Cut const& cut, std::mt19937& random) {
        auto const next = stand.connection().client + 1;
        ASSERT_TRUE(stand.frame.cut(cut));
        stand.frame.disconnect();
        ASSERT_TRUE(stand.waitForEnd(next));
        ++cutInTime;
        expectReturn(stand, next, random);
    }

    /// The present connection is cut, counted from now, while `act` goes on.
    template <typename Act>
    void cutPresent(Stand& stand, FrameSim::Cut const& cut, std::mt19937& random, Act act) {
        auto const present = orderPresent(stand, cut);
        act(stand);
        // The panel may have had less to say than at the rehearsal.
        if (stand.waitForEnd(present, std::chrono::milliseconds(100)))
            ++cutInTime;
        else
            stand.frame.disconnect();
        ASSERT_TRUE(stand.waitForEnd(present));
        expectReturn(stand, present, random);
    }

    /// Orders the cut, counted from now; the present connection's number.
    static std::uint32_t orderPresent(Stand& stand, FrameSim::Cut const& cut) {
        for (;;) {
            auto const present = stand.connection();
            auto place = cut;
            place.client = present.client;
            place.message +=
                cut.way == Way::toPanel ? present.toPanel.messages : present.fromPanel.messages;
            // A sign of life may have crossed in between.
            if (stand.frame.cut(place))
                return present.client;
        }
    }

    /// The frame changes while nobody listens.
    static void expectReturn(Stand& stand, std::uint32_t lost, std::mt19937& random) {
        stand.changeFrame(random);
        EXPECT_EQ(stand.waitForTruth(lost + 1), Truth());
    }

    Installation installation{"127.0.0.1"};
    Stands stands = makeStands(installation, standCount);
    std::atomic<std::size_t> cutInTime{0};
};

TEST_F(Cut, AtEveryMessageOfAConnectionsBeginning) {
    auto const cuts = boundaries({}, stands[0]->connection());
    ASSERT_GT(cuts.size(), 3U * 92);
    makeAll(cuts, [this](Stand& stand, FrameSim::Cut const& cut, std::mt19937& random) {
        cutNext(stand, cut, random);
    });
    EXPECT_EQ(cutInTime, cuts.size());
}

TEST_F(Cut, AtEveryMessageOfAShow) {
    auto const before = stands[0]->connection();
    playShow(*stands[0]);
    ASSERT_EQ(stands[0]->waitForTruth(1), Truth());
    auto const cuts = boundaries(before, stands[0]->connection());
    ASSERT_GT(cuts.size(), 3U * 14);
    makeAll(cuts, [this](Stand& stand, FrameSim::Cut const& cut, std::mt19937& random) {
        cutPresent(stand, cut, random, playShow);
    });
    EXPECT_GE(cutInTime, cuts.size() * 3 / 4);
}

// A set, its acknowledgement and its update.
TEST_F(Cut, AtEveryByteOfAnExchange) {
    Cuts cuts;
    for (std::size_t byte = 0; byte <= 27; ++byte)
        cuts.push_back({Way::fromPanel, 1, byte});
    for (std::size_t byte = 0; byte <= 13; ++byte)
        cuts.push_back({Way::toPanel, 1, byte});
    for (std::size_t byte = 1; byte <= 23; ++byte)
        cuts.push_back({Way::toPanel, 2, byte});
    makeAll(cuts, [this](Stand& stand, FrameSim::Cut const& cut, std::mt19937& random) {
        cutPresent(stand, cut, random, [](Stand& panels) {
            auto const now = panels.frame.frame().value({10, 0x24000110})->integer();
            panels.raise("ME2.PST.SRC" + std::to_string((now + 1) % 17));
        });
    });
    EXPECT_EQ(cutInTime, cuts.size());
}

}  // namespace
}  // namespace FrameDriver::Testing
