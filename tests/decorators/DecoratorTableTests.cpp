#include "Decorating.h"
#include "foundation/Exceptions.h"
#include "template/DecoratorTable.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

namespace FrameDriver::Template {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;

struct WordRow {
    std::string_view keyword;
    std::string_view word;
    std::string_view printed;
};

/// All keywords in the order of trial, each with a whole word and what that prints.
std::vector<WordRow> const& words() {
    static std::vector<WordRow> const rows{
        {"enum", "enum:1=>ON,0=>OFF", "enum:0=>OFF,1=>ON"},
        {"backgroundEnumToName", "backgroundEnumToName", "backgroundEnumToName"},
        {"backgroundNameToEnum", "backgroundNameToEnum", "backgroundNameToEnum"},
        {"logicalMachineNumber", "logicalMachineNumber", "logicalMachineNumber"},
        {"increment", "increment", "increment"},
        {"decrement", "decrement", "decrement"},
        {"scale", "scale:0.5", "scale:0.5"},
        {"format", "format:percent", "format:percent"},
        {"hexToDecimal", "hexToDecimal", "hexToDecimal"},
        {"stringToHex", "stringToHex", "stringToHex"},
        {"decimalToHex", "decimalToHex", "decimalToHex"},
        {"decimalUnsignedToHex", "decimalUnsignedToHex", "decimalUnsignedToHex"},
        {"transitionElementCombiner", "transitionElementCombiner", "transitionElementCombiner"},
        {"priorityCombiner", "priorityCombiner=NEXT", "priorityElementCombiner"},
        {"bitmask", "bitmask=1,set=ON,clear=OFF", "bitMask"},
        {"directionSelector", "directionSelector=1,bank=0,emem=false", "directionSelector"},
        {"leverarm", "leverarm=1,bank=0,emem=false", "leverarmSetter"},
        {"width", "width=6,padding= ", "Width: width=6, padding= "},
        {"aggregate", "aggregate=KEY,min=0,max=10", "AggregateValue"},
        {"isSplit", "isSplit", "splitKey"},
        {"priorityExtractor", "priorityExtractor=1", "PriorityExtractorDecorator"},
        {"mappingCorrector", "mappingCorrector=48", "mappingCorrector"},
        {"routerIdLookUp", "routerIdLookUp=R", "Router Id LookUp"},
        {"isEmpty", "isEmpty", "isEmpty"},
        {"currentClipLength", "currentClipLength", "isEmpty"},
        {"isSequenceComplete", "isSequenceComplete", "isSequenceComplete"},
        {"clipstackBuilder", "clipstackBuilder=insert,offset=0", "ClipStackBuilder"},
        {"clipstackElement", "clipstackElement=0,field=itemId", "ClipStackElement"},
        {"isEqualTo", "isEqualTo:KEY", "isEqual"},
        {"round", "round", "round"},
        {"logicalSourceListExtractor", "logicalSourceListExtractor", "logicalSourceListExtractor"},
        {"nextElementExtractor", "nextElementExtractor", "nextElementExtractor"},
        {"nextElementRemover", "nextElementRemover", "nextElementRemover"}};
    return rows;
}

TEST(DecoratorTable, HasItsWordsInTheOrderOfTrial) {
    ASSERT_EQ(decoratorTable().size(), words().size());
    for (std::size_t row = 0; row < words().size(); ++row)
        EXPECT_EQ(decoratorTable()[row].keyword, words()[row].keyword);
}

TEST(DecoratorTable, EveryWordParsesAndPrints) {
    for (auto const& [keyword, word, text] : words()) {
        SCOPED_TRACE(keyword);
        EXPECT_EQ(printed(word), text);
    }
}

TEST(DecoratorTable, NoKeywordHidesALaterOne) {
    auto const table = decoratorTable();
    for (std::size_t early = 0; early < table.size(); ++early) {
        for (std::size_t late = early + 1; late < table.size(); ++late)
            EXPECT_FALSE(table[late].keyword.starts_with(table[early].keyword));
    }
}

TEST(DecoratorTable, ExplainsEveryWordInOneLine) {
    std::set<std::string_view> explanations;
    for (auto const& row : decoratorTable()) {
        SCOPED_TRACE(row.keyword);
        EXPECT_TRUE(row.form.starts_with(row.keyword));
        EXPECT_EQ(row.arguments.empty(), row.form == row.keyword);
        EXPECT_EQ(row.explanation.find('\n'), std::string_view::npos);
        EXPECT_FALSE(row.explanation.empty());
        EXPECT_TRUE(explanations.insert(row.explanation).second) << "explains two words alike";
    }
}

/// A row's printed text up to where arguments begin to show.
std::string_view fixedPart(std::string_view text) { return text.substr(0, text.find('<')); }

TEST(DecoratorTable, SaysWhatItsWordsPrint) {
    for (std::size_t row = 0; row < words().size(); ++row)
        EXPECT_TRUE(words()[row].printed.starts_with(fixedPart(decoratorTable()[row].printed)));
}

std::unique_ptr<SegmentDecorator> make(std::string_view word) {
    for (auto const& row : decoratorTable()) {
        if (word.starts_with(row.keyword))
            return row.make(word);
    }
    return nullptr;
}

// Enough state for each sample word to have something to say.
void fillForAll(ContextStore& store) {
    fill(store, {{"KEY", "1"},
                 {"R0.NAME", "1"},
                 {"ROUTER.R.NEXTID", "1"},
                 {"1.TRANSI.KEY1.NEXT", "ON"},
                 {"1.TRANSI.KEY2.PRIORITY.NEXT", "1"},
                 {"MACHINE1.MARKOUT", "5"},
                 {"ME1.PRIMARY.TRANSI.FADERDIRECTION", "DOWN"},
                 {"DEVICE1.CLIP_STACK", "7::clip::0>>"},
                 {"LOGICAL.INPUT9.PHYSICAL.SOURCE", "1"}});
}

TEST(DecoratorTable, ACloneOutlivesItsOriginalAndDoesTheSame) {
    ContextStore store;
    fillForAll(store);
    for (auto const& row : words()) {
        SCOPED_TRACE(row.keyword);
        auto original = make(row.word);
        std::string const expected = original->decorate("1", &store);
        std::unique_ptr<SegmentDecorator> const clone(original->clone());
        ASSERT_NE(clone.get(), original.get());
        original.reset();
        EXPECT_EQ(clone->decorate("1", &store), expected);
        EXPECT_EQ(clone->toString(), row.printed);
    }
}

TEST(DecoratorTable, SelfIsTheObjectExceptForScaleAndFormat) {
    for (auto const& row : words()) {
        SCOPED_TRACE(row.keyword);
        auto const decorator = make(row.word);
        SegmentDecorator* const self = decorator->self();
        if (row.keyword == "scale" || row.keyword == "format") {
            ASSERT_NE(self, decorator.get());
            EXPECT_EQ(self->toString(), decorator->toString());
            std::unique_ptr<SegmentDecorator> const owned(self);
        } else {
            EXPECT_EQ(self, decorator.get());
        }
    }
}

TEST(DecoratorTable, AWordThatFitsNothingIsIgnored) {
    for (auto const* word : {"unknown", "Increment", " increment", "is", "bitMask=1,a=b,c=d"}) {
        EXPECT_EQ(printed(std::string(word) + "|decrement"), "decrement") << word;
        expectRows(word, {{"7", "7"}});
    }
}

TEST(DecoratorTable, WhatFollowsAKeywordIsNotRead) {
    expectRows("increments by one", {{"7", "8"}});
    expectRows("isEmptyOrNot", {{"", "true"}});
    expectRows("scaled by:2", {{"3", "6"}});
    expectRows("width of the field=4,filled with=0", {{"7", "0007"}});
    expectRows("isEqualToTheKey:KEY", {{"KEY", "7"}}, {{"7", "true"}});
}

TEST(DecoratorTable, TheWordWrittenFirstIsAppliedFirst) {
    expectRows("increment|scale:2", {{"1", "4"}});
    expectRows("scale:2|increment", {{"1", "3"}});
    expectRows("increment|enum:2=>TWO", {{"1", "TWO"}});
    expectRows("enum:1=>5|increment", {{"1", "6"}});
    expectRows("format:percent|width=6,padding= ", {{"12", " 12.0%"}});
}

// The positions decide what odd words mean.
TEST(DecoratorTable, CutsTheArgumentsOfOddWords) {
    expectRows("bitmask=4", {{"4", "bitmask=4"}});
    expectRows("bitmask=4,ON,OFF", {{"4", "bitmask=4,ON,OFF"}});
    expectRows("bitmask=4,set=ON", {{"4", "ON"}, {"3", "bitmask=4,set=ON"}});
    expectRows("width=4,0", {{"7", "www7"}});
    expectRows("format,percent:degree", {{"1", "1.0\xB0"}});
    EXPECT_EQ(decorate("clipstackElement=0,field", "3", {{"DEVICE3.CLIP_STACK", "4::a::5>>"}}),
              "5");
}

TEST(DecoratorTable, ABadNumberInAnArgumentThrows) {
    for (auto const* word :
         {"width=x,padding=0", "width", "width=", "aggregate=K,min=x,max=1",
          "aggregate=K,min=0,max=x", "aggregate=K", "aggregate=K,min=5", "priorityExtractor=",
          "priorityExtractor", "mappingCorrector=x", "clipstackBuilder=insert,offset=x",
          "clipstackBuilder=insert", "clipstackElement=x,field=itemId",
          "directionSelector=x,bank=0,emem=true", "directionSelector=1,bank=x,emem=true",
          "directionSelector=1", "leverarm=,bank=0,emem=true", "leverarm=1,bank=,emem=true",
          "width=2147483648,padding=0"}) {
        SCOPED_TRACE(word);
        try {
            printed(word);
            ADD_FAILURE() << "no failure";
        } catch (IllegalArgumentException const& exception) {
            EXPECT_EQ(exception.getMessage(), "Unable to convert a string value into an Int32.");
        }
    }
}

// A handler that catches the class by reference doesn't see it.
TEST(DecoratorTable, ABadMaskThrowsAPointer) {
    for (auto const* word :
         {"bitmask=xyz,a=1,b=2", "bitmask=,a=1,b=2", "bitmask=100000000,a=1,b=2"}) {
        SCOPED_TRACE(word);
        try {
            printed(word);
            ADD_FAILURE() << "no failure";
        } catch (IllegalArgumentException const* exception) {
            EXPECT_EQ(exception->getMessage(), "Unable to convert a string value into a UInt32");
            delete exception;
        }
    }
}

}  // namespace
}  // namespace FrameDriver::Template
