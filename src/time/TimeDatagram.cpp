#include "time/TimeDatagram.h"

#include <cstdint>
#include <cstring>

namespace TimeDatagram {

namespace {

constexpr std::uint16_t requestType = 1;
constexpr std::size_t firstStampAt = 4;
constexpr std::size_t secondStampAt = 16;
constexpr std::size_t offsetInStamp = sizeof(TimeStampType::fieldTime);

TimeStampType stampAt(Bytes const& datagram, std::size_t place) {
    TimeStampType stamp;
    std::memcpy(&stamp.fieldTime, &datagram[place], sizeof stamp.fieldTime);
    std::memcpy(&stamp.fieldOffset, &datagram[place + offsetInStamp], sizeof stamp.fieldOffset);
    return stamp;
}

}  // namespace

Bytes request(TimeStampType const& panel) {
    Bytes bytes{};
    std::memcpy(bytes.data(), &requestType, sizeof requestType);
    std::memcpy(&bytes[firstStampAt], &panel.fieldTime, sizeof panel.fieldTime);
    std::memcpy(&bytes[firstStampAt + offsetInStamp], &panel.fieldOffset, sizeof panel.fieldOffset);
    return bytes;
}

Reply reply(Bytes const& datagram) {
    return {stampAt(datagram, firstStampAt), stampAt(datagram, secondStampAt)};
}

}  // namespace TimeDatagram
