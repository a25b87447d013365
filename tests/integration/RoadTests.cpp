// The road both ways, over the network.
#include "RoadFixture.h"

#include <vector>

using namespace FrameDriver::Testing;

namespace {

class Road : public RoadFixture {
  protected:
    void begin() {
        startFrame();
        startPanel();
        ASSERT_TRUE(connected());
    }
};

}  // namespace

TEST_F(Road, AFIDReachesTheFrameAndItsAnswerThePanel) {
    begin();
    panel->raise("ME1.PST.SRC5", {});
    EXPECT_TRUE(frame->record().waitFor("< set pid=10 did=24000100 flag=0 type=UInt16 value=5"));
    EXPECT_TRUE(shows("ME1.PST.SRC5", "ON"));
    EXPECT_TRUE(shows("ME1.PST.SRC2", "OFF"));
    EXPECT_TRUE(reads("ME1.PST.NAME", "Camera 5"));
}

TEST_F(Road, AFIDHasBeenAcknowledgedWhenTheCallReturns) {
    begin();
    panel->raise("ME1.PST.SRC6", {});
    auto const value = frame->frame().value({10, presetME1});
    ASSERT_TRUE(value);
    EXPECT_EQ(*value, FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, 6));
}

TEST_F(Road, AnUnregisteredFIDGoesNowhere) {
    begin();
    auto const before = frame->record().count("< set");
    panel->raise("ME9.PST.SRC5", {});
    panel->raise("ME1.PST.SRC4", {});
    EXPECT_TRUE(shows("ME1.PST.SRC4", "ON"));
    EXPECT_EQ(frame->record().count("< set"), before + 1);
}

TEST_F(Road, ACutSwapsTheBusesAndTheTalliesFollow) {
    begin();
    panel->raise("ME1.PST.SRC5", {});
    panel->raise("ME1.CUT", {});
    EXPECT_TRUE(frame->record().waitFor("< event eid=40 did=03000000"));
    EXPECT_TRUE(shows("ME1.PGM.SRC5", "ON"));
    EXPECT_TRUE(shows("ME1.PST.SRC1", "ON"));
    EXPECT_TRUE(shows("TALLY.SRC5", "ON"));
}

TEST_F(Road, AListWithSeveralItemsBecomesAsManyTexts) {
    begin();
    EXPECT_TRUE(reads("SOURCE0.NAME", "Black"));
    EXPECT_TRUE(reads("SOURCE5.NAME", "Camera 5"));
    EXPECT_TRUE(reads("SOURCE16.NAME", "Remote 2"));
}

TEST_F(Road, AnotherOperatorsChangeIsShown) {
    begin();
    operate(programME1, 7);
    EXPECT_TRUE(shows("ME1.PGM.SRC7", "ON"));
    EXPECT_TRUE(shows("ME1.PGM.SRC1", "OFF"));
    EXPECT_TRUE(reads("ME1.PGM.NAME", "Playback 1"));
}

// Both entries of the test's own dictionary run on the client library's callback thread, and the
// second send waits for its acknowledgement there.
TEST_F(Road, AnIssueLeadsToAFurtherSendOnTheCallbackThread) {
    directory.write("Configuration/SimulatorManifest.xml",
                    R"(<manifest xmlns="FrameDriver/Manifest"
        xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
        xsi:schemaLocation="FrameDriver/Manifest ./Schemas/Manifest.xsd"><moduleConfiguration>
        <cplSubscriptionList>Configuration/Crosspoints/Subscriptions.xml</cplSubscriptionList>
        <issueToSIDDictionary>Follow.xml</issueToSIDDictionary>
        </moduleConfiguration></manifest>)");
    directory.write("Follow.xml",
                    R"(<dictionary xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
        <conversion><from xsi:type="cplParameterIssue"><paramId>10</paramId><deviceId>
        <EncodingType>24</EncodingType><CtrlSurfaceID>0</CtrlSurfaceID><MEIdType>0</MEIdType>
        <eMEBusIDType>0</eMEBusIDType></deviceId><data datatype="UInt16">{@source}</data>
        <flag>absolute</flag></from>
        <to xsi:type="cplSetMessage"><paramId>40</paramId><deviceId>
        <EncodingType>18</EncodingType>
        <AuxVideoVideoKeyBusIDType>2</AuxVideoVideoKeyBusIDType><eEMemLevel>0</eEMemLevel>
        <SuiteIDType>0</SuiteIDType></deviceId><data datatype="UInt16">{@source}</data>
        <flag>absolute</flag></to>
        <to xsi:type="sid"><id>FOLLOWED</id><value>{@source}</value></to>
        </conversion></dictionary>)");
    startFrame();
    startPanel();
    ASSERT_TRUE(shows("FOLLOWED", "1"));
    operate(programME1, 9);
    EXPECT_TRUE(frame->record().waitFor("< set pid=40 did=18000002 flag=0 type=UInt16 value=9"));
    EXPECT_TRUE(shows("FOLLOWED", "9"));
    EXPECT_EQ(frame->frame().value({40, 0x18000002}),
              FrameSim::Value::ofInteger(FrameSim::DataType::UInt16, 9));
}

TEST_F(Road, EightPanelsOnOneFrameAllFollow) {
    startFrame();
    std::vector<std::unique_ptr<PanelSim::PanelHost>> panels;
    for (int index = 0; index < 8; ++index)
        panels.push_back(makePanel(index));
    for (auto& each : panels)
        ASSERT_TRUE(shows(*each, "FRAME.CONNECTED", "ON", patience));
    for (int index = 0; index < 8; ++index) {
        auto const source = std::to_string(index + 3);
        panels[static_cast<std::size_t>(index)]->raise("ME1.PST.SRC" + source, {});
        for (auto& each : panels)
            EXPECT_TRUE(shows(*each, "ME1.PST.SRC" + source, "ON", patience)) << "panel " << index;
    }
    EXPECT_EQ(frame->record().count("connected from="), 8U);
}

TEST_F(Road, ASlowFrameOnlyDelaysTheAnswer) {
    begin();
    frame->delay(std::chrono::milliseconds(100));
    panel->raise("ME1.PST.SRC5", {});
    EXPECT_TRUE(shows("ME1.PST.SRC5", "ON"));
    EXPECT_EQ(frame->record().count("connected from="), 1U);
}
