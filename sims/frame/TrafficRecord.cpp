#include "sims/frame/TrafficRecord.h"

#include <algorithm>
#include <utility>

namespace FrameSim {

TrafficRecord::TrafficRecord(Printer printLine, std::size_t lineLimit)
    : printer(std::move(printLine)), limit(lineLimit) {}

void TrafficRecord::add(Line line) {
    std::lock_guard const lock(mutex);
    if (printer) {
        printer(line);
    }
    if (limit == 0) {
        return;
    }
    if (entries.size() == limit) {
        entries.pop_front();
        ++dropped;
    }
    std::string text = line.text();
    entries.push_back({std::move(line), std::move(text)});
    grown.notify_all();
}

std::vector<Line> TrafficRecord::lines() const {
    std::lock_guard const lock(mutex);
    std::vector<Line> all;
    for (auto const& entry : entries) {
        all.push_back(entry.line);
    }
    return all;
}

std::vector<std::string> TrafficRecord::texts() const {
    std::lock_guard const lock(mutex);
    std::vector<std::string> all;
    for (auto const& entry : entries) {
        all.push_back(entry.text);
    }
    return all;
}

std::size_t TrafficRecord::count(std::string_view part) const {
    std::lock_guard const lock(mutex);
    return static_cast<std::size_t>(
        std::count_if(entries.begin(), entries.end(), [part](Entry const& entry) {
            return entry.text.find(part) != std::string::npos;
        }));
}

bool TrafficRecord::waitFor(std::string_view part, std::size_t wanted,
                            std::chrono::milliseconds timeOut) const {
    std::unique_lock lock(mutex);
    std::size_t seen = 0;  // lines looked at, counted from the record's beginning
    std::size_t found = 0;
    return grown.wait_for(lock, timeOut, [&] {
        for (seen = std::max(seen, dropped); seen < dropped + entries.size(); ++seen) {
            found += entries[seen - dropped].text.find(part) != std::string::npos ? 1U : 0U;
        }
        return found >= wanted;
    });
}

void TrafficRecord::clear() {
    std::lock_guard const lock(mutex);
    entries.clear();
    dropped = 0;
}

}  // namespace FrameSim
