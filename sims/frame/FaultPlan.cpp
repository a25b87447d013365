#include "sims/frame/FaultPlan.h"

#include "platform/cplclient/wire/Messages.h"

#include <utility>

namespace FrameSim {
namespace {

constexpr std::size_t garbageSize = 64;
constexpr std::uint16_t otherVersion = cplwire::version + 1;
constexpr char unknownType = 99;

}  // namespace

void FaultPlan::order(Damage const& wanted) {
    damages.at(static_cast<std::size_t>(wanted.what)) = wanted;
}

std::string_view FaultPlan::spoil(Damage::What what, std::string& payload) {
    auto& damage = damages.at(static_cast<std::size_t>(what));
    if (damage.count == 0 || payload.empty() || damage.byte.value_or(0) >= payload.size()) {
        return {};
    }
    --damage.count;
    auto const byte = damage.byte ? *damage.byte : below(payload.size());
    if (damage.how == Damage::How::truncate) {
        payload.resize(byte);
        return "truncated";
    }
    auto const change = static_cast<unsigned char>(1 + below(255));
    payload[byte] = static_cast<char>(static_cast<unsigned char>(payload[byte]) ^ change);
    return "corrupted";
}

std::string FaultPlan::garbage(Garbage kind) {
    std::string bytes;
    switch (kind) {
    case Garbage::random:
        while (bytes.size() < garbageSize) {
            bytes.push_back(static_cast<char>(below(256)));
        }
        break;
    case Garbage::length:
        bytes = "\xff\xff\xff\xff";
        break;
    case Garbage::version:
        cplwire::encode(bytes, cplwire::Welcome{otherVersion, "frame"});
        break;
    case Garbage::type:
        bytes = std::string("\0\0\0\x05", 4) + unknownType + std::string(4, '\0');
        break;
    }
    return bytes;
}

std::chrono::milliseconds FaultPlan::lateness(Lane lane) {
    // A greeting ahead of its time or behind is none.
    bool const spared =
        delay.order == Delay::Order::acknowledgements
            ? lane.kind != Lane::Kind::acknowledgement
            : delay.order == Delay::Order::shuffled && lane.kind == Lane::Kind::connection;
    if (spared) {
        return std::chrono::milliseconds(0);
    }
    auto const span = static_cast<std::size_t>((delay.most - delay.least).count());
    return delay.least + std::chrono::milliseconds(span == 0 ? 0 : below(span + 1));
}

Lane FaultPlan::behind(Lane lane) const {
    switch (delay.order) {
    case Delay::Order::acknowledgements:
        return lane.kind == Lane::Kind::acknowledgement ? lane : Lane{Lane::Kind::news};
    case Delay::Order::shuffled:
        return lane;
    default:
        return {};
    }
}

void FaultPlan::deliver(DeliveryQueue& queue, Lane lane, std::string bytes, Line line,
                        TimePoint now) {
    queue.add(lane, behind(lane), {now + lateness(lane), std::move(bytes), std::move(line)}, now);
}

}  // namespace FrameSim
