#include "Decorating.h"

#include <gtest/gtest.h>

#include <string>

namespace FrameDriver::Template {
namespace {

constexpr std::string_view stackKey = "DEVICE3.CLIP_STACK";
constexpr std::string_view indexKey = "DEVICE3.CLIP_STACK.LOADED.INDEX";

/// A change of the stack of device 3 by the entry.
std::string change(std::string_view operation, std::string_view stack, std::string_view entry) {
    std::string const word = "clipstackBuilder=" + std::string(operation) + ",offset=0";
    return decorate(word, "3>" + std::string(entry), {{stackKey, stack}});
}

struct ChangeRow {
    std::string_view stack;
    std::string_view entry;
    std::string_view result;
};

void expectChanges(std::string_view operation, std::vector<ChangeRow> const& rows) {
    for (auto const& [stack, entry, result] : rows) {
        SCOPED_TRACE(std::string(entry) + " into " + std::string(stack));
        EXPECT_EQ(change(operation, stack, entry), result);
    }
}

TEST(ClipStackBuilderDecorator, CreatesAnAbsentStackAndDoesNotStoreTheResult) {
    ContextStore store;
    EXPECT_EQ(decorate("clipstackBuilder=insert,offset=0", "3>7::clip::0", store), "7::clip::0>>");
    EXPECT_TRUE(store.contains(stackKey));
    EXPECT_EQ(store.get(stackKey), "");
}

TEST(ClipStackBuilderDecorator, LeavesAPresentStackInTheStore) {
    ContextStore store;
    fill(store, {{stackKey, "7::a::0>>"}});
    EXPECT_EQ(decorate("clipstackBuilder=insert,offset=0", "3>8::b::7", store),
              "8::b::7>>7::a::0>>");
    EXPECT_EQ(store.get(stackKey), "7::a::0>>");
}

TEST(ClipStackBuilderDecorator, InsertsAheadOfTheEntryThatFollows) {
    expectChanges("insert", {{"7::a::0>>", "8::b::7", "8::b::7>>7::a::0>>"},
                             {"1::a::2>>2::b::0>>", "9::n::2", "1::a::9>>9::n::2>>2::b::0>>"},
                             {"1::a::5>>2::b::0>>", "9::n::2", "1::a::9>>9::n::2>>2::b::0>>"}});
}

TEST(ClipStackBuilderDecorator, AnEndThatTheLastEntryLeadsToIsAppended) {
    expectChanges("insert", {{"1::a::9>>", "9::n::0", "1::a::9>>9::n::0>>"},
                             {"", "9::n::0", "9::n::0>>"},
                             {"9::n::9>>", "9::n::0", "9::n::9>>9::n::0>>"}});
}

TEST(ClipStackBuilderDecorator, AnEndOfAnotherChainReplacesTheStack) {
    expectChanges("insert", {{"7::a::0>>", "9::c::0", "9::c::0>>"},
                             {"1::a::9>>9::n::0>>", "9::x::0", "9::x::0>>"}});
}

TEST(ClipStackBuilderDecorator, AnEntryThatLeadsNowhereIsAppended) {
    expectChanges("insert",
                  {{"7::a::0>>", "9::c::5", "7::a::0>>9::c::5>>"}, {"", "9::c::5", "9::c::5>>"}});
}

TEST(ClipStackBuilderDecorator, AKnownEntryMetOnTheWayChangesNothing) {
    expectChanges("insert", {{"9::a::2>>2::b::0>>", "9::n::2", "9::a::2>>2::b::0>>"},
                             {"9::a::0>>", "9::n::9", "9::a::0>>"},
                             {"9::a::0>>", "9::n::5", "9::a::0>>"},
                             // Behind the place it isn't met.
                             {"2::b::9>>9::a::0>>", "9::n::2", "9::n::2>>2::b::9>>9::a::0>>"}});
}

TEST(ClipStackBuilderDecorator, ModifyRenamesEveryEntryOfThatItem) {
    expectChanges("modify",
                  {{"1::a::2>>2::b::1>>1::c::0>>", "1::n::9", "1::n::2>>2::b::1>>1::n::0>>"},
                   {"1::a::0>>", "5::n::0", "1::a::0>>"},
                   {"", "5::n::0", ""}});
}

TEST(ClipStackBuilderDecorator, DeleteLetsTheEntryBeforeLeadToTheOneBehind) {
    expectChanges("delete", {{"1::a::2>>2::b::3>>3::c::0>>", "2", "1::a::3>>3::c::0>>"},
                             {"1::a::7>>2::b::8>>3::c::9>>", "2::x::1", "1::a::3>>3::c::9>>"},
                             {"1::a::0>>", "5", "1::a::0>>"},
                             {"1::a::1>>1::b::0>>", "1", "1::b::0>>"},
                             {"1::a::0>>", "1", ""},
                             {"", "1", ""}});
}

TEST(ClipStackBuilderDecorator, DeleteOfTheFirstEntryLeavesTheOthers) {
    expectChanges("delete", {{"1::a::2>>2::b::7>>3::c::9>>", "1", "2::b::7>>3::c::9>>"}});
}

TEST(ClipStackBuilderDecorator, DeleteOfTheLastEntryEndsTheChain) {
    expectChanges("delete", {{"1::a::2>>2::b::3>>3::c::9>>", "3", "1::a::2>>2::b::0>>"}});
}

TEST(ClipStackBuilderDecorator, AnyOtherOperationPrintsTheStackAfresh) {
    for (auto const* operation : {"none", "", "Insert", "insert ", "remove"})
        expectChanges(operation, {{"1:a:0x>2::b", "9::n::0", "1::a::0>>2::b::0>>"}});
}

// Empty pieces vanish, so an empty name shifts the parts.
TEST(ClipStackBuilderDecorator, ReadsStacksAsTheyCome) {
    expectChanges("none", {{"1::::2>>", "", "1::2::0>>"},
                           {">>>", "", ""},
                           {"::>>", "", "0::::0>>"},
                           {"x::a::y", "", "0::a::0>>"},
                           {"1::a b\x92::2::3>>", "", "1::a b\x92::2>>"},
                           {"99999999999::a::-1>>", "", "0::a::-1>>"}});
}

TEST(ClipStackBuilderDecorator, AValueWithoutAMarkIsDeviceAndEntryBoth) {
    ContextStore store;
    EXPECT_EQ(decorate("clipstackBuilder=insert,offset=0", "7::clip::0", store), "7::clip::0>>");
    EXPECT_TRUE(store.contains("DEVICE7::clip::0.CLIP_STACK"));
    EXPECT_EQ(decorate("clipstackBuilder=insert,offset=0", "", store), "0::::0>>");
    EXPECT_TRUE(store.contains("DEVICE.CLIP_STACK"));
}

TEST(ClipStackBuilderDecorator, OnlyTheFirstMarkCutsTheValue) {
    expectChanges("insert", {{"", "7::clip::0>>8::x::9", "7::clip::0>>"}});
}

constexpr std::string_view threeClips = "4::bin/take1::5>>5::take2::6>>6::c/d/e::0>>";

std::string element(std::string_view word, std::string_view index) {
    return decorate(word, "3", {{stackKey, threeClips}, {indexKey, index}});
}

struct IndexRow {
    std::string_view index;
    std::string_view position;
    std::string_view itemId;
};

TEST(ClipStackElementDecorator, CountsFromTheLoadedClip) {
    for (auto const& [index, position, itemId] : std::vector<IndexRow>{{"0", "1", "4"},
                                                                       {"0", "2", "5"},
                                                                       {"1", "1", "5"},
                                                                       {"1", "2", "6"},
                                                                       {"2", "2", "0"},
                                                                       {"3", "-1", "5"},
                                                                       {"2x", "0", "5"},
                                                                       {"abc", "3", "6"}}) {
        SCOPED_TRACE(std::string(index) + " + " + std::string(position));
        std::string const word = "clipstackElement=" + std::string(position) + ",field=itemId";
        EXPECT_EQ(element(word, index), itemId);
    }
}

// As stream reads of unsigned numbers do.
TEST(ClipStackElementDecorator, TheLoadedIndexIsUnsigned) {
    EXPECT_EQ(element("clipstackElement=3,field=itemId", "4294967295"), "5");
    EXPECT_EQ(element("clipstackElement=3,field=itemId", "-1"), "5");
    EXPECT_EQ(element("clipstackElement=3,field=itemId", "4294967296"), "6");
}

TEST(ClipStackElementDecorator, IndexZeroMeansTheFirstClip) {
    EXPECT_EQ(element("clipstackElement=0,field=itemId", "0"), "4");
    EXPECT_EQ(element("clipstackElement=0,field=itemId", "1"), "4");
    EXPECT_EQ(element("clipstackElement=-2,field=itemId", "2"), "4");
    EXPECT_EQ(decorate("clipstackElement=0,field=itemId", "3", {{stackKey, ""}}), "0");
}

TEST(ClipStackElementDecorator, OutsideTheStackThereIsNoClip) {
    for (auto const* word : {"clipstackElement=4,field=", "clipstackElement=-1,field="}) {
        EXPECT_EQ(element(std::string(word) + "itemId", "0"), "0");
        EXPECT_EQ(element(std::string(word) + "clipName", "0"), "");
        EXPECT_EQ(element(std::string(word) + "nextItemId", "0"), "0");
    }
}

TEST(ClipStackElementDecorator, ANameIsShownFromBehindItsFirstSlash) {
    EXPECT_EQ(element("clipstackElement=1,field=clipName", "0"), "take1");
    EXPECT_EQ(element("clipstackElement=2,field=clipName", "0"), "take2");
    EXPECT_EQ(
        decorate("clipstackElement=1,field=clipName", "3", {{stackKey, "1::a/b/c::2>>2::x::0>>"}}),
        "b/c");
    EXPECT_EQ(
        decorate("clipstackElement=1,field=clipName", "3", {{stackKey, "1::a/::2>>2::x::0>>"}}),
        "");
}

TEST(ClipStackElementDecorator, TheLastClipsNameIsNotShown) {
    EXPECT_EQ(element("clipstackElement=3,field=clipName", "0"), "");
    EXPECT_EQ(element("clipstackElement=3,field=itemId", "0"), "6");
    EXPECT_EQ(decorate("clipstackElement=1,field=clipName", "3", {{stackKey, "7::clip::0>>"}}), "");
}

TEST(ClipStackElementDecorator, AnyOtherFieldIsTheNextItem) {
    for (auto const* word : {"clipstackElement=1,field=nextItemId",
                             "clipstackElement=1,field=", "clipstackElement=1,field=ItemId"}) {
        EXPECT_EQ(element(word, "0"), "5");
    }
}

TEST(ClipStackElementDecorator, WithoutAStackIsEmpty) {
    for (auto const* field : {"itemId", "clipName", "nextItemId"}) {
        std::string const word = "clipstackElement=0,field=" + std::string(field);
        expectRows(word, {{"3", ""}, {"", ""}, {"INVALID", ""}});
        expectRows(word, {{indexKey, "1"}}, {{"3", ""}});
    }
}

TEST(MachineClipLengthDecorator, IsTheLengthBetweenTheMarks) {
    expectRows("currentClipLength",
               {{"MACHINE1.MARKIN", "100"},
                {"MACHINE1.MARKOUT", "350"},
                {"MACHINE2.MARKOUT", "7"},
                {"MACHINE3.MARKIN", "7"},
                {"MACHINE4.MARKIN", "-5"},
                {"MACHINE4.MARKOUT", "5x"},
                {"MACHINE.MARKOUT", "9"}},
               {{"1", "250"}, {"2", "7"}, {"3", "0"}, {"4", "10"}, {"5", "0"}, {"", "9"}});
}

TEST(MachineClipLengthDecorator, ALengthThatWrapsBelowZeroIsZero) {
    expectRows("currentClipLength", {{"MACHINE1.MARKIN", "-1"}, {"MACHINE1.MARKOUT", "2147483647"}},
               {{"1", "0"}});
}

}  // namespace
}  // namespace FrameDriver::Template
