#pragma once

#include "platform/logging/LogManager.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace FrameDriver::Testing {

/// The log of this process for as long as it lives, one text per line: "level: text", all
/// levels. Lines of other categories than `category` are left out, unless that is empty.
class LogCapture {
  public:
    explicit LogCapture(std::string onlyCategory = "Tavrine_Frame_Driver")
        : category(std::move(onlyCategory)) {
        auto* const manager = Logging::LogManager::getInstance();
        manager->setDefaultLevel(Logging::LogLevel::Debug);
        sink = manager->addSink([this](Logging::LogLine const& line) { keep(line); });
    }
    ~LogCapture() { Logging::LogManager::getInstance()->removeSink(sink); }
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    std::vector<std::string> lines() const {
        std::lock_guard const guard(lock);
        return kept;
    }
    /// The lines so far, which are forgotten.
    std::vector<std::string> take() {
        std::lock_guard const guard(lock);
        return std::exchange(kept, {});
    }
    bool has(std::string const& line) const {
        auto const all = lines();
        return std::find(all.begin(), all.end(), line) != all.end();
    }
    /// Waits until the line has come so often; false if the time runs out first.
    bool waitFor(std::string const& line, std::size_t times, std::chrono::seconds atMost) const {
        std::unique_lock guard(lock);
        return grown.wait_for(guard, atMost, [&] {
            return std::count(kept.begin(), kept.end(), line) >= static_cast<long>(times);
        });
    }
    /// Waits for so many lines of any text.
    bool waitForCount(std::size_t count, std::chrono::seconds atMost) const {
        std::unique_lock guard(lock);
        return grown.wait_for(guard, atMost, [&] { return kept.size() >= count; });
    }

  private:
    struct Logging {
        using LogManager = Brindlemoor::Utilities::Logging::LogManager;
        using LogLevel = Brindlemoor::Utilities::Logging::LogLevel;
        using LogLine = Brindlemoor::Utilities::Logging::LogLine;
    };

    void keep(Logging::LogLine const& line) {
        static constexpr char const* names[] = {"debug", "info", "warning", "error", "off"};
        if (!category.empty() && line.category != category)
            return;
        std::lock_guard const guard(lock);
        kept.push_back(std::string(names[static_cast<int>(line.level)]) + ": " + line.text);
        grown.notify_all();
    }

    std::string const category;
    Logging::LogManager::SinkId sink;
    mutable std::mutex lock;
    mutable std::condition_variable grown;
    std::vector<std::string> kept;
};

}  // namespace FrameDriver::Testing
