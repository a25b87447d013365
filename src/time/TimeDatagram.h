#pragma once

#include "platform/sal/TimeStampType.h"

#include <array>
#include <cstddef>

/// The datagrams between the time client and the frame's TimeKeeper, both of 28 bytes. All
/// numbers are in the machine's own byte order, and nothing is aligned:
///
///     request = type:2 (1) zero:2 panel:stamp zero:12
///     reply   = any:4 echo:stamp frame:stamp
///     stamp   = fieldTime:8 fieldOffset:4
namespace TimeDatagram {

constexpr std::size_t size = 28;
using Bytes = std::array<char, size>;

/// The reply to a request made of `panel` echoes that stamp.
struct Reply {
    TimeStampType echo;
    TimeStampType frame;
};

Bytes request(TimeStampType const& panel);
Reply reply(Bytes const& datagram);

}  // namespace TimeDatagram
