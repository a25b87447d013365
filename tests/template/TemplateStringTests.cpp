#include "TestDecorator.h"
#include "template/ContextStore.h"
#include "template/ContextString.h"
#include "template/PlainString.h"
#include "template/TemplateString.h"
#include "template/Variable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <utility>

namespace FrameDriver::Template {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

Segment* plain(std::string_view text) { return new PlainString(text); }

Segment* variable(std::string_view name, std::vector<char const*> const& decorators = {}) {
    auto segment = std::make_unique<Variable>(name);
    for (auto const* label : decorators)
        segment->addDecorator(std::make_unique<TestDecorator>(label));
    return segment.release();
}

Segment* context(std::vector<Segment*> const& key,
                 std::vector<char const*> const& decorators = {}) {
    auto segment = std::make_unique<ContextString>(TemplateString(key));
    for (auto const* label : decorators)
        segment->addDecorator(std::make_unique<TestDecorator>(label));
    return segment.release();
}

TemplateString make(std::vector<Segment*> const& segments) { return TemplateString(segments); }

// --- Segments ------------------------------------------------------------------------------

TEST(PlainString, IsFoundAsAWholeAtOrBehindThePosition) {
    PlainString const segment("ab");
    EXPECT_FALSE(segment.isVariable());
    EXPECT_EQ(segment.length(), 2u);
    EXPECT_EQ(segment.find("abxab", 0), 0u);
    EXPECT_EQ(segment.find("abxab", 1), 3u);
    EXPECT_EQ(segment.find("abxab", 4), Segment::notFound);
    EXPECT_EQ(segment.find("abxab", 99), Segment::notFound);
    EXPECT_EQ(segment.find("", 0), Segment::notFound);
    EXPECT_TRUE(segment.occursIn("abxab", 3));
    EXPECT_FALSE(segment.occursIn("abxab", 4));
}

TEST(PlainString, EvaluatesAndPrintsUnchanged) {
    PlainString const segment("a{b}\x92");
    EXPECT_EQ(segment.evaluate({{"b", "x"}}, nullptr), "a{b}\x92");
    EXPECT_EQ(segment.toString(), "a{b}\x92");
}

TEST(Variable, IsFoundWhereItIsSoughtAndHasNoLength) {
    Variable const segment("x");
    EXPECT_TRUE(segment.isVariable());
    EXPECT_EQ(segment.length(), 0u);
    EXPECT_EQ(segment.find("abc", 2), 2u);
    EXPECT_EQ(segment.find("abc", 7), 7u);
    EXPECT_TRUE(segment.occursIn("", 5));
}

TEST(Variable, EvaluatesToItsTextThroughItsDecoratorsInOrder) {
    std::unique_ptr<Segment> const bare(variable("x")), decorated(variable("x", {"f", "g"}));
    EXPECT_EQ(bare->evaluate({{"x", "1"}}, nullptr), "1");
    EXPECT_EQ(decorated->evaluate({{"x", "1"}}, nullptr), "g(f(1))");
    EXPECT_EQ(decorated->evaluate({{"x", ""}}, nullptr), "g(f())");
}

TEST(Variable, AbsentFromTheMapShowsInTemplateSyntaxWithItsDecoratorsSkipped) {
    std::unique_ptr<Segment> const segment(variable("x", {"f"}));
    EXPECT_EQ(segment->evaluate({}, nullptr), "{@x}");
    EXPECT_EQ(segment->evaluate({{"X", "1"}}, nullptr), "{@x}");
}

TEST(Variable, PrintsItsNameAndDecorators) {
    std::unique_ptr<Segment> const bare(variable("")), decorated(variable("x", {"f", "g"}));
    EXPECT_EQ(bare->toString(), "{@}");
    EXPECT_EQ(decorated->toString(), "{@x|f|g}");
}

TEST(Variable, CloneIsDeepAndReleasesItsDecorators) {
    auto const before = TestDecorator::alive();
    {
        std::unique_ptr<Segment> copy;
        {
            std::unique_ptr<Segment> const segment(variable("x", {"f", "g"}));
            copy.reset(segment->clone());
            EXPECT_EQ(TestDecorator::alive(), before + 4);
        }
        EXPECT_EQ(copy->toString(), "{@x|f|g}");
        EXPECT_EQ(copy->evaluate({{"x", "1"}}, nullptr), "g(f(1))");
    }
    EXPECT_EQ(TestDecorator::alive(), before);
}

TEST(ContextString, GivesTheTextOfItsKey) {
    ContextStore store;
    store.set("EMEM.3.NAME", "Opener");
    store.set("EMEM.4.NAME", "");
    std::unique_ptr<Segment> const segment(
        context({plain("EMEM."), variable("n"), plain(".NAME")}));
    EXPECT_EQ(segment->evaluate({{"n", "3"}}, &store), "Opener");
    EXPECT_EQ(segment->evaluate({{"n", "4"}}, &store), "") << "present, though empty";
    EXPECT_EQ(segment->evaluate({{"n", "5"}}, &store), "INVALID");
    EXPECT_EQ(segment->evaluate({}, &store), "INVALID");
}

TEST(ContextString, DecoratorsRunOnAnAbsentKeyToo) {
    ContextStore store;
    std::unique_ptr<Segment> const segment(context({plain("KEY")}, {"f"}));
    EXPECT_EQ(segment->evaluate({}, &store), "f(INVALID)");
    store.set("KEY", "1");
    EXPECT_EQ(segment->evaluate({}, &store), "f(1)");
}

TEST(ContextString, KeysNestToAnyDepth) {
    ContextStore store;
    store.set("A", "B");
    store.set("KEY.B", "C");
    store.set("C", "deep");
    auto* const inner = context({plain("KEY."), context({plain("A")}, {})});
    std::unique_ptr<Segment> const segment(context({inner}));
    EXPECT_EQ(segment->evaluate({}, &store), "deep");
}

TEST(ContextString, AppendsBehindWhatIsThere) {
    ContextStore store;
    store.set("A LONG KEY OF STATE", "1");
    std::unique_ptr<Segment> const segment(context({plain("A LONG KEY OF STATE")}, {"f"}));
    std::string out = "ahead ";
    segment->appendTo(out, {}, &store);
    EXPECT_EQ(out, "ahead f(1)");
}

TEST(ContextString, IsNamedByItsKeyAndPrintsWithoutDecorators) {
    ContextString const fromSource("EMEM.{@x}.NAME");
    EXPECT_EQ(fromSource.getName(), "EMEM.{@x}.NAME");
    std::unique_ptr<Segment> const fromTemplate(context({plain("EMEM."), variable("x")}, {"f"}));
    EXPECT_EQ(fromTemplate->toString(), "{$context:EMEM.{@x}}");
    EXPECT_EQ(static_cast<Variable&>(*fromTemplate).getName(), "EMEM.{@x}");
    EXPECT_TRUE(fromTemplate->isVariable());
    EXPECT_EQ(fromTemplate->length(), 0u);
    EXPECT_EQ(fromTemplate->find("abc", 2), 2u);
}

// The source text "{abc}" prints as "abc": a name taken from the key's print would differ.
TEST(ContextString, CloneKeepsItsName) {
    ContextStore store;
    store.set("abc", "1");
    ContextString const segment("{abc}");
    std::unique_ptr<ContextString> const copy(segment.clone());
    EXPECT_EQ(copy->getName(), "{abc}");
    EXPECT_EQ(copy->toString(), "{$context:{abc}}");
    EXPECT_EQ(copy->evaluate({}, &store), "1");
}

// --- Evaluation ----------------------------------------------------------------------------

TEST(TemplateString, EvaluatesItsSegmentsInOrder) {
    ContextStore store;
    store.set("RATE", "25");
    auto const pattern = make({plain("SID: "), variable("a"), plain(" at "),
                               context({plain("RATE")}), variable("b", {"f"}), variable("c")});
    EXPECT_EQ(pattern.evaluate({{"a", "X"}, {"b", "1"}}, &store), "SID: X at 25f(1){@c}");
    std::string out = "ahead ";
    pattern.appendTo(out, {{"a", ""}, {"b", ""}, {"c", "!"}}, &store);
    EXPECT_EQ(out, "ahead SID:  at 25f()!");
}

TEST(TemplateString, PrintsInTemplateSyntax) {
    EXPECT_EQ(make({plain("a"), variable("x", {"f"}), context({variable("k")})}).toString(),
              "a{@x|f}{$context:{@k}}");
}

// --- Matching ------------------------------------------------------------------------------

TEST(TemplateString, WithoutSegmentsMatchesEveryTextAndGivesNothing) {
    TemplateString const pattern;
    for (auto const* text : {"", "a", "anything at all"}) {
        EXPECT_TRUE(pattern.matches(text));
        EXPECT_THAT(pattern.extractVariables(text), IsEmpty());
    }
    EXPECT_EQ(pattern.evaluate({{"a", "1"}}, nullptr), "");
    EXPECT_EQ(pattern.toString(), "");
    EXPECT_THAT(pattern.getSegments(), IsEmpty());
}

TEST(TemplateString, MatchesByTheLiteralsInOrder) {
    struct Row {
        TemplateString pattern;
        std::vector<char const*> fits, misses;
    };
    Row const rows[] = {
        // Not anchored at the start, but at the end. The empty text fits a last literal, and so
        // does a text that is used up where a literal isn't found.
        {make({plain("abc")}), {"abc", "xxabc", ""}, {"abcx", "ab", "abcabc", "x"}},
        {make({plain("ab"), variable("x"), plain("c")}),
         {"abc", "abxc", "ab", "xxab", ""},
         {"abx", "c"}},
        {make({variable("x"), plain("-")}), {"1-", "-", ""}, {"1-2", "1", "1--"}},
        {make({plain("a"), variable("x")}), {"a", "ab", "xab"}, {"", "b"}},
        {make({variable("x")}), {"", "a"}, {}},
        {make({plain("a"), variable("x"), plain("b"), variable("y")}),
         {"ab", "a1b2"},
         {"a", "ba", ""}},
        {make({plain("-"), variable("a"), plain("-")}), {"-1-", "-", "", "--"}, {"-1", "1-1-1"}},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.pattern.toString());
        for (auto const* text : row.fits)
            EXPECT_TRUE(row.pattern.matches(text)) << text;
        for (auto const* text : row.misses)
            EXPECT_FALSE(row.pattern.matches(text)) << text;
    }
}

TEST(TemplateString, CapturesUpToTheNextLiteral) {
    auto const pattern = make({variable("a"), plain("-"), variable("b")});
    EXPECT_TRUE(pattern.matches("1-2"));
    EXPECT_THAT(pattern.extractVariables("1-2"), ElementsAre(Pair("a", "1"), Pair("b", "2")));
    EXPECT_THAT(pattern.extractVariables("1-2-3"), ElementsAre(Pair("a", "1"), Pair("b", "2-3")));
    EXPECT_THAT(pattern.extractVariables("-"), ElementsAre(Pair("a", ""), Pair("b", "")));
}

TEST(TemplateString, VariableAheadOfAVariableCapturesNothing) {
    EXPECT_THAT(make({variable("a"), variable("b")}).extractVariables("xy"),
                ElementsAre(Pair("a", ""), Pair("b", "xy")));
}

TEST(TemplateString, NextLiteralIsSoughtFromTheStartOfTheText) {
    auto const pattern = make({plain("-"), variable("a"), plain("-")});
    EXPECT_TRUE(pattern.matches("-1-"));
    EXPECT_THAT(pattern.extractVariables("-1-"), ElementsAre(Pair("a", "")));
}

TEST(TemplateString, LiteralThatIsNotFoundCapturesNothing) {
    EXPECT_THAT(make({variable("a"), plain("+")}).extractVariables("1-"),
                ElementsAre(Pair("a", "")));
}

TEST(TemplateString, FirstCaptureOfANameStays) {
    auto const pattern = make({variable("a"), plain("-"), variable("a")});
    auto const variables = pattern.extractVariables("1-2");
    EXPECT_THAT(variables, ElementsAre(Pair("a", "1")));
    EXPECT_EQ(pattern.evaluate(variables, nullptr), "1-1");
}

TEST(TemplateString, ContextStringCapturesUnderItsSourceText) {
    auto const pattern = make({new ContextString("K.{@x}"), plain(";"), variable("y", {"f"})});
    EXPECT_THAT(pattern.extractVariables("1;2"), ElementsAre(Pair("K.{@x}", "1"), Pair("y", "2")))
        << "raw text: no decorator runs, no state is read";
}

// An empty text satisfies a last literal, but the literals ahead of the variable aren't in it.
TEST(TemplateString, VariableBehindTheEndThrows) {
    auto const pattern = make({plain("ab"), variable("x"), plain("-")});
    ASSERT_TRUE(pattern.matches(""));
    try {
        pattern.extractVariables("");
        ADD_FAILURE() << "no exception";
    } catch (std::out_of_range const& exception) {
        EXPECT_STREQ(exception.what(), "invalid string position");
    }
}

// --- Ownership -----------------------------------------------------------------------------

TEST(TemplateString, TakesItsSegmentsOverAndReleasesThem) {
    auto const before = TestDecorator::alive();
    {
        auto* const segment = variable("x", {"f"});
        TemplateString const pattern({segment, plain("a")});
        EXPECT_EQ(pattern.getSegments().front(), segment);
        EXPECT_EQ(TestDecorator::alive(), before + 1);
    }
    EXPECT_EQ(TestDecorator::alive(), before);
}

TEST(TemplateString, CopiesAreDeep) {
    auto const before = TestDecorator::alive();
    {
        auto const pattern = make({plain("a"), variable("x", {"f"})});
        TemplateString const copy(pattern);
        TemplateString assigned = make({variable("y", {"g", "h"})});
        assigned = pattern;
        EXPECT_EQ(TestDecorator::alive(), before + 3);
        EXPECT_NE(copy.getSegments().front(), pattern.getSegments().front());
        EXPECT_EQ(copy.toString(), "a{@x|f}");
        EXPECT_EQ(assigned.toString(), "a{@x|f}");
        auto const& self = assigned;
        assigned = self;
        EXPECT_EQ(assigned.toString(), "a{@x|f}");
    }
    EXPECT_EQ(TestDecorator::alive(), before);
}

TEST(TemplateString, NullEntriesStayUntilTheFirstCopyAndCountForNothing) {
    ContextStore store;
    auto const pattern =
        make({nullptr, variable("a"), nullptr, plain("-"), variable("b"), nullptr});
    TemplateString const copy(pattern);
    EXPECT_EQ(pattern.getSegments().size(), 6u);
    EXPECT_EQ(copy.getSegments().size(), 3u);
    for (auto const* checked : {&pattern, &copy}) {
        EXPECT_EQ(checked->toString(), "{@a}-{@b}");
        EXPECT_TRUE(checked->matches("1-2"));
        EXPECT_FALSE(checked->matches("12"));
        auto const variables = checked->extractVariables("1-2");
        EXPECT_THAT(variables, ElementsAre(Pair("a", "1"), Pair("b", "2")));
        EXPECT_EQ(checked->evaluate(variables, &store), "1-2");
    }
}

TEST(TemplateString, OfNullEntriesAloneIsAsOneWithoutSegments) {
    auto const pattern = make({nullptr, nullptr});
    EXPECT_TRUE(pattern.matches("any"));
    EXPECT_THAT(pattern.extractVariables("any"), IsEmpty());
    EXPECT_EQ(pattern.evaluate({}, nullptr), "");
}

}  // namespace
}  // namespace FrameDriver::Template
