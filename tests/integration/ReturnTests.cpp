// How soon a panel is right again, and how soon it is dark. The driver looks about every 1050 ms:
// once to see the loss, once to connect, once to subscribe.

#include "Stand.h"
#include "SwitcherTruth.h"
#include "sims/frame/ModelFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Testing {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Truth = std::vector<std::string>;

#ifdef QFD_SANITIZED
constexpr int slowness = 4;
#else
constexpr int slowness = 1;
#endif

constexpr milliseconds rightAgainWithin{slowness * 5000};
constexpr milliseconds darkWithin{3000 + 1050};  // found by the client, then seen by the driver

class Return : public testing::Test {
  protected:
    Return() { stand.startPanel(installation); }
    void SetUp() override { ASSERT_EQ(stand.waitForTruth(1), Truth()); }

    /// From now on the panel may come back.
    void expectRightAgain(std::uint32_t connection) {
        auto const start = steady_clock::now();
        EXPECT_EQ(stand.waitForTruth(connection), Truth());
        EXPECT_LT(steady_clock::now() - start, rightAgainWithin);
    }
    bool shows(char const* sid, char const* value) {
        return stand.panel->record().wait({PanelSim::Heard::sid, sid, value, {}}, Stand::patience);
    }
    void expectDark() {
        EXPECT_TRUE(shows("FRAME.CONNECTED", "OFF"));
        auto& record = stand.panel->record();
        // The last to go.
        EXPECT_TRUE(record.wait({PanelSim::Heard::tid, "SHOW.NAME", "", {}}, Stand::patience));
        for (auto const& event : record.state()) {
            bool const lit =
                event.value == "ON" && event.name.find("DELEGATE") == std::string::npos;
            EXPECT_FALSE(lit) << shown(event);
        }
        EXPECT_EQ(record.tid("CAMERA1.NAME"), "");
        EXPECT_EQ(record.tid("ME1.PGM.NAME"), "");
        EXPECT_EQ(record.tid("MEMORY.NAME.42"), "");
    }

    Installation installation{"127.0.0.1"};
    Stand stand{0};
    std::mt19937 random{1};
};

TEST_F(Return, AfterACutThePanelIsRightAgainSoon) {
    playShow(stand);
    stand.frame.disconnect();
    stand.changeFrame(random);
    expectRightAgain(2);
}

TEST_F(Return, AKilledFrameLeavesNothingLitAndMayComeBackOtherwise) {
    playShow(stand);
    ASSERT_TRUE(shows("MEMORY.USED.42", "ON"));
    stand.frame.stop();
    expectDark();
    // Without the registers, cameras and names that the one before had.
    FrameSim::Restart other;
    other.model = FrameSim::sampleSwitcher();
    stand.frame.restart(std::move(other));
    for (int i = 0; i < 5; ++i)
        stand.changeFrame(random);
    stand.frame.start();
    expectRightAgain(2);
}

TEST_F(Return, AFrameThatRestartsAtOnceIsShownAsItIsNow) {
    playShow(stand);
    FrameSim::Restart other;
    other.model = FrameSim::sampleSwitcher();
    other.values = {{{10, 0x24000000}, FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, 11)}};
    stand.frame.restart(std::move(other));
    expectRightAgain(2);
    EXPECT_EQ(stand.panel->record().sid("ME1.PGM.SRC11"), "ON");
    EXPECT_EQ(stand.panel->record().sid("MEMORY.USED.42"), "OFF");
}

TEST_F(Return, AFrozenFrameIsNoticedAndShownAsItIsOnceItGoesOn) {
    playShow(stand);
    ASSERT_TRUE(shows("MEMORY.USED.42", "ON"));
    auto const start = steady_clock::now();
    stand.frame.freeze(true);
    ASSERT_TRUE(shows("SYSTEM.REBOOT_INDICATION", "INV"));
    EXPECT_LT(steady_clock::now() - start, darkWithin + milliseconds(500));
    expectDark();
    stand.changeFrame(random);
    stand.frame.freeze(false);
    EXPECT_EQ(lastingLies(stand.frame.frame(), stand.panel->record(), Stand::patience), Truth());
}

// A subscription that the frame loses is the one fault that nothing tells of. The next
// connection heals it, and the comparison is there to find it.
TEST_F(Return, ALostSubscriptionLastsUntilTheNextConnection) {
    ASSERT_TRUE(stand.frame.dropSubscription(1, FrameSim::ParameterKey{31, 0x03000001}));
    stand.frame.frame().set({31, 0x03000001}, 0,
                            FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, 77));
    stand.raise("ME2.PST.SRC9");
    // The last that comes of it.
    ASSERT_TRUE(stand.panel->record().wait({PanelSim::Heard::tid, "ME2.PST.NAME", "Playback 3", {}},
                                           Stand::patience));
    EXPECT_EQ(lies(stand.frame.frame(), stand.panel->record()),
              Truth{"SID ME2.RATE.FIELDS is 25, not 77"});
    stand.frame.disconnect();
    expectRightAgain(2);
}

}  // namespace
}  // namespace FrameDriver::Testing
