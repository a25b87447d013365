#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

TEST(IncrementDecorator, AddsOneOrHandsTheValueOn) {
    expectRows("increment", {{"7", "8"},
                             {"-1", "0"},
                             {" 41", "42"},
                             {"12abc", "13"},
                             {"+5", "6"},
                             {"1e5", "2"},
                             {"abc", "abc"},
                             {"", ""},
                             {"2147483648", "2147483648"}});
}

TEST(IncrementDecorator, WrapsPastTheLargestNumber) {
    expectRows("increment", {{"2147483647", "-2147483648"}});
}

TEST(DecrementDecorator, SubtractsOneOrHandsTheValueOn) {
    expectRows("decrement", {{"7", "6"},
                             {"0", "-1"},
                             {"12abc", "11"},
                             {"abc", "abc"},
                             {"", ""},
                             {"-2147483649", "-2147483649"},
                             {"-2147483648", "2147483647"}});
}

TEST(ScaleDecorator, MultipliesInFloatAndPrintsSixDigits) {
    expectRows("scale:0.5", {{"3", "1.5"}, {"abc", "0"}, {"", "0"}, {"1e", "0"}, {"-3x", "-1.5"}});
    expectRows("scale:0.1", {{"3", "0.3"}, {"16777217", "1.67772e+06"}});
    expectRows("scale:100", {{"123456.7", "1.23457e+07"}, {"1,5", "100"}});
}

TEST(ScaleDecorator, KeepsTheSignOfZeroAndPrintsInfinity) {
    expectRows("scale:-1", {{"0", "-0"}, {"abc", "-0"}});
    expectRows("scale:1e38", {{"10", "inf"}, {"-10", "-inf"}});
}

TEST(ScaleDecorator, AFactorThatIsNoNumberIsZero) {
    expectRows("scale:abc", {{"3", "0"}});
    expectRows("scale:", {{"3", "0"}});
    expectRows("scale", {{"3", "0"}});
}

TEST(ScaleDecorator, PrintsItsFactor) {
    EXPECT_EQ(printed("scale:0.50"), "scale:0.5");
    EXPECT_EQ(printed("scale:1234567"), "scale:1.23457e+06");
    EXPECT_EQ(printed("scaled by:2"), "scale:2");
}

TEST(RoundDecorator, AddsAHalfAndTruncates) {
    expectRows("round", {{"2.5", "3"},
                         {"2.49", "2"},
                         {"3", "3"},
                         {"0.5", "1"},
                         {"abc", "0"},
                         {"", "0"},
                         {"1e10", "10000000000"},
                         {"16777217", "16777216"}});
}

TEST(RoundDecorator, IsNotRoundingToNearestForNegativeValues) {
    expectRows("round", {{"-2.5", "-2"}, {"-2.6", "-2"}, {"-0.4", "0"}, {"-1.5", "-1"}});
}

// In 32 bits the sum with a half would be 1.
TEST(RoundDecorator, AddsTheHalfInDouble) { expectRows("round", {{"0.49999997", "0"}}); }

TEST(RoundDecorator, StopsAtTheLimitsOfSixtyFourBits) {
    expectRows("round", {{"1e30", "9223372036854775807"}, {"-1e30", "-9223372036854775808"}});
}

}  // namespace
}  // namespace FrameDriver::Template
