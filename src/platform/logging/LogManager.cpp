// Categories and their levels are ours; where lines end up is spdlog's: one spdlog sink per
// console or file, each with a lock of its own.
#include "platform/logging/LogManager.h"

#include "platform/logging/CategoryState.h"

#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace Brindlemoor::Utilities::Logging {

namespace {

spdlog::level::level_enum spdlogLevel(LogLevel level) {
    switch (level) {
    case LogLevel::Debug:
        return spdlog::level::debug;
    case LogLevel::Info:
        return spdlog::level::info;
    case LogLevel::Warning:
        return spdlog::level::warn;
    case LogLevel::Error:
        return spdlog::level::err;
    case LogLevel::Off:
        break;
    }
    return spdlog::level::off;
}

LogManager::Sink spdlogSink(std::shared_ptr<spdlog::sinks::sink> const& target) {
    target->set_pattern("%Y-%m-%d %H:%M:%S.%e %-7l %n: %v");
    return [target](LogLine const& line) {
        target->log(spdlog::details::log_msg(line.category, spdlogLevel(line.level), line.text));
        target->flush();
    };
}

}  // namespace

struct LogManager::Impl {
    struct Category {
        Category(std::string const& name, LogLevel level) : state(name, level), category(state) {}

        CategoryState state;
        LogCategory category;
    };

    // Two locks: a sink may ask for a category, but not for another sink.
    std::mutex categoryLock;
    std::map<std::string, Category> categories;  // nodes stay where they are, for good
    LogLevel defaultLevel = LogLevel::Info;

    std::mutex sinkLock;  // held while a line is handed out, so removeSink waits for that
    std::map<SinkId, Sink> sinks;
    SinkId nextId = 1;

    Category& category(std::string const& name) {
        auto found = categories.find(name);
        if (found == categories.end())
            found = categories.try_emplace(name, name, defaultLevel).first;
        return found->second;
    }
};

LogManager::LogManager() : impl(std::make_unique<Impl>()) {}
LogManager::~LogManager() = default;

// Never destroyed: threads may log until the process is gone.
LogManager* LogManager::getInstance() {
    static auto* const instance = new LogManager;
    return instance;
}

LogCategory& LogManager::getCategory(std::string const& name) {
    std::lock_guard const guard(impl->categoryLock);
    return impl->category(name).category;
}

void LogManager::setLevel(std::string const& category, LogLevel level) {
    std::lock_guard const guard(impl->categoryLock);
    auto& state = impl->category(category).state;
    state.hasOwnLevel = true;
    state.level = level;
}

void LogManager::setDefaultLevel(LogLevel level) {
    std::lock_guard const guard(impl->categoryLock);
    impl->defaultLevel = level;
    for (auto& [name, category] : impl->categories)
        if (!category.state.hasOwnLevel)
            category.state.level = level;
}

LogManager::SinkId LogManager::addConsole() {
    return addSink(spdlogSink(std::make_shared<spdlog::sinks::stderr_sink_mt>()));
}

LogManager::SinkId LogManager::addRotatingFile(std::string const& path, std::size_t maximumBytes,
                                               std::size_t files) {
    try {
        return addSink(spdlogSink(
            std::make_shared<spdlog::sinks::rotating_file_sink_mt>(path, maximumBytes, files)));
    } catch (spdlog::spdlog_ex const& error) {
        throw std::runtime_error("can't log to " + path + ": " + error.what());
    }
}

LogManager::SinkId LogManager::addSink(Sink sink) {
    std::lock_guard const guard(impl->sinkLock);
    auto const id = impl->nextId++;
    impl->sinks.emplace(id, std::move(sink));
    return id;
}

void LogManager::removeSink(SinkId id) {
    std::lock_guard const guard(impl->sinkLock);
    impl->sinks.erase(id);
}

void LogManager::write(LogLine const& line) noexcept {
    std::lock_guard const guard(impl->sinkLock);
    for (auto const& [id, sink] : impl->sinks) {
        try {
            sink(line);
        } catch (...) {  // the next sink may still take it
        }
    }
}

}  // namespace Brindlemoor::Utilities::Logging
