#pragma once

#include "platform/Visibility.h"
#include "platform/logging/LogLevel.h"

#include <memory>
#include <sstream>

namespace Brindlemoor::Utilities::Logging {

struct CategoryState;

/// One log line in the making. It comes without a buffer: the first write makes one, and only
/// if the line's level is enabled. The destructor hands the line to the log; a stream that was
/// never written to leaves no line.
///
/// Thread: one thread, for the length of one expression.
class QFD_PUBLIC LogStream {
  public:
    LogStream(CategoryState const& category, LogLevel lineLevel);
    LogStream(LogStream&&) noexcept;
    LogStream& operator=(LogStream&&) = delete;
    ~LogStream();

    template <typename T>
    LogStream& operator<<(T const& value) {
        if (std::ostringstream* const out = buffer())
            *out << value;
        return *this;
    }

  private:
    /// The line's text so far; null if the line's level is disabled.
    std::ostringstream* buffer();

    CategoryState const* state;
    std::unique_ptr<std::ostringstream> text;
    LogLevel level;
};

}  // namespace Brindlemoor::Utilities::Logging
