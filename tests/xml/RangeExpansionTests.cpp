#include "XMLFiles.h"
#include "foundation/Exceptions.h"
#include "xml/RangeExpansion.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using Texts = std::list<std::string>;
using Expand = Texts (*)(std::string const&, char, char, std::size_t);

struct Row {
    std::string text;
    Texts texts;
};

void check(Expand expand, std::initializer_list<Row> rows) {
    for (Row const& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(expand(row.text, '[', ']', 0), row.texts);
    }
}

TEST(HexRange, GoesFromBoundToBoundInTheLowerOnesWidth) {
    check(expandHexRange, {{"[0x10-0x12]", {"10", "11", "12"}},
                           {"0x00[00-02]00", {"0x000000", "0x000100", "0x000200"}},
                           {"[08-10]", {"08", "09", "0a", "0b", "0c", "0d", "0e", "0f", "10"}},
                           {"[0x08-0x0b]", {"08", "09", "0a", "0b"}},
                           {"[e-11]", {"e", "f", "10", "11"}},
                           {"[0FE-0fF]", {"0fe", "0ff"}},
                           {"[fffffffe-ffffffff]", {"fffffffe", "ffffffff"}},
                           {"[3-3]", {"3"}},
                           {"[0x5-0x3]", {}}});
}

TEST(DecimalRange, GoesFromBoundToBoundWithoutPadding) {
    check(expandDecimalRange, {{"[8-10]", {"8", "9", "10"}},
                               {"[08-10]", {"8", "9", "10"}},
                               {"a[1-2]b", {"a1b", "a2b"}},
                               {"[2147483646-2147483647]", {"2147483646", "2147483647"}},
                               {"[5-3]", {}}});
}

TEST(DecimalRange, BoundsCompareWithTheirSigns) { check(expandDecimalRange, {{"[1--5]", {}}}); }

TEST(Ranges, ATextWithoutABracketIsItself) {
    for (Expand const expand : {expandRange, expandHexRange, expandDecimalRange})
        check(expand, {{"plain", {"plain"}}, {"", {""}}, {"]", {"]"}}, {"1-2", {"1-2"}}});
}

TEST(Ranges, TheFirstOneVariesSlowest) {
    check(expandDecimalRange,
          {{"[1-2][3-4]", {"13", "14", "23", "24"}},
           {"[1-2].[3-4].[5-6]",
            {"1.3.5", "1.3.6", "1.4.5", "1.4.6", "2.3.5", "2.3.6", "2.4.5", "2.4.6"}},
           {"[1-2][4-3]", {}}});
}

TEST(Ranges, LaterOnesAreHexadecimalIfTheySayX) {
    check(expandDecimalRange, {{"[9-10][0x9-0xa]", {"99", "9a", "109", "10a"}}});
    check(expandHexRange, {{"[9-a][9-10]", {"99", "910", "a9", "a10"}}});
}

TEST(Ranges, ARangeIsHexadecimalIfXStandsTwoPlacesBehindTheBracket) {
    check(expandRange,
          {{"[0x9-0xa]", {"9", "a"}}, {"[9-10]", {"9", "10"}}, {"A[1-2]B", {"A1B", "A2B"}}});
    // Which need not be a "0x" for that.
    check(expandRange, {{"[9x-0a]", {"09", "0a"}}});
}

TEST(Ranges, TheBracketsAreTheCallers) {
    EXPECT_EQ(expandRange("A(1-2)B", '(', ')', 0), (Texts{"A1B", "A2B"}));
    EXPECT_EQ(expandRange("A(1-2)B", '[', ']', 0), (Texts{"A(1-2)B"}));
}

TEST(Ranges, TheFirstBracketIsSoughtFromThePosition) {
    EXPECT_EQ(expandDecimalRange("[1-2]", '[', ']', 1), (Texts{"[1-2]"}));
    EXPECT_EQ(expandDecimalRange("[1-2]", '[', ']', 9), (Texts{"[1-2]"}));
    EXPECT_EQ(expandDecimalRange("x[1-2]", '[', ']', 1), (Texts{"x1", "x2"}));
    // What follows is expanded from the start.
    EXPECT_EQ(expandDecimalRange("[1-2][3-4]", '[', ']', 1), (Texts{"13", "23", "14", "24"}));
}

TEST(Ranges, WhatFollowsABoundsDigitsIsIgnored) {
    check(expandDecimalRange, {{"[ 1 to-2 too]", {"1", "2"}}});
    check(expandHexRange, {{"[1g-2g]", {"01", "02"}}});
}

// The cuts of odd texts are kept: lists in use depend on whatever comes out.
TEST(Ranges, WithoutADashTheUpperBoundIsCutFromTheStart) {
    check(expandDecimalRange, {{"7[5]", {"75", "76", "77"}}, {"7[9]", {}}});
    EXPECT_EQ(thrownText<IllegalArgumentException>([] { expandDecimalRange("[5]", '[', ']', 0); }),
              "Unable to convert a string value into an Int32.");
}

TEST(Ranges, ADashBehindTheBracketReachesToTheEnd) {
    check(expandDecimalRange, {{"[5]-7", {"5-7", "6-7", "7-7"}}});
}

TEST(HexRange, APrefixOfTheLowerBoundAloneSpoilsTheUpperOne) {
    check(expandHexRange, {{"[0x1-123]", {"1", "2", "3"}}});
    EXPECT_EQ(thrownText<std::out_of_range>([] { expandHexRange("[0x1-", '[', ']', 0); }),
              "invalid string position");
}

TEST(Ranges, BoundsThatAreNoNumbersFail) {
    for (char const* text : {"[a-b]", "[-1-2]", "[]", "[1-]", "["}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(
            thrownText<IllegalArgumentException>([&] { expandDecimalRange(text, '[', ']', 0); }),
            "Unable to convert a string value into an Int32.");
    }
    try {
        expandHexRange("[g-h]", '[', ']', 0);
        FAIL() << "nothing was thrown";
    } catch (IllegalArgumentException const* exception) {
        std::unique_ptr<IllegalArgumentException const> const owned(exception);
        EXPECT_EQ(owned->getMessage(), "Unable to convert a string value into a UInt32");
    }
}

TEST(Ranges, ARangeThatIsNeverClosedFails) {
    EXPECT_EQ(thrownText<IllegalArgumentException>([] { expandRange("A[1-2", '[', ']', 0); }),
              "A range has no closing bracket.");
    EXPECT_EQ(thrownText<IllegalArgumentException>([] { expandRange("[0x1-0x2", '[', ']', 0); }),
              "A range has no closing bracket.");
    EXPECT_EQ(expandRange("[2-1", '[', ']', 0), Texts{});
}

TEST(Ranges, AMillionTextsAreTheMost) {
    EXPECT_EQ(expandHexRange("[00000-fffff]", '[', ']', 0).size(), 1048576u);
    for (char const* text : {"[0-1048576]", "[0-2000000000]", "[0x0-0xffffffff]",
                             "[0-2000][1-1000]", "[0-2000][1-1000][2-1]"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(thrownText<IllegalArgumentException>([&] { expandRange(text, '[', ']', 0); }),
                  "A range stands for too many texts.");
    }
}

}  // namespace
}  // namespace FrameDriver::XML
