#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

TEST(EnumerationDecorator, WithoutADefaultPassesAnUnmappedValueThrough) {
    expectRows("enum:1=>ON,0=>OFF",
               {{"1", "ON"}, {"0", "OFF"}, {"2", "2"}, {"", ""}, {"INVALID", "INVALID"}});
}

TEST(EnumerationDecorator, WithADefaultGivesItForAnUnmappedValue) {
    expectRows("enum:1=>ON,$default=>OFF", {{"1", "ON"}, {"2", "OFF"}, {"$default", "OFF"}});
    expectRows("enum:1=>ON,$default=>", {{"2", ""}});
}

TEST(EnumerationDecorator, OfAKeyThatComesTwiceTheFirstStays) {
    expectRows("enum:a=>1,a=>2", {{"a", "1"}});
}

TEST(EnumerationDecorator, OfTwoDefaultsTheLastStays) {
    expectRows("enum:$default=>1,$default=>2", {{"a", "2"}});
}

TEST(EnumerationDecorator, APieceOfOtherThanTwoPartsMapsToTheEmptyText) {
    expectRows("enum:a=>b=>c,d,=>e", {{"a", ""}, {"d", ""}, {"e", ""}, {"b", "b"}});
    expectRows("enum:=>,>,=", {{"", ""}, {"x", "x"}});
}

TEST(EnumerationDecorator, CutsAtSingleCharacters) {
    expectRows("enum:a=1,b>2", {{"a", "1"}, {"b", "2"}});
}

TEST(EnumerationDecorator, PrintsInKeyOrderWithoutTheDefault) {
    EXPECT_EQ(printed("enum:b=>2,$default=>x,a=>1"), "enum:a=>1,b=>2");
    EXPECT_EQ(printed("enum:"), "enum:");
    EXPECT_EQ(printed("enumeration"), "enum:enumeration=>");
}

TEST(BackgroundEnumToNameDecorator, KnowsFiveNumbers) {
    expectRows("backgroundEnumToName", {{"0", "BGDA"},
                                        {"1", "BGDB"},
                                        {"2", "BGDC"},
                                        {"3", "BGDD"},
                                        {"4", "UTIL1"},
                                        {"5", "UTIL2"},
                                        {"00", "UTIL2"},
                                        {"", "UTIL2"}});
}

// It takes single characters, not the names that its counterpart gives.
TEST(BackgroundNameToEnumDecorator, KnowsFiveCharacters) {
    expectRows("backgroundNameToEnum", {{"A", "0"},
                                        {"B", "1"},
                                        {"C", "2"},
                                        {"D", "3"},
                                        {"1", "4"},
                                        {"2", "5"},
                                        {"BGDA", "5"},
                                        {"a", "5"},
                                        {"", "5"}});
}

TEST(LogicalMachineDecorator, NamesTheMissingMachine) {
    expectRows("logicalMachineNumber",
               {{"65535", "NONE"}, {"65534", "65534"}, {"065535", "065535"}, {"", ""}});
}

}  // namespace
}  // namespace FrameDriver::Template
