#include "../xml/XMLFiles.h"
#include "conversion/DictionaryRange.h"
#include "foundation/Exceptions.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace FrameDriver::XML {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using Texts = std::vector<std::string>;

struct Row {
    std::string text;
    Texts texts;
};

void check(std::initializer_list<Row> rows) {
    for (Row const& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(expandForm(row.text), row.texts);
    }
}

TEST(DictionaryRange, ATextWithoutOneIsItself) {
    check({{"FID: id=A", {"FID: id=A"}}, {"", {""}}, {"1-2)", {"1-2)"}}, {"[1-2]", {"[1-2]"}}});
}

TEST(DictionaryRange, DecimalNumbersAreNotPadded) {
    check({{"A(1-3)", {"A1", "A2", "A3"}},
           {"A(3-1)", {}},
           {"(08-10)x", {"8x", "9x", "10x"}},
           {"(5-5)", {"5"}}});
}

TEST(DictionaryRange, HexadecimalNumbersHaveTheLowerBoundsWidth) {
    check({{"(0x08-0x0b)", {"08", "09", "0a", "0b"}},
           {"(0x8-0xb)", {"8", "9", "a", "b"}},
           {"(0x8-0x10)", {"8", "9", "a", "b", "c", "d", "e", "f", "10"}},
           {"A(0x000FE-0x0100)B", {"A000feB", "A000ffB", "A00100B"}},
           {"(0x2-0x1)", {}},
           {"(0xfffffffe-0xffffffff)", {"fffffffe", "ffffffff"}}});
}

TEST(DictionaryRange, TheRightOneVariesFastest) {
    check({{"(1-2).(3-4)", {"1.3", "1.4", "2.3", "2.4"}},
           {"A(10-11)B(1-2)", {"A10B1", "A10B2", "A11B1", "A11B2"}},
           {"(0x0-0x1)(0x8-0x9)", {"08", "09", "18", "19"}},
           {"(0x01-0x02)(3-4)", {"013", "014", "023", "024"}},
           {"(1-2).(0x0a-0x0b)", {"1.0a", "1.0b", "2.0a", "2.0b"}},
           {"(1-2).(4-3)", {}}});
}

// Dictionaries in use have been written around where the next range is sought.
TEST(DictionaryRange, ARangeWithoutAGapBehindADecimalOneIsOverlooked) {
    check({{"(10-11)(1-2)", {"10(1-2)", "11(1-2)"}},
           {"(10-11)x(1-2)", {"10x1", "10x2", "11x1", "11x2"}},
           {"(1-2)(3-4)", {"1(3-4)", "2(3-4)"}},
           {"(1-2).(3-4)", {"1.3", "1.4", "2.3", "2.4"}},
           {"(9-10)(1-2)", {"9(1-2)", "101", "102"}}});
}

TEST(DictionaryRange, NoRangeIsExpandedBehindAHexadecimalNumberLongerThanItsLowerBound) {
    check({{"(0xf-0x10).(1-2)", {"f.1", "f.2", "10.(1-2)"}},
           {"(0x0f-0x10).(1-2)", {"0f.1", "0f.2", "10.1", "10.2"}}});
}

TEST(DictionaryRange, BehindAHexadecimalOneTheSearchBeginsAtTheNumberOfItsZeros) {
    // The overlooked range is found after all, from the offset 1 on.
    check({{"(1-1)(2-3).(0x01-0x01)", {"12.01", "13.01"}},
           {"x(0x0001-0x0001)(2-3)", {"x00012", "x00013"}}});
}

TEST(DictionaryRange, BoundsAreUnsigned) {
    // -5 would be 4294967291.
    EXPECT_EQ(thrownText<IllegalArgumentException>([] { expandForm("(1--5)"); }),
              "A range stands for too many texts.");
}

TEST(DictionaryRange, HexadecimalIsWhatHasAnXTwoPlacesOn) { check({{"(9x-0a)", {"09", "0a"}}}); }

// The cuts of odd texts are kept.
TEST(DictionaryRange, WithoutADashTheUpperBoundIsCutFromTheStart) {
    check(
        {{"7(5)", {"75", "76", "77"}}, {"7(9)", {}}, {"7(5).(8)", {"75.(8)", "76.(8)", "77.(8)"}}});
    EXPECT_EQ(thrownText<IllegalArgumentException>([] { expandForm("A (not a range)"); }),
              "Unable to convert a string value into an Int32.");
}

TEST(DictionaryRange, ADashBehindTheBracketReachesToTheEnd) {
    check({{"(5)-7", {"5-7", "6-7", "7-7"}}});
}

TEST(DictionaryRange, BoundsThatAreNoNumbersFail) {
    for (char const* text : {"(a-b)", "()", "(", "(-1-2)", "(1-)"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(thrownText<IllegalArgumentException>([&] { expandForm(text); }),
                  "Unable to convert a string value into an Int32.");
    }
    try {
        expandForm("(0xg-0xh)");
        FAIL() << "nothing was thrown";
    } catch (IllegalArgumentException const* exception) {
        std::unique_ptr<IllegalArgumentException const> const owned(exception);
        EXPECT_EQ(owned->getMessage(), "Unable to convert a string value into a UInt32");
    }
    EXPECT_EQ(thrownText<std::out_of_range>([] { expandForm("(0x1-"); }),
              "invalid string position");
}

TEST(DictionaryRange, ARangeThatIsNeverClosedFailsUnlessItIsOverlooked) {
    check({{"(1-2", {"1(1-2", "2(1-2"}}});
    EXPECT_EQ(thrownText<IllegalArgumentException>([] { expandForm("A(1-2"); }),
              "A range has no closing bracket.");
    EXPECT_EQ(thrownText<IllegalArgumentException>([] { expandForm("(0x1-0x2"); }),
              "A range has no closing bracket.");
    EXPECT_EQ(expandForm("A(2-1"), Texts{});
}

TEST(DictionaryRange, AMillionTextsAreTheMost) {
    EXPECT_EQ(expandForm("(0x0-0xfffff)").size(), 1048576u);
    for (char const* text : {"(0-1048576)", "(0x0-0xffffffff)", "(0-2000).(1-1000)"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(thrownText<IllegalArgumentException>([&] { expandForm(text); }),
                  "A range stands for too many texts.");
    }
}

}  // namespace
}  // namespace FrameDriver::XML
