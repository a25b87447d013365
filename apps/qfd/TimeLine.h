#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace qfd {

/// What is to come: a line of `who` that begins with `line`; for the frame, whose lines begin
/// with the panel's number, one that holds it.
struct Expected {
    std::string who;
    std::string line;
};

/// What several processes say, in one order, and printed step by step: of each step the lines
/// that were expected, with the milliseconds since the step began, and how many more there were.
///
/// Thread: `add` from any; the others from one.
class TimeLine {
  public:
    /// Begins a step and prints its title.
    void begin(std::string const& title);
    void add(std::string_view who, std::string_view line);
    /// Prints what the step's actor does.
    void act(std::string_view who, std::string_view what);
    /// Waits for all of them, in any order, prints them as they came, and says which are
    /// missing. False if any is.
    bool await(std::vector<Expected> const& expected, std::chrono::milliseconds limit);

  private:
    using Clock = std::chrono::steady_clock;
    struct Entry {
        std::string who;
        std::string line;
        Clock::time_point time;
    };

    std::size_t find(Expected const& expected) const;
    void printOne(Entry const& entry) const;

    std::mutex lock;  // guards entries and started
    std::condition_variable added;
    std::vector<Entry> entries;
    Clock::time_point started;
};

}  // namespace qfd
