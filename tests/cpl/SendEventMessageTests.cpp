#include "cpl/SendEventMessage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace FrameDriver::CPL {
namespace {

using Bytes = std::vector<int>;

Bytes bytesOf(SendEventMessage const& message) {
    return Bytes(message.getData(), message.getData() + message.getSize());
}

void fill(SendEventMessage& message, std::initializer_list<int> bytes) {
    message.reserve(static_cast<std::uint16_t>(bytes.size()));
    for (int const byte : bytes)
        message.addByte(static_cast<std::uint8_t>(byte));
}

std::string eventText(int eid, std::initializer_list<int> bytes) {
    SendEventMessage message(static_cast<EIDType>(eid), 0xAB);
    fill(message, bytes);
    return message.toString();
}

TEST(SendEventMessage, StartsWithoutRoom) {
    SendEventMessage message(EIDType{64}, 2);
    EXPECT_EQ(message.getType(), 5);
    EXPECT_EQ(message.getSize(), 0);
    EXPECT_NE(message.getData(), nullptr);
    EXPECT_FALSE(message.addByte(1));
}

TEST(SendEventMessage, AppendsTheMostSignificantByteFirst) {
    SendEventMessage message(EIDType{1}, 2);
    message.reserve(13);
    EXPECT_TRUE(message.addByte(0x01));
    EXPECT_TRUE(message.addUInt16(0x0203));
    EXPECT_TRUE(message.addInt16(-2));
    EXPECT_TRUE(message.addUInt32(0x04050607));
    EXPECT_TRUE(message.addFloat(1.0f));
    EXPECT_FALSE(message.addByte(9));
    EXPECT_EQ(bytesOf(message), (Bytes{1, 2, 3, 0xFF, 0xFE, 4, 5, 6, 7, 0x3F, 0x80, 0, 0}));
}

TEST(SendEventMessage, APartialValueStaysBehind) {
    SendEventMessage message(EIDType{1}, 2);
    message.reserve(3);
    EXPECT_TRUE(message.addUInt16(0x1122));
    EXPECT_FALSE(message.addUInt16(0x3344));
    EXPECT_EQ(bytesOf(message), (Bytes{0x11, 0x22, 0x33}));
    EXPECT_FALSE(message.addFloat(1.0f));
    EXPECT_FALSE(message.addUInt32(1));
}

TEST(SendEventMessage, ReserveDropsWhatWasThere) {
    SendEventMessage message(EIDType{1}, 2);
    fill(message, {1, 2, 3});
    message.reserve(2);
    EXPECT_EQ(bytesOf(message), (Bytes{0, 0}));
    EXPECT_TRUE(message.addByte(7));
    EXPECT_EQ(bytesOf(message), (Bytes{7, 0}));
    message.reserve(0);
    EXPECT_EQ(message.getSize(), 0);
    EXPECT_FALSE(message.addByte(7));
}

struct Line {
    int eid;
    std::initializer_list<int> bytes;
    char const* text;
};

TEST(SendEventMessage, LogLineShowsTheRegistersOfKnownEvents) {
    Line const lines[] = {
        {64, {1, 2}, "SendEvent Message (eid=64, did=ab,  , REG = 258)"},
        {64, {0xFF, 0xFF, 3}, "SendEvent Message (eid=64, did=ab,  , REG = 65535)"},
        {65, {9, 9, 9, 9, 0, 7}, "SendEvent Message (eid=65, did=ab,  , REG = 7)"},
        {85, {0, 1, 0, 2}, "SendEvent Message (eid=85, did=ab,  , SOURCEREG = 1 , TARGETREG = 2)"},
        {66, {1, 2}, "SendEvent Message (eid=66, did=ab, )"},
        {-1, {}, "SendEvent Message (eid=-1, did=ab, )"},
    };
    for (Line const& line : lines)
        EXPECT_EQ(eventText(line.eid, line.bytes), line.text);
}

TEST(SendEventMessage, ALabelWhoseBytesAreNotThereStandsAlone) {
    Line const lines[] = {
        {64, {}, "SendEvent Message (eid=64, did=ab,  , REG = )"},
        {65, {1, 2, 3, 4, 5}, "SendEvent Message (eid=65, did=ab,  , REG = )"},
        {85, {0, 1, 0}, "SendEvent Message (eid=85, did=ab,  , SOURCEREG = 1 , TARGETREG = )"},
    };
    for (Line const& line : lines)
        EXPECT_EQ(eventText(line.eid, line.bytes), line.text);
    EXPECT_EQ(SendEventMessage(EIDType{64}, 1).toString(),
              "SendEvent Message (eid=64, did=1,  , REG = )");
}

}  // namespace
}  // namespace FrameDriver::CPL
