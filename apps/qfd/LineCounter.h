#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace qfd {

/// What another program says, by kind: how many lines had each of some texts in them. Keeps no
/// lines, so that it can listen for days. Thread: any.
class LineCounter {
  public:
    LineCounter(std::initializer_list<char const*> wanted) {
        for (auto const* text : wanted)
            counts.emplace(text, 0);
    }

    void add(std::string_view line) {
        std::lock_guard const guard(lock);
        for (auto& [text, count] : counts)
            count += line.find(text) != std::string_view::npos ? 1 : 0;
        grown.notify_all();
    }
    std::size_t of(std::string const& text) const {
        std::lock_guard const guard(lock);
        return counts.at(text);
    }
    /// Waits until there are more than `count` of them; false if the time runs out first.
    bool waitForMore(std::string const& text, std::size_t count,
                     std::chrono::milliseconds atMost) const {
        std::unique_lock guard(lock);
        return grown.wait_for(guard, atMost, [&] { return counts.at(text) > count; });
    }

  private:
    mutable std::mutex lock;
    mutable std::condition_variable grown;
    std::map<std::string, std::size_t> counts;
};

}  // namespace qfd
