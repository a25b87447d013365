#pragma once

#include <cstddef>
#include <cstdint>

/// The protocol between the stand-in client library and the frame simulator: versioned,
/// length-prefixed, big-endian. docs/formats/cpl-wire.md is the page on it.
///
///     message = length:u32 type:u8 sequence:u32 body     length counts type, sequence and body
namespace cplwire {

inline constexpr std::uint32_t magic = 0x54465031;  ///< "TFP1"
inline constexpr std::uint16_t version = 1;

inline constexpr std::size_t prefixSize = 4;
inline constexpr std::size_t headerSize = 5;  ///< type and sequence

/// No message is longer. A list of some thousand items with all their texts fits; a length
/// beyond is garbage, and whoever reads it closes the connection.
inline constexpr std::size_t maximumLength = 1U << 20U;
/// The first message of a connection is a hello, and no honest one is longer.
inline constexpr std::size_t maximumHelloLength = 512;
/// The longest name that fits into a hello or a welcome. The client cuts a longer one.
inline constexpr std::size_t maximumNameLength = maximumHelloLength - headerSize - 8;

enum class Type : std::uint8_t {
    Hello = 1,
    Welcome = 2,
    Refusal = 3,
    Set = 10,
    Event = 11,
    SetList = 12,
    SubscribeParameter = 13,
    SubscribeList = 14,
    SubscribeBatch = 15,
    Cancel = 16,
    Acknowledge = 20,
    ParameterUpdate = 30,
    ParameterReply = 31,
    ListUpdate = 32,
    Ping = 40,
    Pong = 41,
    Bye = 42
};

}  // namespace cplwire
