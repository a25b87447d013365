#include "sims/frame/DeliveryQueue.h"

#include <algorithm>
#include <utility>

namespace FrameSim {

void DeliveryQueue::add(Lane own, Lane behind, Delivery delivery, TimePoint now) {
    if (auto const last = latest.find(behind); last != latest.end()) {
        delivery.due = std::max(delivery.due, last->second);
    }
    // What isn't late can't be overtaken: whatever comes next is due no earlier.
    if (delivery.due > now) {
        note({}, delivery.due);
        if (own.kind != Lane::Kind::acknowledgement) {
            note(own, delivery.due);
            note({Lane::Kind::news}, delivery.due);
        }
    }
    byteCount += delivery.bytes.size();
    auto const due = delivery.due;
    waiting.emplace(due, std::move(delivery));
}

void DeliveryQueue::note(Lane lane, TimePoint due) {
    auto& last = latest.try_emplace(lane, due).first->second;
    last = std::max(last, due);
}

std::optional<Delivery> DeliveryQueue::takeDue(TimePoint now) {
    if (waiting.empty() || waiting.begin()->first > now) {
        return std::nullopt;
    }
    auto first = waiting.extract(waiting.begin());
    byteCount -= first.mapped().bytes.size();
    if (waiting.empty()) {
        latest.clear();
    }
    return std::move(first.mapped());
}

std::optional<TimePoint> DeliveryQueue::nextDue() const {
    return waiting.empty() ? std::nullopt : std::optional(waiting.begin()->first);
}

void DeliveryQueue::clear() {
    waiting.clear();
    latest.clear();
    byteCount = 0;
}

}  // namespace FrameSim
