// The datagrams, byte by byte.

#include "sims/time/FieldTime.h"

#include <gtest/gtest.h>

#include <string>

namespace TimeSim {
namespace {

using namespace std::string_literals;

constexpr FieldTime panel{0x1122334455667788U, 0xA1B2C3D4U};
constexpr FieldTime frame{0x0102030405060708U, 0x0A0B0C0DU};

auto const panelBytes = "\x88\x77\x66\x55\x44\x33\x22\x11\xD4\xC3\xB2\xA1"s;
auto const frameBytes = "\x08\x07\x06\x05\x04\x03\x02\x01\x0D\x0C\x0B\x0A"s;
auto const requestBytes = "\x01\0\0\0"s + panelBytes + std::string(12, '\0');
auto const replyBytes = "\x02\0\0\0"s + panelBytes + frameBytes;

TEST(FieldTime, ARequestHasItsBytesInTheirPlaces) { EXPECT_EQ(writeRequest(panel), requestBytes); }

TEST(FieldTime, AReplyHasItsBytesInTheirPlaces) {
    EXPECT_EQ(writeReply({panel, frame}), replyBytes);
    EXPECT_EQ(replyBytes.substr(echoedOffsetAt, 4), "\xD4\xC3\xB2\xA1");
}

TEST(FieldTime, WhatIsWrittenIsReadBack) {
    EXPECT_EQ(readRequest(requestBytes), panel);
    EXPECT_EQ(readReply(replyBytes), (Reply{panel, frame}));
}

TEST(FieldTime, OnlyTwentyEightBytesOfTypeOneAreARequest) {
    struct Row {
        std::string what;
        std::string datagram;
        bool good;
    };
    Row const rows[] = {
        {"nothing", "", false},
        {"one byte short", requestBytes.substr(0, 27), false},
        {"one byte long", requestBytes + "\0"s, false},
        {"type 0", "\0"s + requestBytes.substr(1), false},
        {"type 257: both bytes count", "\x01\x01"s + requestBytes.substr(2), false},
        {"a reply", replyBytes, false},
        {"zeros that aren't zero", "\x01\0zz"s + panelBytes + std::string(12, 'z'), true},
    };
    for (auto const& [what, datagram, good] : rows) {
        SCOPED_TRACE(what);
        EXPECT_EQ(readRequest(datagram).has_value(), good);
    }
}

TEST(FieldTime, AReplyIsReadWhateverItsFirstFourBytesAre) {
    EXPECT_EQ(readReply("abcd"s + replyBytes.substr(4)), (Reply{panel, frame}));
    EXPECT_EQ(readReply(replyBytes.substr(0, 27)), std::nullopt);
    EXPECT_EQ(readReply(replyBytes + "x"), std::nullopt);
    EXPECT_EQ(readReply(""), std::nullopt);
}

TEST(FieldTime, AMomentIsTheBoundaryAndTheMicrosecondsSince) {
    EXPECT_EQ((FieldTime{5000000001U, 16683U}.nanoseconds()), 5016683001);
    EXPECT_EQ((FieldTime{0, 0xFFFFFFFFU}.nanoseconds()), 4294967295000);
}

}  // namespace
}  // namespace TimeSim
