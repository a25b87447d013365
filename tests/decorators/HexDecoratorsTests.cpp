#include "Decorating.h"

#include <gtest/gtest.h>

namespace FrameDriver::Template {
namespace {

using namespace std::string_view_literals;

TEST(HexToDecimalDecorator, ReadsASignedNumber) {
    expectRows("hexToDecimal", {{"ff", "255"},
                                {"FF", "255"},
                                {"0x1F", "31"},
                                {"-0X1f", "-31"},
                                {" 1fz", "31"},
                                {"7fffffff", "2147483647"},
                                {"-80000000", "-2147483648"}});
}

TEST(HexToDecimalDecorator, GivesZeroForWhatItCannotRead) {
    expectRows("hexToDecimal",
               {{"", "0"}, {"xyz", "0"}, {"0x", "0"}, {"0xg", "0"}, {"ffffffff", "0"}});
}

TEST(DecimalToHexDecorator, PrintsTheTwosComplement) {
    expectRows("decimalToHex", {{"255", "ff"},
                                {"-1", "ffffffff"},
                                {"-2147483648", "80000000"},
                                {"0", "0"},
                                {"12abc", "c"},
                                {"0x1f", "0"}});
}

TEST(DecimalToHexDecorator, GivesZeroForWhatItCannotRead) {
    expectRows("decimalToHex", {{"", "0"}, {"ff", "0"}, {"2147483648", "0"}});
}

TEST(DecimalUnsignedToHexDecorator, ReadsThirtyTwoBitsWithoutSign) {
    expectRows("decimalUnsignedToHex", {{"255", "ff"},
                                        {"2147483648", "80000000"},
                                        {"4294967295", "ffffffff"},
                                        {"-1", "ffffffff"},
                                        {"4294967296", "0"},
                                        {"", "0"},
                                        {"abc", "0"}});
}

TEST(StringToHexDecorator, PrintsEachByteUnpaddedAndSigned) {
    expectRows("stringToHex", {{"AB", "4142"},
                               {"\n", "a"},
                               {"", ""},
                               {"\0\x0F\x10"sv, "0f10"},
                               {"\x7F", "7f"},
                               {"\x80", "ffffff80"},
                               {"a\xFF", "61ffffffff"}});
}

}  // namespace
}  // namespace FrameDriver::Template
