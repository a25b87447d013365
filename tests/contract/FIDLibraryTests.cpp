#include "platform/fid/FIDHelper.h"
#include "platform/fid/FIDParameterList.h"
#include "platform/fid/FIDPatternHelper.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

std::string text(FIDParameterList const& list) {
    std::string all;
    for (auto const& each : list)
        all += each.getName() + "=" + each.getValue() + ";";
    return all;
}

FIDParameterList sample() {
    FIDParameterList list;
    list.add("B", "1");
    list.add("A", "2");
    list.add(FIDParameter("B", "3\x92"));
    return list;
}

TEST(FIDParameterList, KeepsTheOrderOfAddingAndNamesThatRepeat) {
    auto const list = sample();
    EXPECT_EQ(text(list), "B=1;A=2;B=3\x92;");
    EXPECT_EQ(list.size(), 3U);
    EXPECT_FALSE(list.empty());
    EXPECT_TRUE(FIDParameterList().empty());
}

TEST(FIDParameterList, GetValueGivesTheFirstAndLeavesTheTextAloneIfThereIsNone) {
    auto const list = sample();
    std::string value = "untouched";
    EXPECT_FALSE(list.getValue("b", value));
    EXPECT_FALSE(list.getValue("", value));
    EXPECT_EQ(value, "untouched");
    EXPECT_TRUE(list.getValue("B", value));
    EXPECT_EQ(value, "1");
}

TEST(FIDParameterList, RemoveParameterTakesOutEveryOneOfThatName) {
    auto list = sample();
    EXPECT_TRUE(list.removeParameter("B"));
    EXPECT_EQ(text(list), "A=2;");
    EXPECT_FALSE(list.removeParameter("B"));
    EXPECT_TRUE(list.removeParameter("A"));
    EXPECT_TRUE(list.empty());
}

TEST(FIDParameterList, CopiesAreDeepAndCarryTheSourceWidget) {
    auto list = sample();
    EXPECT_EQ(list.getSourceWidget().widget, 0);
    list.setSourceWidget({307, 2});
    auto copy = list;
    FIDParameterList assigned;
    assigned = list;
    list.add("C", "4");
    list.setSourceWidget({});
    for (auto const* each : {&copy, &assigned}) {
        EXPECT_EQ(text(*each), "B=1;A=2;B=3\x92;");
        EXPECT_EQ(each->getSourceWidget().widget, 307);
        EXPECT_EQ(each->getSourceWidget().panel, 2);
    }
    EXPECT_EQ(text(FIDParameterList(std::move(copy))), "B=1;A=2;B=3\x92;");
}

// The host hands the identifier over as it stands, and reads its first 16 bits.
TEST(UniqueWidgetID, TheWidgetsNumberLeads) {
    EXPECT_EQ(offsetof(UniqueWidgetID, widget), 0U);
    static_assert(std::is_trivially_copyable_v<UniqueWidgetID>);
}

TEST(FIDPatternHelper, AStarStandsForExactlyOneComponent) {
    struct Row {
        char const* pattern;
        char const* name;
        bool matches;
        char const* captured;
    };
    Row const rows[] = {
        {"A.B", "A.B", true, ""},
        {"A.B", "A.b", false, ""},
        {"A.B", "A", false, ""},
        {"A", "A.B", false, ""},
        {"A.*", "A.B", true, "1=B;"},
        {"A.*", "A", false, ""},
        {"A.*", "A.B.C", false, ""},
        {"A.*", "A.", true, "1=;"},
        {"*.B.*", "X.B.Y", true, "1=X;2=Y;"},
        {"*.B.*", "X.C.Y", false, ""},
        {"*", "A", true, "1=A;"},
        {"*", "", true, "1=;"},
        {"*", "A.B", false, ""},
        {"", "", true, ""},
        {"", "A", false, ""},
        {"A*", "AB", false, ""},
        {"A*", "A*", true, ""},
        {"A.?", "A.B", false, ""},
        {"A.*.", "A.B.", true, "1=B;"},
        {"A\x92.*", "A\x92.b\x92", true, "1=b\x92;"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(std::string(row.pattern) + " on " + row.name);
        FIDPatternHelper pattern(row.pattern);
        EXPECT_EQ(pattern.matches(FIDHelper(row.name)), row.matches);
        EXPECT_EQ(text(pattern.getPatternList()), row.captured);
    }
}

TEST(FIDPatternHelper, CapturesBelongToTheLastMatch) {
    FIDPatternHelper pattern("*.*");
    EXPECT_TRUE(pattern.matches(FIDHelper("A.B")));
    EXPECT_TRUE(pattern.matches(FIDHelper("C.D")));
    EXPECT_EQ(text(pattern.getPatternList()), "1=C;2=D;");
    EXPECT_FALSE(pattern.matches(FIDHelper("E")));
    EXPECT_EQ(text(pattern.getPatternList()), "");
}

}  // namespace
