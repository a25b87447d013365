#include "conversion/TemplateConversionCollection.h"
#include "template/ContextStore.h"
#include "template/PlainString.h"
#include "template/TemplateParser.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace FrameDriver::Conversion {
namespace {

using Template::TemplateParser;
using Template::TemplateString;
using Texts = std::vector<std::string>;
using Sizes = std::vector<std::size_t>;

TemplateConversion entry(std::string const& from, Texts const& to) {
    std::vector<TemplateString> results;
    for (auto const& text : to)
        results.push_back(TemplateParser::parse(text));
    return {TemplateParser::parse(from), results};
}

class Dictionary : public ::testing::Test {
  protected:
    void add(std::string const& from, Texts const& to) { collection.add(entry(from, to)); }
    Texts convert(std::string const& text) { return collection.convert(text, &context); }
    Sizes recent() const { return collection.recentSizes(); }

    TemplateConversionCollection collection;
    Template::ContextStore context;
};

TEST_F(Dictionary, EmptyAnswersNothingAndKeepsAnEmptyList) {
    EXPECT_EQ(convert("text"), Texts{});
    EXPECT_EQ(recent(), Sizes{0});
    // An empty list takes a place and never answers.
    EXPECT_EQ(convert("text"), Texts{});
    EXPECT_EQ(recent(), (Sizes{0, 0}));
}

TEST_F(Dictionary, PreparingChangesNoAnswer) {
    collection.prepare();
    EXPECT_EQ(recent(), Sizes{});
    add("a={@x}", {"first {@x}"});
    collection.prepare();
    collection.prepare();
    EXPECT_EQ(recent(), Sizes{});
    EXPECT_EQ(convert("a=1"), Texts{"first 1"});
    add("b={@x}", {"late {@x}"});
    EXPECT_EQ(convert("b=2"), Texts{"late 2"});
    collection.merge(collection);
    collection.prepare();
    EXPECT_EQ(collection.getConversions().size(), 4U);
    EXPECT_EQ(convert("b=3"), Texts{"late 3"});
    EXPECT_EQ(recent(), (Sizes{1, 1}));
}

TEST_F(Dictionary, CapturesShowInTheResults) {
    add("FID: id=A, data=[x={@x}, y={@y}\x92", {"Set: {@y}/{@x}", "SID: {@x}{@none}"});
    EXPECT_EQ(convert("FID: id=A, data=[x=1, y=two\x92"), (Texts{"Set: two/1", "SID: 1{@none}"}));
    EXPECT_EQ(convert("FID: id=B, data=[x=1, y=two\x92"), Texts{});
}

TEST_F(Dictionary, OfEntriesWithTheSameTemplateTheFirstConverts) {
    add("A={@x}", {"first {@x}"});
    add("A={@x}", {"second {@x}", "third"});
    EXPECT_EQ(convert("A=1"), Texts{"first 1"});
    EXPECT_EQ(collection.getConversions().size(), 2U);
}

TEST_F(Dictionary, VariablesOfOtherNamesOrDecoratorsAreOtherBranches) {
    add("A={@x}", {"x {@x}"});
    add("A={@y}", {"y {@y}"});
    add("A={@x|increment}", {"decorated {@x}"});
    EXPECT_EQ(convert("A=1"), (Texts{"x 1", "y 1", "decorated 1"}));
    EXPECT_EQ(recent(), Sizes{3});
}

TEST_F(Dictionary, ATemplateWithoutSegmentsAnswersEveryTextThatIsWalked) {
    add("", {"always"});
    add("A={@x}", {"A {@x}"});
    EXPECT_EQ(convert("B"), Texts{"always"});
    // It was the first of that list, so the list answers everything from now on.
    EXPECT_EQ(convert("A=1"), Texts{"always"});
    EXPECT_EQ(recent(), Sizes{1});
}

TEST_F(Dictionary, TheFirstBranchMadeAnswersFirst) {
    add("A{@x}C", {"1"});
    add("{@x}C", {"2"});
    add("A{@y}", {"3"});  // below the branch of the first entry
    add("AB{@x}", {"4"});
    add("A{@x}C{@z}", {"5"});  // likewise, and below its leaf's place
    EXPECT_EQ(convert("ABC"), (Texts{"1", "5", "3", "2", "4"}));
}

TEST_F(Dictionary, TheOrderIsKeptWhereManyLiteralsShareAGroup) {
    add("{@any}!", {"variable 1"});
    for (int i = 0; i < 50; ++i) {
        auto const number = std::to_string(i);
        add("N" + number + "{@x}", {"literal " + number});
    }
    add("{@other}!", {"variable 2"});
    add("N4{@x}!", {"late"});
    // Both "N4" and "N42" stand in the text; so do "N7" and "N1" further behind.
    EXPECT_EQ(convert("N42 N7 N1!"), (Texts{"variable 1", "literal 1", "literal 4", "late",
                                            "literal 7", "literal 42", "variable 2"}));
}

TEST_F(Dictionary, FiveListsAreKeptInTheOrderOfTheirWalks) {
    for (char const* name : {"A", "B", "C", "D", "E", "F"})
        add(std::string(name) + "={@x}", {name});
    add("A={@x}{@y}", {"A too"});
    for (char const* text : {"A=1", "B=1", "C=1", "D=1", "E=1"})
        convert(text);
    EXPECT_EQ(recent(), (Sizes{1, 1, 1, 1, 2}));
    // A text that a list answers moves nothing.
    EXPECT_EQ(convert("A=2"), (Texts{"A", "A too"}));
    EXPECT_EQ(recent(), (Sizes{1, 1, 1, 1, 2}));
    // The sixth walk drops the list of the first text.
    convert("F=1");
    EXPECT_EQ(recent(), (Sizes{1, 1, 1, 1, 1}));
    convert("A=3");
    EXPECT_EQ(recent(), (Sizes{2, 1, 1, 1, 1}));
}

TEST_F(Dictionary, AKeptListHidesEntriesThatDontStandInIt) {
    add("A{@x}", {"general"});
    add("AB{@x}", {"special"});
    EXPECT_EQ(convert("A1"), Texts{"general"});
    EXPECT_EQ(convert("AB"), Texts{"general"});
}

TEST_F(Dictionary, AKeptListIsUsedWhole) {
    add("A{@x}", {"general"});
    add("AB{@x}", {"special"});
    EXPECT_EQ(convert("AB"), (Texts{"general", "special"}));
    EXPECT_EQ(convert("A1"), Texts{"general"});
    EXPECT_EQ(recent(), Sizes{2});
}

TEST_F(Dictionary, AnEntryAddedLaterIsHiddenByAKeptList) {
    add("A{@x}", {"old"});
    convert("AB");
    add("AB{@x}", {"new"});
    EXPECT_EQ(convert("AB"), Texts{"old"});
    EXPECT_EQ(convert("B AB"), Texts{"old"});
}

TEST_F(Dictionary, AnEntryAddedLaterIsFound) {
    add("A{@x}", {"old"});
    convert("A");
    add("B{@x}", {"new"});
    EXPECT_EQ(convert("B"), Texts{"new"});
}

TEST_F(Dictionary, AnEntryWithoutResultsMatchesAndProducesNothing) {
    add("A={@x}", {});
    EXPECT_EQ(convert("A=1"), Texts{});
    EXPECT_EQ(recent(), Sizes{1});
    EXPECT_EQ(convert("A=2"), Texts{});
    EXPECT_EQ(recent(), Sizes{1});
}

TEST_F(Dictionary, LoadingTwiceChangesNoResult) {
    for (int i = 0; i < 2; ++i) {
        add("A={@x}", {"one {@x}"});
        add("{@x}=1", {"two {@x}"});
    }
    EXPECT_EQ(convert("A=1"), (Texts{"one 1", "two A"}));
    EXPECT_EQ(collection.getConversions().size(), 4U);
    EXPECT_EQ(recent(), Sizes{2});
}

TEST_F(Dictionary, TheEmptyTextMatchesEveryTemplateThatEndsInALiteral) {
    add("A", {"literal"});
    add("{@x}B", {"behind a variable {@x}"});
    add("{@x}", {"a variable <{@x}>"});
    // The walk doesn't find the literals, so they aren't candidates.
    EXPECT_EQ(convert(""), Texts{"a variable <>"});
}

TEST_F(Dictionary, AKeptListCanAnswerTheEmptyText) {
    add("AB", {"result"});
    EXPECT_EQ(convert("AB"), Texts{"result"});
    EXPECT_EQ(convert(""), Texts{"result"});
    EXPECT_EQ(recent(), Sizes{1});
}

TEST_F(Dictionary, ATextUsedUpAtAMissingLiteralMatchesThroughAKeptList) {
    add("A={@x};", {"<{@x}>"});
    EXPECT_EQ(convert("A=1;"), Texts{"<1>"});
    EXPECT_EQ(convert("A="), Texts{"<>"});
    EXPECT_EQ(recent(), Sizes{1});
}

TEST_F(Dictionary, AnExceptionLeavesTheKeptListsAsTheyAreAndDropsTheResults) {
    add("AB{@x}B", {"result"});
    EXPECT_EQ(convert("AB.B"), Texts{"result"});
    try {
        // Matches by its end alone, and the variable would start behind that end.
        convert("");
        FAIL() << "no exception";
    } catch (std::out_of_range const& failure) {
        EXPECT_STREQ(failure.what(), "invalid string position");
    }
    EXPECT_EQ(recent(), Sizes{1});
    EXPECT_EQ(convert("AB.B"), Texts{"result"});
}

TEST_F(Dictionary, AnExceptionOutOfAWalksCandidateComesBehindTheKeeping) {
    add("{@y}", {"fine"});
    // The walk finds each literal at the same place; the match ends at the second one, by the
    // text's end alone, and the last variable would start behind that end.
    add("{@z}AB{@x}AB{@w}AB", {"thrown"});
    EXPECT_THROW(convert("AB"), std::out_of_range);
    EXPECT_EQ(recent(), Sizes{2});
    EXPECT_THROW(convert("AB"), std::out_of_range);
    EXPECT_EQ(recent(), Sizes{2});
}

TEST_F(Dictionary, ACandidateOfTheWalkCanMatchByItsEndAlone) {
    add("AB{@x}B", {"<{@x}>"});
    EXPECT_EQ(convert("AB"), Texts{"<>"});
    EXPECT_EQ(convert("ABB"), Texts{"<>"});
    EXPECT_EQ(convert("AB.B"), Texts{"<>"});  // "B" is sought from the front of the text
}

TEST_F(Dictionary, ALiteralThatSpellsAVariableSharesItsBranch) {
    // The first comer decides how the branch is found: here a literal, which "A=1" lacks.
    add("A={{@x}};", {"literal"});
    add("A={@x};", {"variable {@x}"});
    EXPECT_EQ(convert("A=1;"), Texts{});
    EXPECT_EQ(convert("A={@x};"), Texts{"literal"});
    EXPECT_EQ(collection.getConversions().size(), 2U);
}

TEST_F(Dictionary, ABranchMadeByAVariableIsFoundForTheLiteralThatSpellsIt) {
    add("A={@x}:", {"variable {@x}"});
    add("A={{@x}};", {"literal"});
    EXPECT_EQ(convert("A={@x};"), Texts{"literal"});
    EXPECT_EQ(convert("A=1:"), Texts{"variable 1"});
}

TEST_F(Dictionary, TheStoreIsReadByTheResults) {
    context.set("KEY.1", "value");
    add("A={@x}", {"{$context:KEY.{@x}} {@x|increment}"});
    EXPECT_EQ(convert("A=1"), Texts{"value 2"});
    EXPECT_EQ(convert("A=2"), Texts{"INVALID 3"});
}

TEST_F(Dictionary, ACopyHasTheEntriesButNotTheKeptLists) {
    add("A{@x}", {"general"});
    convert("AB");
    add("AB{@x}", {"special"});
    auto copy = collection;
    EXPECT_EQ(copy.recentSizes(), Sizes{});
    EXPECT_EQ(copy.convert("AB", &context), (Texts{"general", "special"}));
    EXPECT_EQ(convert("AB"), Texts{"general"});
}

TEST_F(Dictionary, ACopyOutlivesItsOriginal) {
    auto original = std::make_unique<TemplateConversionCollection>();
    original->add(entry("A{@x}", {"result {@x}"}));
    original->convert("A", &context);
    auto copy = *original;
    original.reset();
    EXPECT_EQ(copy.convert("A1", &context), Texts{"result 1"});
}

TEST_F(Dictionary, MergingAppendsTheOthersEntriesInTheirOrder) {
    add("A{@x}", {"own"});
    TemplateConversionCollection other;
    other.add(entry("A{@y}", {"other 1"}));
    other.add(entry("A{@x}", {"dropped"}));
    other.add(entry("{@z}", {"other 2"}));
    collection.merge(other);
    EXPECT_EQ(convert("A1"), (Texts{"own", "other 1", "other 2"}));
    EXPECT_EQ(collection.getConversions().size(), 4U);
    EXPECT_EQ(other.getConversions().size(), 3U);
}

TEST_F(Dictionary, MergingWithItselfDoublesTheEntriesAndChangesNoResult) {
    add("A{@x}", {"own"});
    collection.merge(collection);
    EXPECT_EQ(convert("A1"), Texts{"own"});
    EXPECT_EQ(collection.getConversions().size(), 2U);
}

TEST_F(Dictionary, MergingKeepsTheListsAsTheyAre) {
    add("A{@x}", {"own"});
    convert("AB");
    TemplateConversionCollection other;
    other.add(entry("AB{@x}", {"hidden"}));
    collection.merge(other);
    EXPECT_EQ(convert("AB"), Texts{"own"});
    EXPECT_EQ(recent(), Sizes{1});
}

TEST_F(Dictionary, BytesOfAnyValuePassThrough) {
    add(std::string("\0\x92\xff=", 4) + "{@x}", {std::string("<\0>", 3) + "{@x}"});
    EXPECT_EQ(convert(std::string("\0\x92\xff=\0\x80", 6)), Texts{std::string("<\0>\0\x80", 5)});
}

}  // namespace
}  // namespace FrameDriver::Conversion
