#include "Decorating.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace FrameDriver::Template {
namespace {

using Priorities = std::array<std::string_view, 6>;  // of keys 1 to 6; empty: absent

/// The packed order of the keys with these priorities and new priorities.
std::string combine(Priorities const& current, Priorities const& changed = {}) {
    ContextStore store;
    for (std::size_t key = 0; key < current.size(); ++key) {
        std::string const name = "P.TRANSI.KEY" + std::to_string(key + 1) + ".PRIORITY.NEXT";
        if (!current[key].empty())
            store.set(name, current[key]);
        if (!changed[key].empty())
            store.set(name + ".NEW", changed[key]);
    }
    return decorate("priorityCombiner=NEXT", "P", store);
}

Priorities const inKeyOrder{"1", "2", "3", "4", "5", "6"};

TEST(PriorityCombinerDecorator, PacksTheOrderOfTheKeys) {
    EXPECT_EQ(combine(inKeyOrder), "5517840");
    EXPECT_EQ(combine({"6", "5", "4", "3", "2", "1"}), std::to_string(0x012345));
}

TEST(PriorityCombinerDecorator, ANewPriorityMovesAKeyForward) {
    EXPECT_EQ(combine(inKeyOrder, {"", "", "", "", "", "1"}), std::to_string(0x432105));
    EXPECT_EQ(combine(inKeyOrder, {"", "", "", "2", "", ""}), std::to_string(0x542130));
}

TEST(PriorityCombinerDecorator, ANewPriorityAtOrBehindTheKeysPlaceIsIgnored) {
    EXPECT_EQ(combine(inKeyOrder, {"1", "2", "3", "4", "5", "6"}), "5517840");
    EXPECT_EQ(combine(inKeyOrder, {"6", "", "", "", "", ""}), "5517840");
}

TEST(PriorityCombinerDecorator, SeveralMovesRunInKeyOrder) {
    EXPECT_EQ(combine(inKeyOrder, {"", "", "", "", "1", "1"}), std::to_string(0x321045));
}

// A move ends where its key stood before all moves, even if an earlier one has shifted it.
TEST(PriorityCombinerDecorator, EachMoveUsesThePositionsOfBefore) {
    EXPECT_EQ(combine({"2", "3", "4", "5", "6", "1"}, {"1", "", "", "", "", "1"}),
              std::to_string(0x432155));
}

TEST(PriorityCombinerDecorator, PrioritiesOutsideOneToSixAreIgnored) {
    EXPECT_EQ(combine({}), "0");
    EXPECT_EQ(combine({"0", "-1", "7", "2147483647", "-2147483648", "abc"}), "0");
    EXPECT_EQ(combine({"", "", "", "", "", "1"}), "5");
    EXPECT_EQ(combine({"9", "2", "3", "4", "5", "6"}, {"1", "", "", "", "", ""}),
              std::to_string(0x543210));
    EXPECT_EQ(combine(inKeyOrder, {"0", "-1", "7", "abc", "2147483647", "-2147483648"}), "5517840");
}

TEST(PriorityCombinerDecorator, OfTwoKeysWithOnePriorityTheLaterHasThePlace) {
    EXPECT_EQ(combine({"1", "1", "", "", "", ""}), "1");
}

TEST(PriorityCombinerDecorator, TheKeyPartMayHoldAnything) {
    EXPECT_EQ(decorate("priorityCombiner=A=B,C", "", {{".TRANSI.KEY3.PRIORITY.A=B,C", "1"}}), "2");
}

TEST(PriorityExtractorDecorator, ListsThePlacesOfAKey) {
    expectRows("priorityExtractor=6", {{"5517840", "6"}, {"0", ""}, {"abc", ""}});
    expectRows("priorityExtractor=1", {{"5517840", "178"}, {"0", "12345678"}, {"", "12345678"}});
    expectRows("priorityExtractor=16", {{"-1", "12345678"}, {"15", "1"}, {"240", "2"}});
}

TEST(PriorityExtractorDecorator, APriorityThatNoDigitHasGivesNothing) {
    for (auto const* word : {"priorityExtractor=0", "priorityExtractor=17", "priorityExtractor=-1"})
        expectRows(word, {{"0", ""}, {"-1", ""}});
}

}  // namespace
}  // namespace FrameDriver::Template
