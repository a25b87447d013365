// The way of FIDs and issues through the built module, with the sample dictionaries and a frame.

#include "Studio.h"

#include <optional>
#include <string>
#include <vector>

namespace FrameDriver::Testing {
namespace {

class Switcher : public Studio {
  protected:
    void TearDown() override {
        if (panel)
            panel->stop();
        EXPECT_EQ(frame->record().count("garbage"), 0U);
        EXPECT_EQ(frame->record().count("lost"), 0U);
    }
};

TEST_F(Switcher, AFIDReachesTheFrameAndItsAnswerThePanel) {
    startBoth();
    ASSERT_NE(panel->record().sid("ME1.PST.SRC5"), "ON");
    raise("ME1.PST.SRC5");
    // It returned, so the frame has acknowledged it.
    EXPECT_EQ(frame->record().count("#1 < set pid=10 did=24000100 flag=0 type=UInt16 value=5"), 1U);
    EXPECT_EQ(frameValue(10, 0x24000100), "5");
    EXPECT_TRUE(shows("ME1.PST.SRC5", "ON"));
    EXPECT_TRUE(shows("ME1.PST.SRC2", "OFF"));
    EXPECT_TRUE(shows("ME1.PST.SOURCE", "5"));
    EXPECT_TRUE(reads("ME1.PST.NAME", "Camera 5"));
}

TEST_F(Switcher, AFIDThatNobodyRegisteredEndsAtTheDoor) {
    startBoth();
    auto const before = frame->record().count("< set");
    raise("ME3.PST.SRC5");
    raise("DO.DARKEN.CROSSPOINTS");
    raise("ME2.PST.SRC7");
    EXPECT_TRUE(shows("ME2.PST.SRC7", "ON"));
    EXPECT_EQ(frame->record().count("< set"), before + 1);
    EXPECT_EQ(panel->record().sid("ME1.PGM.SRC1"), "ON");
}

TEST_F(Switcher, EveryItemOfAListIsShown) {
    startBoth();
    EXPECT_TRUE(reads("SOURCE0.NAME", "Black"));
    EXPECT_TRUE(reads("SOURCE0.NICK", "BLA"));
    EXPECT_TRUE(reads("SOURCE3.NAME", "Camera 3"));
    EXPECT_TRUE(reads("SOURCE4.NICK", "CAM4"));
    EXPECT_EQ(panel->record().tid("SOURCE17.NAME"), std::nullopt);
}

TEST_F(Switcher, AListItemThatThePanelWritesComesBack) {
    startBoth();
    raise("CAMERA.SET", {{"ID", "1"}, {"CONNECTED", "true"}, {"NAME", "Studio, left"}});
    EXPECT_TRUE(frameTells("< setlist action=1 lid=32 number=1 did=62000000 itemId=1"));
    EXPECT_TRUE(reads("CAMERA1.NAME", "Studio, left"));
    raise("CAMERA.CLEAR", {{"ID", "1"}});
    EXPECT_TRUE(reads("CAMERA1.NAME", ""));
    EXPECT_TRUE(shows("CAMERA1.CONNECTED", "OFF"));
}

TEST_F(Switcher, ACutSwapsTheBusesAndTallyFollows) {
    startBoth();
    ASSERT_TRUE(shows("ME1.PGM.SRC1", "ON"));
    ASSERT_TRUE(shows("ME1.PST.SRC2", "ON"));
    raise("ME1.PST.SRC5");
    raise("ME1.CUT");
    EXPECT_EQ(frame->record().count("#1 < event eid=40 did=03000000 data=\"\""), 1U);
    EXPECT_TRUE(shows("ME1.PGM.SRC5", "ON"));
    EXPECT_TRUE(shows("ME1.PGM.SRC1", "OFF"));
    EXPECT_TRUE(shows("ME1.PST.SRC1", "ON"));
    EXPECT_TRUE(shows("TALLY.SRC5", "ON"));
    raise("ME1.CUT");
    EXPECT_TRUE(shows("TALLY.SRC5", "OFF"));
    EXPECT_TRUE(shows("ME1.PST.SRC5", "ON"));
}

TEST_F(Switcher, AnAutoTransitionIsFollowedToItsEnd) {
    startBoth();
    raise("ME1.AUTO");
    EXPECT_TRUE(frameTells("> update pid=34 did=03000000 type=Bool value=true"));
    frame->frame().advanceFields(25);
    EXPECT_TRUE(frameTells("> update pid=34 did=03000000 type=Bool value=false", 2));
    EXPECT_TRUE(shows("ME1.PGM.SRC2", "ON"));
    EXPECT_TRUE(shows("ME1.PST.SRC1", "ON"));
}

TEST_F(Switcher, AnotherOperatorsChangeIsShown) {
    startBoth();
    operatorSets(40, 0x18000002, 9);
    EXPECT_TRUE(shows("AUX3.SRC9", "ON"));
    operatorSets(40, 0x18000002, 4);
    EXPECT_TRUE(shows("AUX3.SRC9", "OFF"));
    EXPECT_TRUE(shows("AUX3.SRC4", "ON"));
    EXPECT_TRUE(reads("AUX3.NAME", "Camera 4"));
    EXPECT_EQ(frame->record().count("< set"), 0U);
}

TEST_F(Switcher, WhatThePanelStoredDecidesWhatAButtonDoes) {
    startBoth();
    raise("TAKE.MODE", {{"VAL", "AUTO"}});
    raise("ME1.TAKE");
    EXPECT_EQ(frame->record().count("< event eid=41 did=03000000"), 1U);
    raise("TAKE.MODE", {{"VAL", "CUT"}});
    raise("ME2.TAKE");
    EXPECT_EQ(frame->record().count("< event eid=40 did=03000001"), 1U);
    EXPECT_EQ(frame->record().count("< event"), 2U);
}

TEST_F(Switcher, WhatTheFrameToldIsFoundAgainByAFID) {
    startBoth();
    raise("ME1.PGM.NAMED", {{"NAME", "Camera 3"}});
    EXPECT_TRUE(shows("ME1.PGM.SRC3", "ON"));
    EXPECT_EQ(frameValue(10, 0x24000000), "3");
}

TEST_F(Switcher, ARefusedRequestChangesNothingAndTheNextOneGoesThrough) {
    startBoth();
    raise("MEMORY.RECALL", {{"REG", "42"}});
    EXPECT_EQ(frame->record().count("< event eid=64 did=35000000 data=\"\\x00*\""), 1U);
    EXPECT_EQ(frame->record().count("#1 > ack status=3 cause=\"not possible\""), 1U);
    raise("ME1.PST.SRC5");
    EXPECT_TRUE(shows("ME1.PST.SRC5", "ON"));
}

TEST_F(Switcher, EveryByteOfATextGoesThereAndBack) {
    startBoth();
    std::string every;
    for (int byte = 1; byte < 256; ++byte) {
        // 0x92 closes a group, so no value can hold it.
        if (byte != 0x92)
            every += static_cast<char>(byte);
    }
    raise("SHOW.NAME.SET", {{"NAME", every.c_str()}});
    EXPECT_EQ(frameValue(51, 0x01000001), FrameSim::quoted(every));
    EXPECT_TRUE(reads("SHOW.NAME", every));
}

TEST_F(Switcher, AnIssueMaySendOnTheThreadThatBroughtIt) {
    // Aux 2 follows aux 1, and the panel sees aux 2 alone.
    std::string const aux = "<deviceId><EncodingType>18</EncodingType>"
                            "<AuxVideoVideoKeyBusIDType>%</AuxVideoVideoKeyBusIDType>"
                            "<eEMemLevel>0</eEMemLevel><SuiteIDType>0</SuiteIDType></deviceId>";
    auto const parameter = [&aux](char number) {
        auto device = aux;
        device[device.find('%')] = number;
        return "<paramId>40</paramId>" + device +
               "<data datatype=\"UInt16\">{@source}</data><flag>absolute</flag>";
    };
    installation.useDictionaries(
        "",
        "<conversion><from xsi:type=\"cplParameterIssue\">" + parameter('0') +
            "</from><to xsi:type=\"cplSetMessage\">" + parameter('1') +
            "</to></conversion>\n<conversion><from xsi:type=\"cplParameterIssue\">" +
            parameter('1') +
            "</from><to xsi:type=\"sid\"><id>SECOND</id><value>{@source}</value></to>"
            "</conversion>\n",
        "<fid>NONE</fid>\n",
        "<subscription xsi:type=\"parameterSubscription\"><paramId>40</paramId>"
        "<deviceId>1800000[0-1]</deviceId><flag>immediate</flag></subscription>\n");
    frame->start();
    startPanel();
    // Both subscriptions are in place: the state at the start has come round.
    ASSERT_TRUE(frameTells("< set pid=40 did=18000001 flag=0 type=UInt16 value=0"));
    ASSERT_TRUE(shows("SECOND", "0"));
    for (int source = 1; source <= 16; ++source) {
        operatorSets(40, 0x18000000, source);
        EXPECT_TRUE(shows("SECOND", std::to_string(source)));
    }
    // One for the state at the start.
    EXPECT_EQ(frame->record().count("< set pid=40 did=18000001 flag=0 type=UInt16"), 17U);
}

TEST_F(Switcher, TheConnectionLeavesFromThePanelsOwnAddressAndPort) {
    panel = makePanel(21);
    frame->start();
    panel->start();
    EXPECT_TRUE(frameTells("#1 connected from=" + panelAddress.text() + ":6242"));
    EXPECT_TRUE(frameTells("#1 < hello version=1 name=\"Velmar Panel\""));
}

TEST_F(Switcher, TheStartIsLoggedInItsOrder) {
    startPanel();
    // What hangs on the build, and what the observer and the time client say meanwhile.
    auto texts = log.lines();
    std::erase_if(texts, [](std::string const& line) {
        return line.find("ersion ") != line.npos || line.find("From ") != line.npos ||
               line.find("Built by") != line.npos || line.find("Build ") != line.npos ||
               line.find("frame") != line.npos || line.find("TimeClient") != line.npos;
    });
    std::vector<std::string> const start = {
        "info: Tavrine Frame Driver",
        "info: All rights reserved.",
        "info: Tavrine Frame Driver Initializing.",
        "info: Loading command conversions.",
        "info: CPL Send Ack Read Timeout = 500ms",
        "info: Resetting the panel to a clean state.",
        "info: Registering for panel FIDs.",
        "info: Initialization complete.",
    };
    EXPECT_EQ(texts, start);
    EXPECT_TRUE(shows("LOADED", ""));
}

}  // namespace
}  // namespace FrameDriver::Testing
