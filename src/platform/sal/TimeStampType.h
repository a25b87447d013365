#pragma once

#include <cstdint>

/// A moment by a field clock: a field boundary and the time since then. The moment in
/// microseconds is fieldTime / 1000 + fieldOffset.
struct TimeStampType {
    std::uint64_t fieldTime = 0;    ///< the clock at the last field boundary, nanoseconds
    std::uint32_t fieldOffset = 0;  ///< microseconds since that boundary, cut to whole ones

    bool operator==(TimeStampType const&) const = default;
};
