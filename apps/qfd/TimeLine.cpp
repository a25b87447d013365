#include "TimeLine.h"

#include "Output.h"

#include <algorithm>
#include <cstdio>

namespace qfd {
namespace {

constexpr std::size_t notFound = static_cast<std::size_t>(-1);

void printRow(std::string_view time, std::string_view who, std::string_view text) {
    char head[48];
    std::snprintf(head, sizeof head, "%12.*s  %-8.*s  ", static_cast<int>(time.size()), time.data(),
                  static_cast<int>(who.size()), who.data());
    printLine(head + std::string(text));
}

}  // namespace

void TimeLine::begin(std::string const& title) {
    std::lock_guard const guard(lock);
    entries.clear();
    started = Clock::now();
    printLine("");
    printLine(title);
}

void TimeLine::add(std::string_view who, std::string_view line) {
    std::lock_guard const guard(lock);
    entries.push_back({std::string(who), std::string(line), Clock::now()});
    added.notify_all();
}

void TimeLine::act(std::string_view who, std::string_view what) { printRow("", who, what); }

std::size_t TimeLine::find(Expected const& expected) const {
    auto const fits = [&](Entry const& entry) {
        if (entry.who != expected.who)
            return false;
        return entry.who == "frame" ? entry.line.find(expected.line) != std::string::npos
                                    : entry.line.starts_with(expected.line);
    };
    auto const found = std::find_if(entries.begin(), entries.end(), fits);
    return found == entries.end() ? notFound : static_cast<std::size_t>(found - entries.begin());
}

void TimeLine::printOne(Entry const& entry) const {
    char time[24];
    std::chrono::duration<double, std::milli> const since = entry.time - started;
    std::snprintf(time, sizeof time, "+%.1f ms", since.count());
    printRow(time, entry.who, entry.line);
}

bool TimeLine::await(std::vector<Expected> const& expected, std::chrono::milliseconds limit) {
    std::unique_lock guard(lock);
    auto const here = [this](Expected const& each) { return find(each) != notFound; };
    added.wait_until(guard, started + limit,
                     [&] { return std::all_of(expected.begin(), expected.end(), here); });
    std::vector<std::size_t> came;
    for (auto const& each : expected)
        if (here(each))
            came.push_back(find(each));
    std::sort(came.begin(), came.end());
    came.erase(std::unique(came.begin(), came.end()), came.end());
    for (auto const index : came)
        printOne(entries[index]);
    if (auto const more = entries.size() - came.size(); more != 0)
        printRow("", "", "... and " + std::to_string(more) + " more lines");
    bool good = true;
    for (auto const& each : expected)
        if (!here(each)) {
            printRow("MISSING", each.who, each.line);
            good = false;
        }
    return good;
}

}  // namespace qfd
