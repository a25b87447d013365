#include "Decorating.h"

#include <gtest/gtest.h>

#include <string>

// What no author thinks of, through every word: the text of a missing state key, nothing at all,
// a very long text, and bytes beyond ASCII.

namespace FrameDriver::Template {
namespace {

std::string const longText(5000, 'x');
constexpr std::string_view highBytes = "\xE9\xFF\x92";

State const state{{"VIDEO.FRAMERATE", "25"},
                  {"SETTINGS.AUTO.TRANSRATE.DISPLAY", "TIME"},
                  {"EMEM.E.LATEST.EFFDUR", "2"},
                  {"KEY", "1"},
                  {"LOCKED.KEY", "OFF"},
                  {"ROUTER.R.NEXTID", "2"},
                  {"R0.NAME", "CAM"},
                  {"ME2.PRIMARY.TRANSI.FADERDIRECTION.LOCK", "OFF"}};

std::vector<std::string_view> const values{"INVALID", "", longText, highBytes};

void expectAll(std::string_view word, std::string_view result) {
    for (auto const value : values) {
        SCOPED_TRACE(std::string(word) + " on " + std::string(value.substr(0, 10)));
        EXPECT_EQ(decorate(word, value, state), result);
    }
}

TEST(HostileValues, CountAsZeroWhereANumberIsRead) {
    for (auto const& [word, result] :
         std::vector<Row>{{"scale:2", "0"},
                          {"round", "0"},
                          {"hexToDecimal", "0"},
                          {"decimalToHex", "0"},
                          {"decimalUnsignedToHex", "0"},
                          {"bitmask=ff,set=ON,clear=OFF", "OFF"},
                          {"aggregate=KEY,min=0,max=9", "1"},
                          {"mappingCorrector=48", "0"},
                          {"priorityExtractor=2", ""},
                          {"priorityExtractor=1", "12345678"},
                          {"leverarm=1,bank=0,emem=true", "0"},
                          {"format:float_as_integer", "0"},
                          {"format:screenunit", "0.000"},
                          {"format:seconds_to_ememledbar,me=E", "0"},
                          {"format:seconds_to_frames", "0"},
                          {"format:seconds_to_timecode,SS:FF:*N/F", "00:00:  N"},
                          {"format:seconds_to_timecode,SS:FF:*", "00:00: "},
                          {"format:seconds_to_autotrans", "0.00"},
                          {"format:frames_to_seconds", "0"},
                          {"format:timecode_to_seconds", "0"},
                          {"format:frames_to_timecode", "00:00:00:00"},
                          {"format:frames_to_timecode,DROPFRAME", "00:00:00;00"},
                          {"format:fields_to_timecode", "00:00:00.00"}})
        expectAll(word, result);
}

TEST(HostileValues, AreNotFoundWhereSomethingIsLookedUp) {
    for (auto const& [word, result] :
         std::vector<Row>{{"enum:1=>ON,$default=>OFF", "OFF"},
                          {"backgroundEnumToName", "UTIL2"},
                          {"backgroundNameToEnum", "5"},
                          {"transitionElementCombiner", "0"},
                          {"priorityCombiner=NEXT", "0"},
                          {"isSplit", "OFF"},
                          {"routerIdLookUp=R", ""},
                          {"isEqualTo:KEY", "false"},
                          {"currentClipLength", "0"},
                          {"isSequenceComplete", "false"},
                          {"clipstackElement=0,field=itemId", ""},
                          {"logicalSourceListExtractor", ""},
                          {"nextElementExtractor", ""},
                          {"nextElementRemover", ""},
                          {"directionSelector=1,bank=0,emem=false", ""},
                          {"directionSelector=2,bank=0,emem=false", "UP"}})
        expectAll(word, result);
}

TEST(HostileValues, AreHandedOnWhereTheValueIsKept) {
    for (auto const* word : {"increment", "decrement", "enum:1=>ON", "logicalMachineNumber",
                             "format:none", "width=0,padding=0", "mappingCorrector=0"}) {
        for (auto const value : values)
            EXPECT_EQ(decorate(word, value, state), value) << word;
    }
}

TEST(HostileValues, AreWhollyPartOfTheResultWhereItIsBuiltFromThem) {
    EXPECT_EQ(decorate("format:percent", longText), longText + ".0%");
    EXPECT_EQ(decorate("format:degree", highBytes), "\xE9\xFF\x92.0\xB0");
    EXPECT_EQ(decorate("stringToHex", "INVALID"), "494e56414c4944");
    EXPECT_EQ(decorate("stringToHex", highBytes), "ffffffe9ffffffffffffff92");
    EXPECT_EQ(decorate("stringToHex", longText).size(), 2 * longText.size());
    EXPECT_EQ(decorate("width=5,padding= ", highBytes), "  \xE9\xFF\x92");
    EXPECT_EQ(decorate("width=5000,padding=0", longText), longText);
    EXPECT_EQ(decorate("width=5001,padding=\x92", longText), "\x92" + longText);
    EXPECT_EQ(decorate("isEmpty", longText), "false");
    EXPECT_EQ(decorate("isEqualTo:KEY", longText, {{"KEY", longText}}), "true");
    EXPECT_EQ(decorate("nextElementExtractor", longText + " " + longText), longText);
    EXPECT_EQ(decorate("nextElementRemover", "1 " + longText), longText);
}

// Keys that don't fit the room on the stack are keys all the same.
TEST(HostileValues, ArePartOfStateKeysOfAnyLength) {
    std::string const armed = longText + ".TRANSI.KEY1.NEXT";
    EXPECT_EQ(decorate("transitionElementCombiner", longText, {{armed, "ON"}}), "2");
    std::string const priority = longText + ".TRANSI.KEY2.PRIORITY." + longText;
    EXPECT_EQ(decorate("priorityCombiner=" + longText, longText, {{priority, "1"}}), "1");
    std::string const machine = "MACHINE\xE9\xFF\x92.MARKOUT";
    EXPECT_EQ(decorate("currentClipLength", highBytes, {{machine, "7"}}), "7");
    std::string const stack = "DEVICE" + longText + ".CLIP_STACK";
    EXPECT_EQ(decorate("clipstackElement=1,field=itemId", longText, {{stack, "7::\x92::0>>"}}),
              "7");
    EXPECT_EQ(decorate("clipstackBuilder=none,offset=0", longText + ">", {{stack, "7::\x92::0>>"}}),
              "7::\x92::0>>");
}

TEST(HostileValues, AClipMayHaveAnyNameWithoutMarks) {
    for (auto const& value : {longText, std::string(highBytes)}) {
        EXPECT_EQ(decorate("clipstackBuilder=insert,offset=0", "1>7::" + value + "::0"),
                  "7::" + value + "::0>>");
    }
    for (auto const value : values)
        EXPECT_EQ(decorate("clipstackBuilder=insert,offset=0", value), "0::::0>>");
}

}  // namespace
}  // namespace FrameDriver::Template
