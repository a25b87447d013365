#include "cpl/PayloadReader.h"

#include <gtest/gtest.h>

namespace FrameDriver::CPL {
namespace {

TEST(PayloadReader, ReadsBigEndianNumbersOfEveryWidth) {
    unsigned char const bytes[] = {0xFF, 0x80, 0x01, 0xFF, 0xFE, 0x80, 0, 0, 1,  // u8 u16 i16 u32
                                   0xFF, 0xFF, 0xFF, 0xFD, 0x3F, 0xC0, 0, 0,     // i32 f32
                                   1,    2,    3,    4,    5,    6,    7, 8,     // u64
                                   0xBF, 0xF8, 0,    0,    0,    0,    0, 0};    // f64
    PayloadReader reader(bytes, sizeof bytes);
    EXPECT_EQ(reader.readUInt8(), 0xFF);
    EXPECT_EQ(reader.readUInt16(), 0x8001);
    EXPECT_EQ(reader.readInt16(), -2);
    EXPECT_EQ(reader.readUInt32(), 0x80000001u);
    EXPECT_EQ(reader.readInt32(), -3);
    EXPECT_EQ(reader.readFloat(), 1.5f);
    EXPECT_EQ(reader.readUInt64(), 0x0102030405060708u);
    EXPECT_EQ(reader.readDouble(), -1.5);
    EXPECT_EQ(reader.left(), 0u);
    EXPECT_FALSE(reader.ranShort());
}

TEST(PayloadReader, ATextEndsAtItsNulWhichIsPassedOver) {
    unsigned char const bytes[] = {'a', 'b', 0, 0, 'c'};
    PayloadReader reader(bytes, sizeof bytes);
    EXPECT_EQ(reader.readText(), "ab");
    EXPECT_EQ(reader.readText(), "");
    EXPECT_FALSE(reader.ranShort());
    EXPECT_EQ(reader.readText(), "c");
    EXPECT_TRUE(reader.ranShort());
    EXPECT_EQ(reader.readText(), "");
}

TEST(PayloadReader, ANumberThatIsNotWhollyThereIs0AndUsesUpTheRest) {
    unsigned char const bytes[] = {1, 2, 3};
    PayloadReader reader(bytes, sizeof bytes);
    EXPECT_EQ(reader.readUInt32(), 0u);
    EXPECT_TRUE(reader.ranShort());
    EXPECT_EQ(reader.left(), 0u);
    EXPECT_EQ(reader.readUInt8(), 0);
    EXPECT_EQ(reader.readDouble(), 0.0);
}

}  // namespace
}  // namespace FrameDriver::CPL
