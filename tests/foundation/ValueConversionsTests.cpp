#include "foundation/DataType.h"
#include "foundation/Exceptions.h"
#include "foundation/ValueConversions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>

namespace FrameDriver::Tools {
namespace {

using ErrorManagement::Exception::IllegalArgumentException;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The message of the exception, thrown by value; "no failure" if there is none.
std::string failureOf(std::function<void()> const& call) {
    try {
        call();
        return "no failure";
    } catch (IllegalArgumentException const& exception) {
        return exception.getMessage();
    }
}

TEST(ValueConversions, TypesHaveTheirNames) {
    std::pair<std::int32_t, char const*> const rows[] = {
        {0, "Int16"}, {1, "Int32"},  {2, "UInt16"},  {3, "UInt32"},   {4, "Boolean"},
        {5, "Float"}, {7, "String"}, {12, "Degree"}, {14, "Percent"}, {16, "ScreenUnit"},
    };
    for (auto const& [tag, name] : rows) {
        EXPECT_EQ(typeToName(tag), name);
        EXPECT_EQ(nameToType(name), std::string_view(name) == "Degree" ? -1 : tag) << name;
    }
}

TEST(ValueConversions, OtherTypesAndNamesAreUnknown) {
    for (auto const tag : {-1, 6, 8, 9, 10, 11, 13, 15, 17, 18, 19, 20, 1000})
        EXPECT_EQ(typeToName(tag), "") << tag;
    for (auto const* name : {"", "Bool", "int16", "Int16 ", "Double", "State", "SPercent"})
        EXPECT_EQ(nameToType(name), -1) << name;
}

TEST(ValueConversions, BytesAreReadAsOneCharacter) {
    EXPECT_EQ(stringToByte("65"), 54);
    EXPECT_EQ(stringToByte(" \t\n\v\f\rxy"), 'x');
    EXPECT_EQ(stringToByte("\x92"), -110);
    EXPECT_EQ(stringToUByte("65"), 54);
    EXPECT_EQ(stringToUByte("\x92"), 0x92);
    EXPECT_EQ(stringToUByte(std::string_view("\0", 1)), 0);
}

TEST(ValueConversions, NumbersEndAtTheFirstCharacterThatCannotContinueThem) {
    EXPECT_EQ(stringToInt16("-32768x"), -32768);
    EXPECT_EQ(stringToUInt16("65535,1"), 65535);
    EXPECT_EQ(stringToInt32(" 42xyz"), 42);
    EXPECT_EQ(stringToInt32("+7"), 7);
    EXPECT_EQ(stringToFloat("0.5%"), 0.5f);
    EXPECT_EQ(stringToFloat("-1e3 "), -1000.f);
}

TEST(ValueConversions, UInt32IsReadThroughSixteenSignedBits) {
    EXPECT_EQ(stringToUInt32("32767"), 32767u);
    EXPECT_EQ(stringToUInt32("-2"), 4294967294u);
    EXPECT_EQ(stringToUInt32("-1"), 4294967295u);
    EXPECT_EQ(stringToUInt32("-32768"), 4294934528u);
    for (auto const* text : {"32768", "40000", "-32769", "", "x"}) {
        EXPECT_EQ(failureOf([&] { stringToUInt32(text); }),
                  "Unable to convert a string value into an UInt32.")
            << text;
    }
}

TEST(ValueConversions, UnreadableTextsFailWithTheReadersOwnWords) {
    struct Row {
        std::function<void(std::string_view)> read;
        std::vector<std::string_view> texts;
        char const* message;
    };
    Row const rows[] = {
        {stringToByte, {"", "  \t"}, "Unable to convert a string value into a Byte."},
        {stringToUByte, {"", "\n"}, "Unable to convert a string value into a UByte."},
        {stringToInt16,
         {"", "abc", "32768", "-32769", "-"},
         "Unable to convert a string value into an Int16."},
        {stringToUInt16,
         {"", "x1", "65536", "+"},
         "Unable to convert a string value into an UInt16."},
        {stringToInt32,
         {"", "abc", " ", "2147483648"},
         "Unable to convert a string value into an Int32."},
        {stringToFloat,
         {"", "abc", "inf", "nan", "1e", "."},
         "Unable to convert a string value into a float."},
    };
    for (auto const& row : rows) {
        for (auto const text : row.texts)
            EXPECT_EQ(failureOf([&] { row.read(text); }), row.message) << text;
    }
}

TEST(ValueConversions, HexadecimalReadsWithAndWithoutItsPrefix) {
    EXPECT_EQ(hexStringToUInt32("1f"), 31u);
    EXPECT_EQ(hexStringToUInt32("0x1f"), 31u);
    EXPECT_EQ(hexStringToUInt32("1F,"), 31u);
    EXPECT_EQ(hexStringToUInt32("ffffffff"), 0xffffffffu);
}

// The loaders' last-resort texts rely on the pointer: no handler for the class sees it.
TEST(ValueConversions, UnreadableHexadecimalThrowsAPointer) {
    for (auto const* text : {"", "xyz", "100000000", "0x"}) {
        try {
            hexStringToUInt32(text);
            ADD_FAILURE() << "no failure for " << text;
        } catch (IllegalArgumentException const&) {
            ADD_FAILURE() << "thrown by value for " << text;
        } catch (IllegalArgumentException* thrown) {
            std::unique_ptr<IllegalArgumentException> const exception(thrown);
            EXPECT_EQ(exception->getMessage(), "Unable to convert a string value into a UInt32");
        }
    }
}

TEST(ValueConversions, ValuesPrintAsStreamsPrintThem) {
    EXPECT_EQ(byteToString('A'), "A");
    EXPECT_EQ(byteToString(-110), "\x92");
    EXPECT_EQ(ubyteToString(0x92), "\x92");
    EXPECT_EQ(ubyteToString(0), std::string(1, '\0'));
    EXPECT_EQ(int16ToString(-32768), "-32768");
    EXPECT_EQ(uint16ToString(65535), "65535");
    EXPECT_EQ(int32ToString(-2147483647 - 1), "-2147483648");
    EXPECT_EQ(uint32ToString(4294967295u), "4294967295");
    EXPECT_EQ(boolToString(true), "true");
    EXPECT_EQ(boolToString(false), "false");
}

TEST(ValueConversions, FloatsPrintSixSignificantDigits) {
    std::pair<float, char const*> const rows[] = {
        {0.f, "0"},
        {1.5f, "1.5"},
        {100.f, "100"},
        {0.1f, "0.1"},
        {123456.7f, "123457"},
        {1234567.f, "1.23457e+06"},
        {-2.5f, "-2.5"},
        {0.00001f, "1e-05"},
        {1e20f, "1e+20"},
        {33.3333333f, "33.3333"},
    };
    for (auto const& [value, text] : rows)
        EXPECT_EQ(floatToString(value), text);
}

TEST(ValueConversions, HexadecimalPrintsInLowerCaseWithoutPadding) {
    EXPECT_EQ(int32ToHexString(-1), "ffffffff");
    EXPECT_EQ(int32ToHexString(255), "ff");
    EXPECT_EQ(uint32ToHexString(0), "0");
    EXPECT_EQ(uint32ToHexString(0x8001000Au), "8001000a");
}

// What is at the pointer of a value taken out of the middle of a buffer.
template <class Value>
class Unaligned {
  public:
    explicit Unaligned(Value value) { std::memcpy(bytes + 1, &value, sizeof value); }
    void const* pointer() const { return bytes + 1; }

  private:
    alignas(8) char bytes[sizeof(Value) + 1] = {};
};

TEST(ValueConversions, PointersNeedNoAlignment) {
    EXPECT_EQ(voidToInt16(Unaligned<std::int16_t>(-2).pointer()), -2);
    EXPECT_EQ(voidToUInt16(Unaligned<std::uint16_t>(65535).pointer()), 65535);
    EXPECT_EQ(voidToInt32(Unaligned<std::int32_t>(-70000).pointer()), -70000);
    EXPECT_EQ(voidToUInt32(Unaligned<std::uint32_t>(4000000000u).pointer()), 4000000000u);
    EXPECT_EQ(voidToFloat(Unaligned<float>(0.25f).pointer()), 0.25f);
    EXPECT_EQ(voidToByte(Unaligned<std::int8_t>(-5).pointer()), -5);
    EXPECT_EQ(voidToUByte(Unaligned<std::uint8_t>(250).pointer()), 250);
}

TEST(ValueConversions, AnyByteButZeroIsTrue) {
    for (unsigned const byte : {0u, 1u, 2u, 255u})
        EXPECT_EQ(voidToBool(Unaligned(static_cast<std::uint8_t>(byte)).pointer()), byte != 0);
}

TEST(ValueConversions, StringsAreCopied) {
    std::string source("a\0b", 3);
    auto const copy = voidToString(&source);
    source = "changed";
    EXPECT_EQ(copy, std::string("a\0b", 3));
}

TEST(ValueConversions, NullPointersFailWithTheReadersOwnWords) {
    std::pair<std::function<void()>, char const*> const rows[] = {
        {[] { voidToBool(nullptr); }, "Unable to convert a void pointer into a bool."},
        {[] { voidToByte(nullptr); }, "Unable to convert a void pointer into a Byte."},
        {[] { voidToUByte(nullptr); }, "Unable to convert a void pointer into a UByte."},
        {[] { voidToInt16(nullptr); }, "Unable to convert a void pointer into an Int16."},
        {[] { voidToUInt16(nullptr); }, "Unable to convert a void pointer into an UInt16."},
        {[] { voidToInt32(nullptr); }, "Unable to convert a void pointer into an Int32."},
        {[] { voidToUInt32(nullptr); }, "Unable to convert a void pointer into an UInt32."},
        {[] { voidToFloat(nullptr); }, "Unable to convert a void pointer into a float."},
        {[] { voidToString(nullptr); }, "Unable to convert a void pointer into a string."},
        {[] { valueToString(nullptr, 18); }, "Unable to convert a void pointer into an Int16."},
        {[] { valueToString(nullptr, 7); }, "Unable to convert a void pointer into a string."},
    };
    for (auto const& [call, message] : rows)
        EXPECT_EQ(failureOf(call), message);
}

TEST(ValueConversions, ValuesPrintByTheirTag) {
    std::int16_t const int16 = -3;
    std::int32_t const int32 = -70000;
    std::uint16_t const uint16 = 65535;
    std::uint32_t const uint32 = 4000000000u;
    std::uint8_t const yes = 1;
    float const number = 12.5f;
    double const unprinted = 1;
    struct Row {
        std::int32_t tag;
        void const* pointer;
        char const* text;
    };
    Row const rows[] = {
        {0, &int16, "-3"},          {18, &int16, "-3"},
        {1, &int32, "-70000"},      {2, &uint16, "65535"},
        {3, &uint32, "4000000000"}, {4, &yes, "true"},
        {5, &number, "12.5"},       {11, &number, "12.5"},
        {12, &number, "12.5"},      {14, &number, "12.5"},
        {15, &number, "12.5"},      {16, &number, "12.5"},
        {17, &number, "12.5"},      {7, "bytes\0hidden", "bytes"},
        {8, &unprinted, ""},        {6, nullptr, ""},
        {9, nullptr, ""},           {10, nullptr, ""},
        {13, nullptr, ""},          {19, nullptr, ""},
        {-1, nullptr, ""},          {20, nullptr, ""},
    };
    for (auto const& row : rows)
        EXPECT_EQ(valueToString(row.pointer, row.tag), row.text) << row.tag;
}

// The value that `text` gives under `tag`, read and released as what the header says it is.
template <class Value>
Value valueOf(std::string_view text, std::int32_t tag) {
    std::unique_ptr<Value> const value(static_cast<Value*>(stringToValue(text, tag)));
    return *value;
}

TEST(ValueConversions, TextsBecomeNewValuesByTheirTag) {
    EXPECT_EQ(valueOf<std::int16_t>("-3", 0), -3);
    EXPECT_EQ(valueOf<std::int32_t>("-70000", 1), -70000);
    EXPECT_EQ(valueOf<std::uint16_t>("65535", 2), 65535);
    EXPECT_EQ(valueOf<std::uint32_t>("-1", 3), 4294967295u);
    EXPECT_EQ(valueOf<std::string>("any text", 7), "any text");
    for (auto const tag : {5, 8, 11, 12})
        EXPECT_EQ(valueOf<float>("12.5", tag), 12.5f) << tag;
}

TEST(ValueConversions, OnlyTheLowerCaseWordIsTrue) {
    EXPECT_EQ(valueOf<std::uint8_t>("true", 4), 1);
    for (auto const* text : {"TRUE", "True", "true ", "1", ""})
        EXPECT_EQ(valueOf<std::uint8_t>(text, 4), 0) << text;
}

TEST(ValueConversions, OtherTagsGiveNoValueAlsoIfTheyPrint) {
    for (auto const tag : {-1, 6, 9, 10, 13, 14, 15, 16, 17, 18, 19, 20})
        EXPECT_EQ(stringToValue("1", tag), nullptr) << tag;
}

TEST(ValueConversions, UnreadableTextForATagFailsWithItsReadersWords) {
    EXPECT_EQ(failureOf([] { stringToValue("40000", 3); }),
              "Unable to convert a string value into an UInt32.");
    EXPECT_EQ(failureOf([] { stringToValue("", 8); }),
              "Unable to convert a string value into a float.");
}

TEST(ValueConversions, HexadecimalPairsBecomeBytes) {
    EXPECT_THAT(hexStringToBytes("0aFF"), ElementsAre(10, 255));
    EXPECT_THAT(hexStringToBytes("0aF"), ElementsAre(10));
    EXPECT_THAT(hexStringToBytes("zz"), ElementsAre(0));
    EXPECT_THAT(hexStringToBytes("zz1g 7-1"), ElementsAre(0, 1, 7, 255));
    EXPECT_THAT(hexStringToBytes("a"), IsEmpty());
    EXPECT_THAT(hexStringToBytes(""), IsEmpty());
}

}  // namespace
}  // namespace FrameDriver::Tools
