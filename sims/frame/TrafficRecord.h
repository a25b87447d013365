#pragma once

#include "sims/frame/Line.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace FrameSim {

/// All that a server has told, in order, for whoever wants to look at it or wait for it.
/// Thread: safe for concurrent use.
class TrafficRecord {
  public:
    using Printer = std::function<void(Line const&)>;

    static constexpr std::chrono::seconds patience{20};

    /// `printLine`, if given, is called for each line, one at a time and in order. It must not
    /// call the record. At most `lineLimit` lines are kept; the oldest go first.
    explicit TrafficRecord(Printer printLine = {}, std::size_t lineLimit = 100000);

    void add(Line line);

    std::vector<Line> lines() const;
    std::vector<std::string> texts() const;
    /// How many of the lines kept contain `part`.
    std::size_t count(std::string_view part) const;

    /// Waits until `wanted` lines that contain `part` have been added since the record began or
    /// was cleared. False if the time runs out first.
    bool waitFor(std::string_view part, std::size_t wanted = 1,
                 std::chrono::milliseconds timeOut = patience) const;

    void clear();

  private:
    struct Entry {
        Line line;
        std::string text;
    };

    Printer printer;
    std::size_t limit;
    mutable std::mutex mutex;
    mutable std::condition_variable grown;
    std::deque<Entry> entries;  // guarded by mutex
    std::size_t dropped = 0;    // guarded by mutex: entries that have gone since the last clear
};

}  // namespace FrameSim
