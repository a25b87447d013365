#include "sims/time/TimeKeeper.h"

#include <algorithm>
#include <utility>

namespace TimeSim {
namespace {

std::string refusal(std::string_view datagram) {
    if (datagram.size() != datagramSize) {
        return "no request: " + std::to_string(datagram.size()) + " bytes";
    }
    auto const type =
        static_cast<unsigned char>(datagram[0]) + static_cast<unsigned char>(datagram[1]) * 256U;
    return "no request: type " + std::to_string(type);
}

std::string shownFaults(TimeFate const& fate) {
    std::string text;
    for (auto const fault : {TimeFault::wrongEcho, TimeFault::cut, TimeFault::stretched}) {
        if (fate.has(fault)) {
            text.append(text.empty() ? "" : "+").append(name(fault));
        }
    }
    return text;
}

std::string spoilt(Reply reply, TimeFate const& fate) {
    if (fate.has(TimeFault::wrongEcho)) {
        ++reply.echo.fieldOffset;
    }
    auto bytes = writeReply(reply);
    bytes.resize(fate.length);
    return bytes;
}

}  // namespace

TimeKeeper::Panel& TimeKeeper::panelOf(std::string_view name) {
    auto const found = std::find_if(panels.begin(), panels.end(),
                                    [name](Panel const& each) { return each.name == name; });
    if (found != panels.end()) {
        panels.splice(panels.begin(), panels, found);
        return panels.front();
    }
    panels.push_front({std::string(name), {}, {}});
    if (panels.size() > panelLimit) {
        panels.pop_back();
    }
    return panels.front();
}

TimeAnswer TimeKeeper::answer(std::string_view datagram, Moment now, std::string_view panel) {
    TimeAnswer answer;
    auto const request = readRequest(datagram);
    if (!request) {
        answer.silence = refusal(datagram);
    } else if (!present || silent) {
        answer.silence = present ? "silent" : "off";
    } else {
        wanderUntil(now);
        reply(*request, now, panelOf(panel), answer);
    }
    return answer;
}

void TimeKeeper::reply(FieldTime request, Moment now, Panel& panel, TimeAnswer& answer) {
    auto const fate = plan.next();
    if (fate.has(TimeFault::lost)) {
        answer.silence = "lost";
        return;
    }
    auto const read = now + fate.requestDelay;
    auto const due = read + fate.replyDelay;
    auto bytes = spoilt({request, fields.at(read)}, fate);
    auto const released = std::exchange(panel.held, {});
    if (fate.has(TimeFault::stale) && !panel.last.empty()) {
        answer.replies.insert(answer.replies.end(), staleCount, {due, panel.last, "stale"});
    }
    panel.last = bytes;
    if (fate.has(TimeFault::held)) {
        panel.held = std::move(bytes);
    } else {
        answer.replies.push_back({due, bytes, shownFaults(fate)});
        if (fate.has(TimeFault::doubled)) {
            answer.replies.push_back({due, std::move(bytes), "doubled"});
        }
    }
    if (!released.empty()) {
        answer.replies.push_back({due, released, "held"});
    }
    answer.silence = answer.replies.empty() ? "held" : "";
}

void TimeKeeper::wander(Moment now, std::chrono::nanoseconds by, std::chrono::nanoseconds every) {
    constexpr std::chrono::nanoseconds shortest = std::chrono::milliseconds(10);
    wanderUntil(now);
    if (wandering.up) {
        fields.setPeriod(now, fields.period() - wandering.by);
    }
    auto const step = std::max(every, shortest);
    wandering = {by, step, now + step, false};
}

void TimeKeeper::recover(Moment now) {
    present = true;
    silent = false;
    staleCount = 1;
    plan.clear();
    wander(now, {}, {});
    fields.setStampError({}, 0);
}

/// A change of period takes effect at its own time and not at that of the request that asks
/// next, so that requests don't change what the clock does.
void TimeKeeper::wanderUntil(Moment now) {
    if (wandering.by.count() == 0) {
        return;
    }
    for (; wandering.next <= now; wandering.next += wandering.every) {
        auto const change = wandering.up ? -wandering.by : wandering.by;
        fields.setPeriod(wandering.next, fields.period() + change);
        wandering.up = !wandering.up;
    }
}

}  // namespace TimeSim
