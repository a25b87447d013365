#include "RecordingContextStore.h"
#include "template/ContextStore.h"
#include "template/DecoratorTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

namespace FrameDriver::Template {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::unique_ptr<SegmentDecorator> make(std::string_view word) {
    for (auto const& row : decoratorTable()) {
        if (word.starts_with(row.keyword))
            return row.make(word);
    }
    return nullptr;
}

struct Entry {
    std::string_view key;
    std::string_view text;
};

/// The calls of one `decorate` on a store with these entries.
StoreCalls callsOf(std::string_view word, std::string const& value,
                   std::vector<Entry> const& state = {}) {
    ContextStore store;
    for (auto const& [key, text] : state)
        store.set(key, text);
    storeCalls().clear();
    make(word)->decorate(value, &store);
    return storeCalls();
}

/// Of those, the ones that write.
StoreCalls writesOf(std::string_view word, std::string const& value,
                    std::vector<Entry> const& state = {}) {
    StoreCalls writes;
    for (auto const& call : callsOf(word, value, state)) {
        if (call.starts_with("set "))
            writes.push_back(call);
    }
    return writes;
}

constexpr std::string_view selector = "directionSelector=1,bank=0,emem=false";
constexpr std::string_view lock = "ME1.PRIMARY.TRANSI.FADERDIRECTION.LOCK";

TEST(StoreUse, TheDirectionWritesItsTwoKeysAndNoOthers) {
    EXPECT_THAT(writesOf(selector, "100", {{lock, "OFF"}}),
                ElementsAre("set ME1.PRIMARY.TRANSI.FADERDIRECTION=UP",
                            "set ME1.PRIMARY.TRANSI.FADERDIRECTION.LOCK=ON"));
    EXPECT_THAT(writesOf(selector, "3000", {{lock, "OFF"}}),
                ElementsAre("set ME1.PRIMARY.TRANSI.FADERDIRECTION=DOWN",
                            "set ME1.PRIMARY.TRANSI.FADERDIRECTION.LOCK=ON"));
}

TEST(StoreUse, TheDirectionWritesNothingInTheMiddleOrWithoutAnOpenLock) {
    EXPECT_THAT(writesOf(selector, "2047", {{lock, "OFF"}}), IsEmpty());
    EXPECT_THAT(writesOf(selector, "100", {{lock, "ON"}}), IsEmpty());
    EXPECT_THAT(writesOf(selector, "100"), IsEmpty());
}

TEST(StoreUse, TheClipStackBuilderWritesOnlyAnAbsentStackAsEmpty) {
    for (auto const* operation : {"insert", "modify", "delete", "none"}) {
        std::string const word = std::string("clipstackBuilder=") + operation + ",offset=0";
        EXPECT_THAT(writesOf(word, "3>7::clip::0"), ElementsAre("set DEVICE3.CLIP_STACK="));
        EXPECT_THAT(writesOf(word, "3>7::clip::0", {{"DEVICE3.CLIP_STACK", "7::a::0>>"}}),
                    IsEmpty());
        EXPECT_THAT(writesOf(word, "3>7::clip::0", {{"DEVICE3.CLIP_STACK", ""}}), IsEmpty());
    }
}

// All words but the two that write, with kinds and operations that read as much as there is.
constexpr std::string_view readingWords[] = {
    "enum:1=>ON",
    "backgroundEnumToName",
    "backgroundNameToEnum",
    "logicalMachineNumber",
    "increment",
    "decrement",
    "scale:0.5",
    "format:float_as_integer",
    "format:percent",
    "format:degree",
    "format:screenunit",
    "format:seconds_to_ememledbar,me=E",
    "format:seconds_to_frames",
    "format:seconds_to_timecode,SS:FF:*N/F",
    "format:frames_to_seconds",
    "format:frames_to_timecode,DROPFRAME",
    "format:fields_to_timecode",
    "format:timecode_to_frames",
    "format:timecode_to_fields",
    "format:timecode_to_seconds",
    "format:seconds_to_autotrans",
    "hexToDecimal",
    "stringToHex",
    "decimalToHex",
    "decimalUnsignedToHex",
    "transitionElementCombiner",
    "priorityCombiner=NEXT",
    "bitmask=1,set=ON,clear=OFF",
    "leverarm=1,bank=0,emem=false",
    "width=6,padding= ",
    "aggregate=KEY,min=0,max=10",
    "isSplit",
    "priorityExtractor=1",
    "mappingCorrector=48",
    "routerIdLookUp=R",
    "isEmpty",
    "currentClipLength",
    "isSequenceComplete",
    "clipstackElement=0,field=clipName",
    "isEqualTo:KEY",
    "round",
    "logicalSourceListExtractor",
    "nextElementExtractor",
    "nextElementRemover",
};

TEST(StoreUse, EveryOtherDecoratorOnlyReads) {
    std::vector<Entry> const state{{"VIDEO.FRAMERATE", "50"},
                                   {"VIDEO.SCANTYPE", "1"},
                                   {"SETTINGS.AUTO.TRANSRATE.DISPLAY", "TIME"},
                                   {"EMEM.E.LATEST.EFFDUR", "2"},
                                   {"ROUTER.R.NEXTID", "3"},
                                   {"R0.NAME", "1"},
                                   {"KEY", "1"},
                                   {lock, "OFF"},
                                   {"DEVICE1.CLIP_STACK", "7::clip::0>>"}};
    for (auto const word : readingWords) {
        SCOPED_TRACE(word);
        EXPECT_THAT(writesOf(word, "1", state), IsEmpty());
        EXPECT_THAT(writesOf(word, "1"), IsEmpty());
    }
}

TEST(StoreUse, TheListOfReadersLeavesOutTheTwoWritersAlone) {
    for (auto const& row : decoratorTable()) {
        bool isReader = false;
        for (auto const word : readingWords)
            isReader = isReader || word.starts_with(row.keyword);
        bool const isWriter =
            row.keyword == "directionSelector" || row.keyword == "clipstackBuilder";
        EXPECT_NE(isReader, isWriter) << row.keyword;
    }
}

// Nothing is looked up for a value that names no entry.
TEST(StoreUse, TheRouterLookUpLeavesTheStoreAloneForAStarOrNothing) {
    EXPECT_THAT(callsOf("routerIdLookUp=R", "*", {{"ROUTER.R.NEXTID", "3"}}), IsEmpty());
    EXPECT_THAT(callsOf("routerIdLookUp=R", "", {{"ROUTER.R.NEXTID", "3"}}), IsEmpty());
}

TEST(StoreUse, TheSourceListLooksAtInputsOneToTwoHundredAndFifty) {
    auto const calls = callsOf("logicalSourceListExtractor", "7");
    ASSERT_EQ(calls.size(), 250U);
    EXPECT_EQ(calls.front(), "get LOGICAL.INPUT1.PHYSICAL.SOURCE");
    EXPECT_EQ(calls.back(), "get LOGICAL.INPUT250.PHYSICAL.SOURCE");
}

TEST(StoreUse, FramesToTimecodeReadsNoStandard) {
    EXPECT_THAT(callsOf("format:frames_to_timecode", "26"), IsEmpty());
    EXPECT_THAT(callsOf("format:frames_to_timecode,DROPFRAME", "26"), IsEmpty());
}

// The standard can change at any time.
TEST(StoreUse, TheRateIsReadOnEveryCall) {
    ContextStore store;
    auto const decorator = make("format:seconds_to_frames");
    store.set("VIDEO.FRAMERATE", "25");
    EXPECT_EQ(decorator->decorate("1", &store), "25");
    store.set("VIDEO.FRAMERATE", "60");
    EXPECT_EQ(decorator->decorate("1", &store), "30");
}

}  // namespace
}  // namespace FrameDriver::Template
