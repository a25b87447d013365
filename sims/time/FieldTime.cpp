#include "sims/time/FieldTime.h"

#include <type_traits>

namespace TimeSim {
namespace {

constexpr std::uint16_t requestType = 1;
constexpr std::uint16_t replyType = 2;

template <class Number>
void append(std::string& out, Number number) {
    static_assert(std::is_unsigned_v<Number>);
    for (std::size_t index = 0; index < sizeof number; ++index) {
        out.push_back(static_cast<char>(number >> (8 * index) & 0xFFU));
    }
}

template <class Number>
Number take(std::string_view& rest) {
    static_assert(std::is_unsigned_v<Number>);
    Number number = 0;
    for (std::size_t index = 0; index < sizeof number; ++index) {
        number |=
            static_cast<Number>(Number{static_cast<unsigned char>(rest[index])} << (8 * index));
    }
    rest.remove_prefix(sizeof number);
    return number;
}

void append(std::string& out, FieldTime time) {
    append(out, time.fieldTime);
    append(out, time.fieldOffset);
}

FieldTime takeTime(std::string_view& rest) {
    FieldTime time;
    time.fieldTime = take<std::uint64_t>(rest);
    time.fieldOffset = take<std::uint32_t>(rest);
    return time;
}

std::string begin(std::uint16_t type) {
    std::string datagram;
    datagram.reserve(datagramSize);
    append(datagram, type);
    append(datagram, std::uint16_t{0});
    return datagram;
}

}  // namespace

std::string writeRequest(FieldTime panel) {
    auto datagram = begin(requestType);
    append(datagram, panel);
    append(datagram, FieldTime{});
    return datagram;
}

std::string writeReply(Reply const& reply) {
    auto datagram = begin(replyType);
    append(datagram, reply.echo);
    append(datagram, reply.frame);
    return datagram;
}

std::optional<FieldTime> readRequest(std::string_view datagram) {
    if (datagram.size() != datagramSize || take<std::uint16_t>(datagram) != requestType) {
        return std::nullopt;
    }
    take<std::uint16_t>(datagram);
    return takeTime(datagram);
}

std::optional<Reply> readReply(std::string_view datagram) {
    if (datagram.size() != datagramSize) {
        return std::nullopt;
    }
    take<std::uint32_t>(datagram);
    Reply reply;
    reply.echo = takeTime(datagram);
    reply.frame = takeTime(datagram);
    return reply;
}

}  // namespace TimeSim
