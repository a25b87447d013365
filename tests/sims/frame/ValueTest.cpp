#include "sims/frame/Value.h"

#include "sims/frame/Line.h"
#include "sims/frame/WireValue.h"

#include <gtest/gtest.h>

namespace FrameSim {
namespace {

TEST(Value, IsReadWholeAndShownInOneForm) {
    struct Row {
        std::string_view type;
        std::string_view text;
        std::string_view shown;  // empty: no value of that type
    };
    Row const rows[] = {
        {"UInt16", "0", "0"},
        {"UInt16", "65535", "65535"},
        {"UInt16", "0xff", "255"},
        {"UInt16", "65536", ""},
        {"UInt16", "-1", ""},
        {"UInt16", "", ""},
        {"UInt16", " 1", ""},
        {"UInt16", "1 ", ""},
        {"UInt16", "1.0", ""},
        {"Int16", "-32768", "-32768"},
        {"Int16", "32768", ""},
        {"Int32", "-2147483648", "-2147483648"},
        {"UInt32", "4294967295", "4294967295"},
        {"UInt32", "4294967296", ""},
        {"State", "65535", "65535"},
        {"State", "-1", ""},
        {"Bool", "true", "true"},
        {"Bool", "1", "true"},
        {"Bool", "false", "false"},
        {"Bool", "0", "false"},
        {"Bool", "yes", ""},
        {"Float", "0.1", "0.1"},
        {"Float", "-2.50", "-2.5"},
        {"Float", "1e9", "1e+09"},
        {"Float", "inf", ""},
        {"Float", "nan", ""},
        {"Float", "1e99", ""},
        {"Percent", "50", "50"},
        {"String", "", "\"\""},
        {"String", "a \"b\"\\", R"("a \"b\"\\")"},
        {"String", "\x92\t\n\r\x01", R"("\x92\t\n\r\x01")"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(std::string(row.type) + " " + std::string(row.text));
        auto const value = readValue(findType(row.type)->type, row.text);
        EXPECT_EQ(value.has_value(), !row.shown.empty());
        EXPECT_EQ(value ? shownValue(*value) : "", row.shown);
    }
}

TEST(Value, OfATypeThatIsNoneCantBeRead) {
    EXPECT_EQ(findType("Double"), nullptr);
    EXPECT_EQ(findType(8), nullptr);
    EXPECT_FALSE(readValue(DataType::NoValue, "1"));
    EXPECT_EQ(typeName(18), "State");
    EXPECT_EQ(typeName(99), "type99");
    EXPECT_EQ(zeroValue(DataType::NoValue), Value{});
}

TEST(Value, TravelsBigEndianByTheWidthOfItsType) {
    struct Row {
        Value value;
        std::string bytes;
    };
    Row const rows[] = {
        {Value::ofInteger(DataType::Int16, -2), "\xff\xfe"},
        {Value::ofInteger(DataType::UInt16, 0x1234), "\x12\x34"},
        {Value::ofInteger(DataType::State, 0xffff), "\xff\xff"},
        {Value::ofInteger(DataType::Int32, -2), "\xff\xff\xff\xfe"},
        {Value::ofInteger(DataType::UInt32, 0x80000001), std::string("\x80\0\0\1", 4)},
        {Value::ofBool(true), "\1"},
        {Value::ofReal(DataType::Percent, 1.0F), std::string("\x3f\x80\0\0", 4)},
        {Value::ofText("a\x92"), "a\x92"},
        {Value::ofText(""), ""},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(shownValue(row.value));
        EXPECT_EQ(valueBytes(row.value), row.bytes);
        EXPECT_EQ(valueFromBytes(row.value.type, row.bytes), row.value);
        if (row.value.form() != ValueForm::text) {
            EXPECT_EQ(valueFromBytes(row.value.type, row.bytes + "x"), std::nullopt);
            EXPECT_EQ(valueFromBytes(row.value.type, row.bytes.substr(1)), std::nullopt);
        }
    }
    EXPECT_EQ(valueFromBytes(8, "12345678"), std::nullopt);
    EXPECT_EQ(valueBytes(Value{}), "");
}

TEST(Value, IsClampedToItsRange) {
    Range const range{.minimum = 0, .maximum = 99, .also = 65535};
    auto const after = [&](std::int64_t number) {
        return clamped(Value::ofInteger(DataType::UInt16, number), range).integer();
    };
    EXPECT_EQ(after(5), 5);
    EXPECT_EQ(after(100), 99);
    EXPECT_EQ(after(-1), 0);
    EXPECT_EQ(after(65535), 65535);
    EXPECT_EQ(clamped(Value::ofReal(DataType::Percent, 120), {0, 100, {}}).real(), 100);
    EXPECT_EQ(clamped(Value::ofText("x"), range).text(), "x");
}

TEST(Value, QuotesAreTakenOffAgain) {
    for (std::string_view const bytes : {"", "plain", "\"\\", "\x92\xff\x01\n\r\t"}) {
        EXPECT_EQ(unquoted(quoted(bytes)), bytes);
    }
    for (std::string_view const bad :
         {"", "\"", "x", "\"x", "\"a\"b\"", R"("\q")", R"("\x1")", R"("\xzz")", R"("\")"}) {
        SCOPED_TRACE(bad);
        EXPECT_FALSE(unquoted(bad));
    }
}

TEST(Device, IsReadInHexadecimal) {
    EXPECT_EQ(readDevice("24000010"), 0x24000010U);
    EXPECT_EQ(readDevice("0x1B000003"), 0x1b000003U);
    EXPECT_EQ(readDevice("5"), 5U);
    EXPECT_FALSE(readDevice(""));
    EXPECT_FALSE(readDevice("0x"));
    EXPECT_FALSE(readDevice("123456789"));
    EXPECT_FALSE(readDevice("24g"));
    EXPECT_EQ(shownDevice(0x1b), "0000001b");
}

TEST(Line, NamesClientDirectionAndFields) {
    Line line{.client = 3, .direction = Direction::sent, .what = "update"};
    line.number("pid", -1).device(0x24).value(Value::ofText("a b"));
    line.add("Clip Name", true).add("level", 0.5F).add("none", Word{"x"});
    EXPECT_EQ(line.text(), "#3 > update pid=-1 did=00000024 type=String value=\"a b\" "
                           "\"Clip Name\"=true level=0.5 none=x");
    line.direction = Direction::received;
    EXPECT_EQ(line.text().substr(0, 5), "#3 < ");
    line.direction = Direction::note;
    EXPECT_EQ(line.text().substr(0, 9), "#3 update");
    line.client = 0;
    EXPECT_EQ(line.text().substr(0, 6), "update");
}

}  // namespace
}  // namespace FrameSim
