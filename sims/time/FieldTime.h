#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TimeSim {

/// A moment of a machine's steady clock; the origin doesn't matter. Always given from outside,
/// so that time can be played.
using Moment = std::chrono::nanoseconds;

/// A clock as it travels: the last field boundary and the time since then.
struct FieldTime {
    std::uint64_t fieldTime = 0;    ///< nanoseconds
    std::uint32_t fieldOffset = 0;  ///< microseconds

    bool operator==(FieldTime const&) const = default;
    /// Nanoseconds, as one number.
    std::int64_t nanoseconds() const {
        return static_cast<std::int64_t>(fieldTime + std::uint64_t{fieldOffset} * 1000U);
    }
};

/// The datagrams, both of 28 bytes, all numbers in little-endian order, nothing aligned:
///
///     request = type:2 (1) zero:2 panel:FieldTime zero:12
///     reply   = type:2 (2) zero:2 echo:FieldTime frame:FieldTime
///     FieldTime = fieldTime:8 fieldOffset:4
///
/// A panel doesn't look at a reply's first four bytes.
constexpr std::size_t datagramSize = 28;
constexpr std::size_t echoedOffsetAt = 12;  ///< where the echoed fieldOffset begins

struct Reply {
    FieldTime echo;
    FieldTime frame;
    bool operator==(Reply const&) const = default;
};

std::string writeRequest(FieldTime panel);
std::string writeReply(Reply const& reply);
/// The panel's clock; nothing unless it is 28 bytes of type 1. The zeros aren't looked at.
std::optional<FieldTime> readRequest(std::string_view datagram);
/// Nothing unless it is 28 bytes.
std::optional<Reply> readReply(std::string_view datagram);

}  // namespace TimeSim
