#include "WireText.h"
#include "platform/cplclient/wire/ByteReader.h"
#include "platform/cplclient/wire/ByteWriter.h"
#include "platform/cplclient/wire/MessageSplitter.h"
#include "platform/cplclient/wire/Messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace cplwire;
using namespace std::string_literals;
using Texts = std::vector<std::string>;

template <typename Message>
std::string bytesOf(Message const& message, std::uint32_t sequence = 0) {
    std::string bytes;
    EXPECT_TRUE(encode(bytes, message, sequence));
    return bytes;
}

/// The message whose bytes these are, and its sequence.
std::string read(std::string_view bytes) {
    MessageSplitter splitter;
    splitter.feed(bytes);
    auto const message = splitter.next();
    if (!message)
        return splitter.broken() ? "broken" : "not whole";
    auto const text = wireText(*message) + " #" + std::to_string(message->sequence);
    return splitter.next() ? text + " and more" : text;
}

struct Sample {
    std::string bytes;
    std::string wire;
    std::string text;
};

// Every message once, with its bytes. docs/formats/cpl-wire.md promises these.
std::vector<Sample> samples() {
    ParameterReply reply;
    reply.callback = 1;
    return {
        {bytesOf(Hello{magic, 1, "ab"}, 0),
         "0000000f"
         "01"
         "00000000"
         "54465031"
         "0001"
         "0002"
         "6162",
         "hello 1 ab #0"},
        {bytesOf(Welcome{1, "f"}, 0),
         "0000000a"
         "02"
         "00000000"
         "0001"
         "0001"
         "66",
         "welcome 1 f #0"},
        {bytesOf(Refusal{2, "no"}, 0),
         "0000000b"
         "03"
         "00000000"
         "0002"
         "0002"
         "6e6f",
         "refusal 2 no #0"},
        {bytesOf(Set{-2, 0xA1B2C3D4, 8, 7, "\x92"}, 0x01020304),
         "00000016"
         "0a"
         "01020304"
         "fffffffe"
         "a1b2c3d4"
         "00000008"
         "0007"
         "0001"
         "92",
         "set -2 a1b2c3d4 8 7 92 #16909060"},
        {bytesOf(Event{1, 2, "xy"}, 3),
         "00000011"
         "0b"
         "00000003"
         "00000001"
         "00000002"
         "0002"
         "7879",
         "event 1 00000002 7879 #3"},
        {bytesOf(SetList{1, 6, 2, 3, 4, "z"}, 5),
         "0000001a"
         "0c"
         "00000005"
         "00000001"
         "00000006"
         "00000002"
         "0003"
         "00000004"
         "0001"
         "7a",
         "setList 1 6 00000002 3 4 7a #5"},
        {bytesOf(SubscribeParameter{1, 2, 3, 4}, 5),
         "00000013"
         "0d"
         "00000005"
         "00000001"
         "00000002"
         "0003"
         "00000004",
         "subscribe 1 00000002 3 4 #5"},
        {bytesOf(SubscribeList{1, 2, 3, 4, 5}, 6),
         "00000015"
         "0e"
         "00000006"
         "00000001"
         "0002"
         "00000003"
         "0004"
         "00000005",
         "subscribeList 1 2 00000003 4 5 #6"},
        {bytesOf(SubscribeBatch{1, 3, {{2, 3}, {-1, 5}}}, 6),
         "0000001b"
         "0f"
         "00000006"
         "0001"
         "00000003"
         "00000002"
         "00000003"
         "ffffffff"
         "00000005",
         "subscribeBatch 1 3 2 00000003 -1 00000005 #6"},
        {bytesOf(SubscribeBatch{1, 3, {}}, 6),
         "0000000b"
         "0f"
         "00000006"
         "0001"
         "00000003",
         "subscribeBatch 1 3 #6"},
        {bytesOf(Cancel{3, 4}, 7),
         "0000000d"
         "10"
         "00000007"
         "00000003"
         "00000004",
         "cancel 3 4 #7"},
        {bytesOf(Acknowledge{-1}, 0xFFFFFFFF),
         "00000009"
         "14"
         "ffffffff"
         "ffffffff",
         "acknowledge -1 #4294967295"},
        {bytesOf(ParameterUpdate{1, 2, 3, 2, "\1\2"}, 0),
         "00000013"
         "1e"
         "00000000"
         "0001"
         "0002"
         "00000003"
         "0002"
         "0002"
         "0102",
         "update 1 2 00000003 2 0102 #0"},
        {bytesOf(reply, 0),
         "00000011"
         "1f"
         "00000000"
         "0001"
         "0000"
         "00000000"
         "0000"
         "0000",
         "reply 1 0 00000000 0  #0"},
        {bytesOf(ListUpdate{1, "pq"}, 0),
         "00000009"
         "20"
         "00000000"
         "0001"
         "7071",
         "list 1 7071 #0"},
        {bytesOf(Ping{}, 1),
         "00000005"
         "28"
         "00000001",
         "ping #1"},
        {bytesOf(Pong{}, 2),
         "00000005"
         "29"
         "00000002",
         "pong #2"},
        {bytesOf(Bye{}, 3),
         "00000005"
         "2a"
         "00000003",
         "bye #3"},
    };
}

TEST(Wire, EveryMessageHasItsBytes) {
    for (auto const& sample : samples()) {
        EXPECT_EQ(hex(sample.bytes), sample.wire) << sample.text;
        EXPECT_EQ(read(sample.bytes), sample.text);
    }
}

// Only two kinds may end anywhere: a batch after a whole pair, a list after its head.
TEST(Wire, AMessageThatIsShorterOrLongerThanItsFieldsIsGarbage) {
    for (auto const& sample : samples()) {
        auto const& whole = sample.bytes;
        auto const body = whole.size() - prefixSize - headerSize;
        for (std::size_t length = 0; length <= body + 1; ++length) {
            auto changed = (whole + '\0').substr(0, prefixSize + headerSize + length);
            changed[2] = static_cast<char>((headerSize + length) >> 8U);
            changed[3] = static_cast<char>(headerSize + length);
            bool const mayBe =
                length == body || (sample.text[0] == 'l' && length >= 2) ||
                (sample.text.starts_with("subscribeBatch") && length >= 6 && (length - 6) % 8 == 0);
            EXPECT_EQ(read(changed).starts_with("garbage"), !mayBe) << sample.text << " " << length;
        }
    }
}

TEST(Wire, WhatDoesntFitLeavesTheBufferAsItWas) {
    std::string out = "before";
    std::string const tooLong(65536, 'x');
    EXPECT_FALSE(encode(out, Set{0, 0, 0, 7, tooLong}));
    EXPECT_FALSE(encode(out, Hello{magic, version, tooLong}));
    EXPECT_FALSE(encode(out, ListUpdate{0, std::string(maximumLength - 6, 'x')}));
    EXPECT_EQ(out, "before");
    EXPECT_TRUE(encode(out, ListUpdate{0, std::string(maximumLength - 7, 'x')}));
    EXPECT_EQ(out.size(), 6 + prefixSize + maximumLength);
    EXPECT_EQ(read(out.substr(6)).substr(0, 9), "list 0 78");
}

TEST(MessageSplitter, CutsMessagesOutOfAnyPieces) {
    std::string stream;
    Texts expected;
    for (auto const& sample : samples()) {
        stream += sample.bytes;
        expected.push_back(sample.text);
    }
    for (std::size_t const piece :
         {std::size_t{1}, std::size_t{2}, std::size_t{7}, stream.size()}) {
        MessageSplitter splitter;
        Texts seen;
        for (std::size_t at = 0; at < stream.size(); at += piece) {
            splitter.feed(std::string_view(stream).substr(at, piece));
            while (auto const message = splitter.next())
                seen.push_back(wireText(*message) + " #" + std::to_string(message->sequence));
        }
        EXPECT_EQ(seen, expected) << piece;
        EXPECT_FALSE(splitter.broken());
    }
}

TEST(MessageSplitter, ALengthThatCantBeBreaksItForGood) {
    for (auto const* bad : {"00000000", "00000004", "00100001", "ffffffff"}) {
        std::string bytes;
        for (int i = 0; i < 8; i += 2)
            bytes += static_cast<char>(std::stoi(std::string(bad + i, 2), nullptr, 16));
        MessageSplitter splitter;
        splitter.feed(bytesOf(Ping{}) + bytes);
        EXPECT_TRUE(splitter.next());
        EXPECT_FALSE(splitter.broken());
        EXPECT_FALSE(splitter.next());
        EXPECT_TRUE(splitter.broken());
        splitter.feed(bytesOf(Ping{}));
        EXPECT_FALSE(splitter.next());
    }
}

TEST(MessageSplitter, TheLimitHoldsForTheNextMessage) {
    auto const longer = bytesOf(ListUpdate{0, std::string(maximumHelloLength, 'x')});
    MessageSplitter splitter(maximumHelloLength);
    splitter.feed(bytesOf(Ping{}) + longer);
    EXPECT_TRUE(splitter.next());
    splitter.setLimit(maximumLength);
    EXPECT_TRUE(splitter.next());
    splitter.setLimit(maximumHelloLength);
    splitter.feed(longer);
    EXPECT_FALSE(splitter.next());
    EXPECT_TRUE(splitter.broken());
}

TEST(ByteReader, WhatIsMissingReadsAsNothingFromThereOn) {
    std::string const bytes = "\1\2\3";
    ByteReader reader(bytes);
    EXPECT_EQ(reader.u16(), 0x0102);
    EXPECT_EQ(reader.u32(), 0U);
    EXPECT_FALSE(reader.good());
    EXPECT_EQ(reader.u8(), 0);
    EXPECT_EQ(reader.sized16(), "");
    EXPECT_EQ(reader.terminated(), "");
    EXPECT_EQ(reader.left(), 0U);
    EXPECT_FALSE(reader.done());
}

TEST(ByteReader, ReadsWhatAWriterWrote) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.u8(255);
    writer.u16(0xFFFE);
    writer.u32(0xFFFFFFFD);
    writer.i32(std::numeric_limits<std::int32_t>::min());
    writer.f32(-0.0F);
    writer.sized16("a\x92");
    writer.terminated("ends\0here"s);
    writer.terminated("");
    writer.bytes("rest");
    EXPECT_EQ(hex(bytes), "ff"
                          "fffe"
                          "fffffffd"
                          "80000000"
                          "80000000"
                          "00026192"
                          "656e647300"
                          "00"
                          "72657374");
    ByteReader reader(bytes);
    EXPECT_EQ(reader.u8(), 255);
    EXPECT_EQ(reader.u16(), 0xFFFE);
    EXPECT_EQ(reader.u32(), 0xFFFFFFFD);
    EXPECT_EQ(reader.i32(), std::numeric_limits<std::int32_t>::min());
    EXPECT_TRUE(std::signbit(reader.f32()));
    EXPECT_EQ(reader.sized16(), "a\x92");
    EXPECT_EQ(reader.terminated(), "ends");
    EXPECT_EQ(reader.terminated(), "");
    EXPECT_EQ(reader.left(), 4U);
    EXPECT_EQ(reader.bytes(4), "rest");
    EXPECT_TRUE(reader.done());
}

TEST(ByteReader, ATextWithoutItsNulIsNone) {
    ByteReader reader("abc");
    EXPECT_EQ(reader.terminated(), "");
    EXPECT_FALSE(reader.good());
}

// In a block of exactly its size, so that a sanitizer sees a read past the end.
void readAnyhow(std::string_view bytes, std::mt19937& random) {
    auto const exact = std::make_unique<char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), exact.get());
    ByteReader reader({exact.get(), bytes.size()});
    for (int i = 0; i < 20; ++i) {
        auto const before = reader.left();
        switch (random() % 6) {
        case 0:
            reader.u8();
            break;
        case 1:
            reader.u16();
            break;
        case 2:
            reader.u32();
            break;
        case 3:
            reader.sized16();
            break;
        case 4:
            reader.terminated();
            break;
        default:
            reader.bytes(random() % 10);
            break;
        }
        ASSERT_LE(reader.left(), before);
    }
}

TEST(WireFuzz, RandomBytesHarmNobody) {
    std::mt19937 random(20220308);
    std::string bytes;
    for (int round = 0; round < 20000; ++round) {
        bytes.resize(random() % 40);
        for (auto& byte : bytes)
            byte = static_cast<char>(random() % 3 == 0 ? random() : random() % 16);
        readAnyhow(bytes, random);
        for (int type = 0; type < 50; ++type) {
            auto const exact = std::make_unique<char[]>(bytes.size());
            std::copy(bytes.begin(), bytes.end(), exact.get());
            wireText({static_cast<Type>(type), 0, {exact.get(), bytes.size()}});
        }
    }
}

TEST(WireFuzz, SpoiledStreamsAreCutOrBroken) {
    std::mt19937 random(1);
    auto const all = samples();
    for (int round = 0; round < 3000; ++round) {
        std::string stream;
        for (int i = 0; i < 8; ++i)
            stream += all[random() % all.size()].bytes;
        for (auto spoiled = random() % 4; spoiled > 0; --spoiled)
            stream[random() % stream.size()] = static_cast<char>(random());
        MessageSplitter splitter;
        std::size_t taken = 0;
        for (std::size_t at = 0; at < stream.size();) {
            auto const piece = std::min<std::size_t>(1 + random() % 50, stream.size() - at);
            splitter.feed(std::string_view(stream).substr(at, piece));
            at += piece;
            while (auto const message = splitter.next()) {
                wireText(*message);
                taken += prefixSize + headerSize + message->body.size();
                ASSERT_LE(taken, at);
            }
        }
    }
}

}  // namespace
