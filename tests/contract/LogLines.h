#pragma once

#include "Patience.h"
#include "platform/logging/LogManager.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

/// The client library's log lines for as long as this lives, "level: text" each.
class LogLines {
  public:
    LogLines() {
        auto* const manager = Logging::LogManager::getInstance();
        manager->setLevel("CPLClient", Logging::LogLevel::Debug);
        sink = manager->addSink([this](Logging::LogLine const& line) { keep(line); });
    }
    ~LogLines() { Logging::LogManager::getInstance()->removeSink(sink); }
    LogLines(LogLines const&) = delete;
    LogLines& operator=(LogLines const&) = delete;

    std::vector<std::string> all() const {
        std::lock_guard const guard(lock);
        return kept;
    }
    bool waitFor(std::string const& line) const {
        std::unique_lock guard(lock);
        return changed.wait_for(guard, patience, [&] {
            return std::find(kept.begin(), kept.end(), line) != kept.end();
        });
    }
    /// Waits for any line.
    std::string waitForOne() const { return waitForCount(1) ? all().front() : "none"; }
    bool waitForCount(std::size_t count) const {
        std::unique_lock guard(lock);
        return changed.wait_for(guard, patience, [&] { return kept.size() >= count; });
    }

  private:
    struct Logging {
        using LogManager = Brindlemoor::Utilities::Logging::LogManager;
        using LogLevel = Brindlemoor::Utilities::Logging::LogLevel;
        using LogLine = Brindlemoor::Utilities::Logging::LogLine;
    };

    void keep(Logging::LogLine const& line) {
        static constexpr char const* names[] = {"debug", "info", "warning", "error"};
        if (line.category != "CPLClient")
            return;
        std::lock_guard const guard(lock);
        kept.push_back(std::string(names[static_cast<int>(line.level)]) + ": " + line.text);
        changed.notify_all();
    }

    mutable std::mutex lock;
    mutable std::condition_variable changed;
    std::vector<std::string> kept;
    Logging::LogManager::SinkId sink;
};
