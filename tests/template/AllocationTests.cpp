#include "tests/support/AllocationCount.h"

#if QFD_COUNTS_ALLOCATIONS

#include "template/ContextStore.h"
#include "template/TemplateParser.h"
#include "template/TemplateString.h"

#include <gtest/gtest.h>

// What the road of a FID may allocate: its results and nothing else.

namespace FrameDriver::Template {
namespace {

using Testing::allocationsOf;

class Allocations : public ::testing::Test {
  protected:
    Allocations() {
        store.set("A STATE KEY THAT IS NO SHORT STRING 12", "1080i");
        evaluated.reserve(1000);
    }

    TemplateString const pattern =
        TemplateParser::parse("FID: PANEL.MEMORY.RECALL[NUMBER={@number}\x92[BANK={@bank}\x92");
    TemplateString const output =
        TemplateParser::parse("Set Message: {@number} {@absent} {$context:A STATE KEY THAT IS NO "
                              "SHORT STRING {@number}}");
    std::string const text = "FID: PANEL.MEMORY.RECALL[NUMBER=12\x92[BANK=3\x92";
    ContextStore store;
    std::string evaluated;
};

TEST_F(Allocations, MatchingAllocatesNothing) {
    bool matched = false;
    EXPECT_EQ(allocationsOf([&] { matched = pattern.matches(text); }), 0u);
    EXPECT_TRUE(matched);
    EXPECT_EQ(allocationsOf([&] { matched = pattern.matches("FID: OTHER"); }), 0u);
    EXPECT_FALSE(matched);
}

TEST_F(Allocations, CapturingAllocatesTheEntriesOfTheMap) {
    EXPECT_EQ(allocationsOf([&] { EXPECT_EQ(pattern.extractVariables(text).size(), 2u); }), 2u);
}

TEST_F(Allocations, AppendingAllocatesNothingWhereThereIsRoom) {
    auto const variables = pattern.extractVariables(text);
    EXPECT_EQ(allocationsOf([&] { output.appendTo(evaluated, variables, &store); }), 0u);
    EXPECT_EQ(evaluated, "Set Message: 12 {@absent} 1080i");
}

TEST_F(Allocations, EvaluationAllocatesItsResultOnce) {
    auto const variables = pattern.extractVariables(text);
    auto const filled = TemplateParser::parse(
        "SID: A STATE OF THE PANEL={@number} AND ANOTHER STATE OF IT={@bank} IN ALL");
    EXPECT_EQ(allocationsOf([&] { filled.evaluate(variables, &store); }), 1u);
}

}  // namespace
}  // namespace FrameDriver::Template

#endif
