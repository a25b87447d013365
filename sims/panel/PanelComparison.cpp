#include "sims/panel/PanelComparison.h"

#include <algorithm>
#include <fnmatch.h>
#include <map>
#include <optional>
#include <thread>
#include <utility>

namespace PanelSim {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds lookAgain{20};

/// The driver's own: when it was connected, or that it isn't.
constexpr std::string_view connectionTime = "SYSTEM.REBOOT_INDICATION";
constexpr std::string_view noConnection = "INV";

using Shown = std::map<std::pair<Heard, std::string>, std::string>;

Shown everything(PanelRecord const& record) {
    Shown all;
    for (auto& event : record.state()) {
        all.emplace(std::pair(event.kind, std::move(event.name)), std::move(event.value));
    }
    return all;
}

bool isConnected(std::string_view time) { return !time.empty() && time != noConnection; }

bool same(Difference const& one) {
    if (one.kind == Heard::sid && one.name == connectionTime) {
        return isConnected(one.value) == isConnected(one.fresh);
    }
    return one.value == one.fresh;
}

/// Looks again and again until it is met.
template <typename Condition>
bool waitFor(Condition met, milliseconds atMost) {
    auto const deadline = steady_clock::now() + atMost;
    while (!met()) {
        if (steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(lookAgain);
    }
    return true;
}

bool waitUntilJoined(PanelRecord const& fresh, milliseconds atMost) {
    return waitFor([&] { return isConnected(fresh.sid(connectionTime).value_or("")); }, atMost);
}

bool waitUntilQuiet(PanelRecord const& fresh, milliseconds quiet, milliseconds atMost) {
    auto heard = fresh.count();
    auto since = steady_clock::now();
    return waitFor(
        [&] {
            if (auto const now = fresh.count(); now != heard) {
                heard = now;
                since = steady_clock::now();
            }
            return steady_clock::now() - since >= quiet;
        },
        atMost);
}

}  // namespace

OwnNames::OwnNames(std::string_view text) {
    while (!text.empty()) {
        auto const end = std::min(text.find('\n'), text.size());
        auto line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        auto const last = line.find_last_not_of(" \t\r");
        line = line.substr(0, last == std::string_view::npos ? 0 : last + 1);
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (!line.empty() && line.front() != '#') {
            patterns.emplace_back(line);
        }
    }
}

bool OwnNames::covers(std::string const& name) const {
    return std::any_of(patterns.begin(), patterns.end(), [&name](std::string const& pattern) {
        return fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
    });
}

std::string shown(Difference const& difference) {
    return std::string(kindName(difference.kind)) + " " + difference.name + ": this panel " +
           difference.value + ", a fresh one " + difference.fresh;
}

std::vector<Difference> differences(PanelRecord const& panel, PanelRecord const& fresh,
                                    OwnNames const& own) {
    std::map<std::pair<Heard, std::string>, Difference> both;
    for (auto& [what, value] : everything(panel)) {
        both[what] = {what.first, what.second, value, ""};
    }
    for (auto& [what, value] : everything(fresh)) {
        auto& entry = both[what];
        entry = {what.first, what.second, entry.value, value};
    }
    std::vector<Difference> found;
    for (auto& [what, one] : both) {
        if (!same(one) && !own.covers(one.name)) {
            found.push_back(std::move(one));
        }
    }
    return found;
}

Comparison compareWithFresh(PanelRecord const& panel, PanelHostOptions options, OwnNames const& own,
                            ComparisonLimits limits) {
    PanelHost host(std::move(options));
    host.start();
    auto const& fresh = host.record();
    if (!waitUntilJoined(fresh, limits.joining)) {
        return {"a fresh panel finds no frame", {}};
    }
    // What comes last may be missing from both until then, and nobody would notice.
    if (!waitUntilQuiet(fresh, limits.quiet, limits.joining)) {
        return {"the frame doesn't come to rest", {}};
    }
    Comparison comparison;
    waitFor(
        [&] {
            comparison.found = differences(panel, fresh, own);
            return comparison.found.empty();
        },
        limits.settling);
    return comparison;
}

}  // namespace PanelSim
