#include "foundation/Exceptions.h"
#include "template/ContextStore.h"
#include "template/ContextString.h"
#include "template/DecoratorTable.h"
#include "template/PlainString.h"
#include "template/TemplateParser.h"
#include "template/Variable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace FrameDriver::Template {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

/// Each segment as "lit <text>", "var <name>" or "ctx <name>", a null entry as "null".
std::vector<std::string> segmentsOf(std::string_view source) {
    auto const parsed = TemplateParser::parse(source);
    std::vector<std::string> shown;
    for (auto const* segment : parsed.getSegments()) {
        if (!segment)
            shown.push_back("null");
        else if (auto const* key = dynamic_cast<ContextString const*>(segment))
            shown.push_back("ctx " + key->getName());
        else if (auto const* variable = dynamic_cast<Variable const*>(segment))
            shown.push_back("var " + variable->getName());
        else
            shown.push_back("lit " + segment->toString());
    }
    return shown;
}

std::string printed(std::string_view source) { return TemplateParser::parse(source).toString(); }

TEST(TemplateParser, CutsATextAtItsBraces) {
    struct Row {
        std::string_view source;
        std::vector<std::string> segments;
    };
    Row const rows[] = {
        {"", {}},
        {"abc", {"lit abc"}},
        {"a{@x}b", {"lit a", "var x", "lit b"}},
        {"{@x}{@y}", {"var x", "var y"}},
        {"{@}", {"var "}},
        {"FID: {@name}[P={@p}\x92", {"lit FID: ", "var name", "lit [P=", "var p", "lit \x92"}},
        // Braces are taken off, and don't tell what stood between them.
        {"{abc}", {"lit abc"}},
        {"@x", {"var x"}},
        {"a{b}@c{d}", {"lit a", "lit b", "var c", "lit d"}},
        {"a@x", {"lit a@x"}},
        {" @x", {"lit  @x"}},
        {"{a{b}c}", {"lit a{b}c"}},
        {"{@x{y}}", {"var x{y}"}},
        // A "}" outside a group is text.
        {"}a}b", {"lit }a}b"}},
        {"{a}}", {"lit a", "lit }"}},
        // An unclosed brace gives its contents twice.
        {"a{b", {"lit a", "lit b", "lit b"}},
        {"a{b{c}", {"lit a", "lit b{c}", "lit b", "lit c"}},
        {"a{{b", {"lit a", "lit {b", "lit b", "lit b"}},
        {"{@x", {"var x", "var x"}},
    };
    for (auto const& row : rows)
        EXPECT_THAT(segmentsOf(row.source), ElementsAreArray(row.segments)) << row.source;
}

TEST(TemplateParser, CutsAVariableAtItsBars) {
    struct Row {
        std::string_view source;
        std::vector<std::string> segments;
    };
    Row const rows[] = {
        {"{@x|}", {"var x"}},
        {"{@x||nothing}", {"var x"}},
        {"{@x|@y}", {"var y"}},
        {"{$abc|@x}", {"var x"}},
        {"{$context:KEY}", {"ctx KEY"}},
        {"$context:KEY", {"ctx KEY"}},
        {"{$context:}", {"ctx "}},
        // The character in the colon's place is not looked at.
        {"{$contextXKEY}", {"ctx KEY"}},
        {"{$context:KEY|@x}", {"var x"}},
        {"{@x|$context:KEY}", {"ctx KEY"}},
    };
    for (auto const& row : rows)
        EXPECT_THAT(segmentsOf(row.source), ElementsAreArray(row.segments)) << row.source;
}

TEST(TemplateParser, PutsTheBarsOfANestedKeyBack) {
    struct Row {
        std::string_view source;
        std::vector<std::string> segments;
    };
    Row const rows[] = {
        {"{$context:A.{@x}.B}", {"ctx A.{@x}.B"}},
        {"{$context:A.{@x|increment}.B}", {"ctx A.{@x|increment}.B"}},
        {"{$context:A.{@x|increment|decrement}.B|isEmpty}", {"ctx A.{@x|increment|decrement}.B"}},
        {"{$context:{@x|increment}{@y|decrement}}", {"ctx {@x|increment}{@y|decrement}"}},
        {"{$context:{$context:{@x|increment}|isEmpty}|round}",
         {"ctx {$context:{@x|increment}|isEmpty}"}},
        // Without a "{" nothing is mended.
        {"{$context:A|increment}", {"ctx A"}},
        // Behind another word the count runs one too far: "isEmpty" goes into the key.
        {"{@n|$context:A.{@x|increment}|isEmpty}", {"ctx A.{@x|increment}|isEmpty"}},
        // At the end of the token there is nothing more to take.
        {"{@n|$context:A.{@x|increment}}", {"ctx A.{@x|increment}"}},
        // Empty words between bars are gone before.
        {"{$context:A.{@x||increment}}", {"ctx A.{@x|increment}"}},
    };
    for (auto const& row : rows)
        EXPECT_THAT(segmentsOf(row.source), ElementsAreArray(row.segments)) << row.source;
}

TEST(TemplateParser, KeyBehindTheMendedOneKeepsItsDecorator) {
    ContextStore store;
    store.set("EMEM.4.NAME", "");
    auto const parsed = TemplateParser::parse("{$context:EMEM.{@x|increment}.NAME|isEmpty}");
    EXPECT_EQ(parsed.evaluate({{"x", "3"}}, &store), "true");
    EXPECT_EQ(parsed.evaluate({{"x", "4"}}, &store), "false") << "INVALID isn't empty";
}

TEST(TemplateParser, DecoratorsRunInTheWrittenOrder) {
    auto const parsed = TemplateParser::parse("{@x|width=3,padding=0|increment}");
    EXPECT_EQ(parsed.evaluate({{"x", "7"}}, nullptr), "8");
    auto const reversed = TemplateParser::parse("{@x|increment|width=3,padding=0}");
    EXPECT_EQ(reversed.evaluate({{"x", "7"}}, nullptr), "008");
    EXPECT_EQ(printed("{@x|increment|decrement}"), "{@x|increment|decrement}");
}

TEST(TemplateParser, EnumStandsInTheWrittenOrderLikeTheOthers) {
    auto const parsed = TemplateParser::parse("{@x|increment|enum:8=>eight,7=>seven}");
    EXPECT_EQ(parsed.evaluate({{"x", "7"}}, nullptr), "eight");
}

TEST(TemplateParser, FormatStandsAheadOfWidthAsWritten) {
    EXPECT_EQ(printed("{@x|format:percent|width=6,padding= }"),
              "{@x|format:percent|Width: width=6, padding= }");
}

TEST(TemplateParser, WordThatFitsNothingIsIgnored) {
    for (auto const* word : {"unknown", "Increment", " increment", "incr", "x=1,y=2", "\x92"})
        EXPECT_EQ(printed("{@x|" + std::string(word) + "|decrement}"), "{@x|decrement}") << word;
}

TEST(TemplateParser, WordIsKnownByItsBeginning) {
    EXPECT_EQ(printed("{@x|incrementally}"), "{@x|increment}");
}

// For each keyword the row that makes its decorator is the first that fits.
TEST(TemplateParser, TriesTheWordsInTheOrderOfTheTable) {
    std::vector<std::string_view> keywords;
    for (auto const& row : decoratorTable())
        keywords.push_back(row.keyword);
    EXPECT_THAT(keywords,
                ElementsAre("enum", "backgroundEnumToName", "backgroundNameToEnum",
                            "logicalMachineNumber", "increment", "decrement", "scale", "format",
                            "hexToDecimal", "stringToHex", "decimalToHex", "decimalUnsignedToHex",
                            "transitionElementCombiner", "priorityCombiner", "bitmask",
                            "directionSelector", "leverarm", "width", "aggregate", "isSplit",
                            "priorityExtractor", "mappingCorrector", "routerIdLookUp", "isEmpty",
                            "currentClipLength", "isSequenceComplete", "clipstackBuilder",
                            "clipstackElement", "isEqualTo", "round", "logicalSourceListExtractor",
                            "nextElementExtractor", "nextElementRemover"));
}

TEST(TemplateParser, TokenWithoutABaseWordGivesANullEntry) {
    EXPECT_THAT(segmentsOf("a{$abc}b"), ElementsAre("lit a", "null", "lit b"));
    EXPECT_THAT(segmentsOf("{$abc|increment}"), ElementsAre("null"));
    EXPECT_THAT(segmentsOf("{$Context:A}"), ElementsAre("null"));
    EXPECT_EQ(printed("a{$abc}b"), "ab");
    EXPECT_EQ(TemplateParser::parse("a{$abc}b").evaluate({}, nullptr), "ab");
    EXPECT_TRUE(TemplateParser::parse("a{$abc}b").matches("ab"));
}

TEST(TemplateParser, EmptyGroupAndBareContextWordAreOutOfRange) {
    for (auto const* source : {"{}", "a{}b", "a{", "{@x}{", "{$context}", "$context",
                               "{$context|increment}", "{$context:{}}"}) {
        try {
            TemplateParser::parse(source);
            ADD_FAILURE() << "no exception for " << source;
        } catch (std::out_of_range const& exception) {
            EXPECT_STREQ(exception.what(), "invalid string position") << source;
        }
    }
}

TEST(TemplateParser, ArgumentThatIsNoNumberFailsWithItsReadersWords) {
    for (auto const* word : {"width=x,padding=0", "mappingCorrector=",
                             "leverarm=1,bank=x,emem=true", "priorityExtractor"}) {
        try {
            TemplateParser::parse("{@x|increment|" + std::string(word) + "}");
            ADD_FAILURE() << "no exception for " << word;
        } catch (IllegalArgumentException const& exception) {
            EXPECT_EQ(exception.getMessage(), "Unable to convert a string value into an Int32.")
                << word;
        }
    }
}

TEST(TemplateParser, MaskThatIsNoNumberFailsByPointer) {
    try {
        TemplateParser::parse("{@x|bitmask=xyz,a=b,c=d}");
        ADD_FAILURE() << "no exception";
    } catch (IllegalArgumentException* thrown) {
        std::unique_ptr<IllegalArgumentException> const exception(thrown);
        EXPECT_EQ(exception->getMessage(), "Unable to convert a string value into a UInt32");
    }
}

}  // namespace
}  // namespace FrameDriver::Template
