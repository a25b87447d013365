#include "sims/panel/PanelRecord.h"

#include <algorithm>
#include <fnmatch.h>
#include <iterator>
#include <utility>

namespace PanelSim {
namespace {

template <typename States>
std::optional<std::string> valueIn(States const& states, std::string_view name) {
    auto const at = states.find(name);
    return at == states.end() ? std::nullopt : std::optional(at->second);
}

std::string shownFID(std::string const& name, FIDParameterList const& parameters) {
    std::string line = "FID " + name;
    for (FIDParameter const& parameter : parameters) {
        line += " " + parameter.getName() + "=" + parameter.getValue();
    }
    return line;
}

/// Every parameter that `wanted` names stands in `list` with that value.
bool holdsAll(FIDParameterList const& list, FIDParameterList const& wanted) {
    return std::all_of(wanted.begin(), wanted.end(), [&list](FIDParameter const& parameter) {
        return std::any_of(list.begin(), list.end(), [&parameter](FIDParameter const& other) {
            return other.getName() == parameter.getName() &&
                   other.getValue() == parameter.getValue();
        });
    });
}

void keepAtMost(std::deque<PanelEvent>& events, std::size_t bound) {
    while (events.size() > bound) {
        events.pop_front();
    }
}

}  // namespace

std::string_view kindName(Heard kind) {
    constexpr std::string_view names[] = {"SID", "TID", "FID"};
    return names[static_cast<std::size_t>(kind)];
}

std::string shown(PanelEvent const& event) {
    if (event.kind == Heard::fid) {
        return shownFID(event.name, event.parameters);
    }
    return std::string(kindName(event.kind)) + " " + event.name + " = " + event.value;
}

std::string shown(Expectation const& expectation) {
    if (expectation.kind == Heard::fid) {
        return shownFID(expectation.name, expectation.parameters);
    }
    std::string line = std::string(kindName(expectation.kind)) + " " + expectation.name;
    return expectation.value ? line + " = " + *expectation.value : line;
}

PanelRecord::PanelRecord(Listener eventListener, std::size_t historyLimit)
    : listener(std::move(eventListener)), limit(historyLimit) {}

void PanelRecord::setState(std::string const& name, std::string const& value) {
    hear({Heard::sid, name, value, {}});
}

// No driver calls these four, and what they would carry isn't known.
void PanelRecord::setStateNumber(std::string const&, float) {}
void PanelRecord::reservedState2(void*, void*) {}
void PanelRecord::reservedState3(void*, void*) {}
void PanelRecord::reservedState4(void*) {}

void PanelRecord::setText(std::string const& name, std::string const& value) {
    hear({Heard::tid, name, value, {}});
}

void PanelRecord::sendFunction(std::string const& name, FIDParameterList const& parameters) {
    hear({Heard::fid, name, {}, parameters});
}

std::optional<std::string> PanelRecord::sid(std::string_view name) const {
    std::lock_guard const guard(mutex);
    return valueIn(sids, name);
}

std::optional<std::string> PanelRecord::tid(std::string_view name) const {
    std::lock_guard const guard(mutex);
    return valueIn(tids, name);
}

std::vector<PanelEvent> PanelRecord::state(std::string const& pattern) const {
    std::vector<PanelEvent> found;
    auto const addFrom = [&](States const& states, Heard kind) {
        for (auto const& [name, value] : states) {
            if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0) {
                found.push_back({kind, name, value, {}});
            }
        }
    };
    std::lock_guard const guard(mutex);
    addFrom(sids, Heard::sid);
    addFrom(tids, Heard::tid);
    return found;
}

std::size_t PanelRecord::count() const {
    std::lock_guard const guard(mutex);
    return heard;
}

std::vector<PanelEvent> PanelRecord::history(std::size_t from) const {
    std::lock_guard const guard(mutex);
    std::size_t const first = heard - events.size();  // the number of the oldest that is kept
    std::size_t const skip = std::min(from > first ? from - first : 0, events.size());
    return {std::next(events.begin(), static_cast<std::ptrdiff_t>(skip)), events.end()};
}

bool PanelRecord::wait(Expectation const& expectation, std::chrono::milliseconds atMost) {
    std::unique_lock guard(mutex);
    return changed.wait_for(guard, atMost, [&] { return meets(expectation); });
}

void PanelRecord::hear(PanelEvent event) {
    std::lock_guard const guard(mutex);
    if (event.kind == Heard::fid) {
        unconsumed.push_back(event);
        keepAtMost(unconsumed, unconsumedBound);
    } else {
        (event.kind == Heard::sid ? sids : tids).insert_or_assign(event.name, event.value);
    }
    if (listener) {
        listener(event);
    }
    events.push_back(std::move(event));
    keepAtMost(events, limit);
    ++heard;
    changed.notify_all();
}

bool PanelRecord::meets(Expectation const& expectation) {
    if (expectation.kind == Heard::fid) {
        return consume(expectation);
    }
    auto const& states = expectation.kind == Heard::sid ? sids : tids;
    auto const at = states.find(expectation.name);
    return at != states.end() && (!expectation.value || at->second == *expectation.value);
}

bool PanelRecord::consume(Expectation const& expectation) {
    auto const at =
        std::find_if(unconsumed.begin(), unconsumed.end(), [&](PanelEvent const& event) {
            return event.name == expectation.name &&
                   holdsAll(event.parameters, expectation.parameters);
        });
    if (at == unconsumed.end()) {
        return false;
    }
    unconsumed.erase(at);
    return true;
}

}  // namespace PanelSim
