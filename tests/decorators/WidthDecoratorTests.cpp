#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

using namespace std::string_view_literals;

TEST(WidthDecorator, FillsOnTheLeft) {
    expectRows("width=4,padding=0",
               {{"7", "0007"}, {"1234", "1234"}, {"12345", "12345"}, {"", "0000"}, {"-1", "00-1"}});
    expectRows("width=3,padding= ", {{"7", "  7"}});
    expectRows("width=1,padding=x", {{"", "x"}, {"7", "7"}});
    expectRows("width=2,padding=\xB0", {{"", "\xB0\xB0"}});
}

TEST(WidthDecorator, TakesTheFirstCharacterOfThePadding) {
    expectRows("width=3,padding=xyz", {{"7", "xx7"}});
}

TEST(WidthDecorator, AWidthBelowOneChangesNothing) {
    expectRows("width=0,padding=x", {{"7", "7"}, {"", ""}});
    expectRows("width=-5,padding=x", {{"7", "7"}});
}

// The search for a second "=" wraps to the start of the word.
TEST(WidthDecorator, WithoutACommaThePaddingIsTheFirstCharacterOfTheWord) {
    expectRows("width=5", {{"7", "wwww7"}});
}

TEST(WidthDecorator, AnEmptyPaddingIsNul) {
    expectRows("width=4,padding=", {{"7", "\0\0\0007"sv}});
}

TEST(WidthDecorator, PrintsBothArguments) {
    EXPECT_EQ(printed("width=6,padding= "), "Width: width=6, padding= ");
    EXPECT_EQ(printed("width=-1,padding=0"), "Width: width=-1, padding=0");
}

}  // namespace
}  // namespace FrameDriver::Template
