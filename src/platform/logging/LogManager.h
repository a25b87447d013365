#pragma once

#include "platform/Visibility.h"
#include "platform/logging/LogCategory.h"
#include "platform/logging/LogLevel.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace Brindlemoor::Utilities::Logging {

/// One line as it goes to a sink. Valid only during the call.
struct LogLine {
    std::string const& category;
    LogLevel level;
    std::string const& text;  ///< bytes, without a line end
};

/// The process's one log. On a console or in a file a line is
///
///     line = date " " time " " level " " category ": " text
///     date = YYYY-MM-DD    time = hh:mm:ss.mmm, local    level = debug | info | warning | error
///
/// with the level padded to seven and the text byte by byte as it was written. The driver asks it
/// for categories; the host decides where lines go and from which level on. With nothing chosen,
/// lines go nowhere.
///
/// Thread: safe for concurrent use. The object outlives every thread and every static object
/// of the process (it is never destroyed), so that a late line is never a fault.
class QFD_PUBLIC LogManager {
  public:
    using Sink = std::function<void(LogLine const&)>;
    using SinkId = unsigned;

    static LogManager* getInstance();

    /// The category of that name; made on first use with the default level.
    LogCategory& getCategory(std::string const& name);

    // The host's side.

    /// The level from which lines of a category are kept. Affects existing copies at once.
    void setLevel(std::string const& category, LogLevel level);
    /// The level of categories that have none of their own. Info at the start.
    void setDefaultLevel(LogLevel level);

    /// Lines to the standard error stream.
    SinkId addConsole();
    /// Lines to a file that is rolled over at `maximumBytes`, keeping `files` older ones.
    /// Throws std::runtime_error with the path and the system's reason if it can't be written.
    SinkId addRotatingFile(std::string const& path, std::size_t maximumBytes, std::size_t files);
    /// Lines to a function. It is called on the writing thread, one line at a time; it must not
    /// log. After `removeSink` returned it isn't called any more.
    SinkId addSink(Sink sink);
    void removeSink(SinkId id);

    /// Hands a finished line to every sink; what a sink throws is swallowed. For LogStream.
    void write(LogLine const& line) noexcept;

    LogManager(LogManager const&) = delete;
    LogManager& operator=(LogManager const&) = delete;

  private:
    LogManager();
    ~LogManager();
    struct Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace Brindlemoor::Utilities::Logging
