#include "cpl/DataValue.h"
#include "cpl/ListItem.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

namespace FrameDriver::CPL {
namespace {

ListItemParameter number(char const* name, std::uint16_t value) {
    return {name, new std::uint16_t(value), UInt16};
}

std::uint16_t numberIn(ListItemParameter const& parameter) {
    return *static_cast<std::uint16_t*>(parameter.getData());
}

std::string textOf(ListItem const& item) {
    std::string text;
    item.appendText(text);
    return text;
}

TEST(ListItem, DefaultHasTheStatus1AndPrintsItsBlankBehindSize) {
    EXPECT_EQ(textOf(ListItem()), "List Item (id=0, status=1, size= 0, parameters: )");
}

TEST(ListItem, ConstructorTakesTheNextIdLast) {
    ListItem const item(1, 2, 3, 4);
    EXPECT_EQ(item.getItemId(), 1u);
    EXPECT_EQ(item.getStatus(), 2);
    EXPECT_EQ(item.getSize(), 3);
    EXPECT_EQ(item.getNextItemId(), 4u);
}

TEST(ListItem, ParametersPrintInTheOrderOfTheirNamesEachWithAComma) {
    ListItem item(4294967295u, -1, -2, 0);
    item.addParameter(number("b", 2));
    item.addParameter(ListItemParameter("a", makeText("x, y"), String));
    item.addParameter(ListItemParameter("c", nullptr, NoValue));
    EXPECT_EQ(textOf(item), "List Item (id=4294967295, status=-1, size= -2, parameters: "
                            "a = x, y, b = 2, c = , )");
}

TEST(ListItem, ASecondParameterOfANameLeavesTheFirst) {
    ListItem item;
    item.addParameter(number("n", 1));
    ListItemParameter const second = number("n", 2);
    item.addParameter(second);
    item.addParameter(number("n", 3));
    ListItemParameter out;
    EXPECT_TRUE(item.getParameter("n", out));
    EXPECT_EQ(numberIn(out), 1);
    EXPECT_EQ(item.getParameters().size(), 1u);
}

TEST(ListItem, AddsAndGivesDeepCopies) {
    ListItemParameter const original = number("n", 7);
    ListItem item;
    item.addParameter(original);
    ListItemParameter out;
    ASSERT_TRUE(item.getParameter("n", out));
    EXPECT_EQ(out.getName(), "n");
    EXPECT_EQ(out.getDataType(), UInt16);
    EXPECT_NE(out.getData(), original.getData());
    EXPECT_NE(out.getData(), item.getParameters().at("n").getData());
    EXPECT_EQ(numberIn(out), 7);
}

TEST(ListItem, AnAbsentNameLeavesTheResultAlone) {
    ListItemParameter out = number("before", 5);
    EXPECT_FALSE(ListItem().getParameter("n", out));
    EXPECT_EQ(out.getName(), "before");
    EXPECT_EQ(numberIn(out), 5);
}

TEST(ListItem, CopiesAreDeepAndAssignable) {
    ListItem item(1, 2, 3, 4);
    item.addParameter(number("n", 7));
    ListItem copy(item);
    EXPECT_NE(copy.getParameters().at("n").getData(), item.getParameters().at("n").getData());
    item = ListItem();
    EXPECT_EQ(textOf(copy), "List Item (id=1, status=2, size= 3, parameters: n = 7, )");
    copy = item;
    EXPECT_EQ(textOf(copy), "List Item (id=0, status=1, size= 0, parameters: )");
}

TEST(ListItemParameter, ACopyLosesADouble) {
    double value = 1.5;
    ListItemParameter const original("d", &value, Double);
    EXPECT_EQ(original.getData(), &value);
    ListItemParameter const copy(original);
    EXPECT_EQ(copy.getData(), nullptr);
    EXPECT_EQ(copy.getDataType(), Double);
    ListItem item;
    item.addParameter(original);
    item.addParameter(ListItemParameter("moved", &value, Double));
    EXPECT_EQ(item.getParameters().at("d").getData(), nullptr);
    EXPECT_EQ(item.getParameters().at("moved").getData(), nullptr);
}

TEST(ListItemParameter, MovingLeavesNoValueBehind) {
    ListItemParameter from = number("n", 3);
    ListItemParameter const to(std::move(from));
    EXPECT_EQ(numberIn(to), 3);
    EXPECT_EQ(from.getData(), nullptr);  // NOLINT: that is the promise
}

TEST(ListItemParameter, AssigningReplacesTheValue) {
    ListItemParameter out = number("old", 1);
    ListItemParameter const text("new", makeText("x"), String);
    out = text;
    EXPECT_EQ(out.getName(), "new");
    EXPECT_STREQ(static_cast<char const*>(out.getData()), "x");
    ListItemParameter const& self = out;
    out = self;
    EXPECT_STREQ(static_cast<char const*>(out.getData()), "x");
    out = ListItemParameter("null", nullptr, Int32);
    EXPECT_EQ(out.getData(), nullptr);
}

TEST(ListItemParameter, AssigningAKindWithoutCopiesLeavesTheOldValueUnderTheNewTag) {
    double value = 1.5;
    ListItemParameter out = number("old", 9);
    void* const before = out.getData();
    out = ListItemParameter("new", &value, Double);
    EXPECT_EQ(out.getName(), "new");
    EXPECT_EQ(out.getDataType(), Double);
    EXPECT_EQ(out.getData(), before);
    EXPECT_EQ(out.getHeldType(), UInt16);
    EXPECT_EQ(ListItemParameter(out).getData(), nullptr);
}

}  // namespace
}  // namespace FrameDriver::CPL
