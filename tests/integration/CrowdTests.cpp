// Several drivers in one process, each a panel of its own, on one frame.

#include "Studio.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace FrameDriver::Testing {
namespace {

using PanelSim::Heard;
using PanelSim::PanelHost;

constexpr std::size_t panelCount = 8;

class Crowd : public Studio {
  protected:
    void SetUp() override {
        frame->start();
        for (std::size_t index = 0; index < panelCount; ++index) {
            panels.push_back(makePanel(static_cast<int>(index)));
            panels.back()->start();
        }
        for (auto const& each : panels)
            ASSERT_TRUE(meets(*each, Heard::tid, "SOURCE16.NAME", "Remote 2"));
    }
    void TearDown() override {
        for (auto const& each : panels)
            each->stop();
        EXPECT_TRUE(frameTells("closed reason=\"bye\"", panelCount));
    }
    void expectAllShow(std::string const& sid, std::string const& value) {
        for (auto const& each : panels)
            EXPECT_TRUE(meets(*each, Heard::sid, sid, value));
    }

    std::vector<std::unique_ptr<PanelHost>> panels;
};

TEST_F(Crowd, EightPanelsShareTheFrameAndKeepTheirOwnState) {
    for (std::size_t index = 0; index < panelCount; ++index)
        EXPECT_TRUE(frameTells("connected from=" + panelAddress.text() + ":" +
                               std::to_string(6200 + 2 * index)));

    for (std::size_t index = 0; index < panelCount; ++index)
        raise(*panels[index], "MEMORY.SELECT", {{"VAL", std::to_string(index + 10).c_str()}});
    for (std::size_t index = 0; index < panelCount; ++index) {
        EXPECT_TRUE(meets(*panels[index], Heard::sid, "MEMORY.SELECT", std::to_string(index + 10)));
    }
    // The register that a panel selected is the one that it recalls.
    raise(*panels[5], "MEMORY.SELECTED.RECALL");
    EXPECT_TRUE(frameTells("< event eid=64 did=35000000 data=\"\\x00\\x0f\""));

    raise(*panels[3], "ME2.PGM.SRC13");
    expectAllShow("ME2.PGM.SRC13", "ON");
    operatorSets(10, 0x24000010, 8);
    expectAllShow("ME2.PGM.SRC13", "OFF");
    expectAllShow("ME2.PGM.SRC8", "ON");
}

TEST_F(Crowd, AllAtOnceEveryPanelEndsWithTheFramesState) {
    std::vector<std::thread> hands;
    for (std::size_t index = 0; index < panelCount; ++index) {
        hands.emplace_back([this, index] {
            auto const bus = "AUX" + std::to_string(index % 4 + 1) + ".SRC";
            for (std::size_t source = 0; source < 40; ++source)
                raise(*panels[index], bus + std::to_string((source + index) % 17));
        });
    }
    for (auto& hand : hands)
        hand.join();
    EXPECT_EQ(frame->record().count("< set pid=40"), 40U * panelCount);
    for (std::uint32_t aux = 0; aux < 4; ++aux) {
        expectAllShow("AUX" + std::to_string(aux + 1) + ".SOURCE",
                      frameValue(40, 0x18000000 + aux));
    }
}

}  // namespace
}  // namespace FrameDriver::Testing
