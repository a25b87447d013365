#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

using namespace std::string_view_literals;

TEST(IsEmptyDecorator, TellsTheEmptyValue) {
    expectRows("isEmpty", {{"", "true"}, {" ", "false"}, {"x", "false"}, {"\0"sv, "false"}});
}

TEST(IsEqualDecorator, ComparesByteForByte) {
    expectRows("isEqualTo:A.KEY", {{"A.KEY", "CAM\x92"}},
               {{"CAM\x92", "true"}, {"CAM", "false"}, {"cam\x92", "false"}, {"", "false"}});
}

TEST(IsEqualDecorator, TellsTheEmptyTextFromAnAbsentKey) {
    expectRows("isEqualTo:A.KEY", {{"A.KEY", ""}}, {{"", "true"}, {"x", "false"}});
    expectRows("isEqualTo:A.KEY", {}, {{"", "false"}, {"x", "false"}, {"INVALID", "false"}});
}

TEST(IsEqualDecorator, TheKeyIsEverythingBehindTheFirstColon) {
    EXPECT_EQ(decorate("isEqualTo:A:B", "1", {{"A:B", "1"}}), "true");
    EXPECT_EQ(decorate("isEqualTo", "1", {{"isEqualTo", "1"}}), "true");
}

TEST(BitMaskDecorator, ChoosesByTheBits) {
    expectRows("bitmask=4,set=ON,clear=OFF", {{"4", "ON"},
                                              {"7", "ON"},
                                              {"3", "OFF"},
                                              {"-1", "ON"},
                                              {"", "OFF"},
                                              {"abc", "OFF"},
                                              {"99999999999", "OFF"}});
    expectRows("bitmask=0xF0,set=A=B,clear=C,D", {{"16", "A=B"}, {"15", "C,D"}});
}

// The comparison is a signed one, and dictionaries in use count on it.
TEST(BitMaskDecorator, ASetHighestBitCountsAsClear) {
    expectRows("bitmask=80000000,set=ON,clear=OFF", {{"-1", "OFF"}, {"-2147483648", "OFF"}});
    expectRows("bitmask=ffffffff,set=ON,clear=OFF", {{"-1", "OFF"}, {"1", "ON"}});
}

}  // namespace
}  // namespace FrameDriver::Template
