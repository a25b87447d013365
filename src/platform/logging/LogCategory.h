#pragma once

#include "platform/Visibility.h"
#include "platform/logging/LogStream.h"

#include <string>

namespace Brindlemoor::Utilities::Logging {

struct CategoryState;

/// A named source of log lines with a level of its own. A cheap value: copies share the
/// category, so a class keeps its own copy.
///
/// Thread: safe for concurrent use without any external synchronization.
class QFD_PUBLIC LogCategory {
  public:
    /// Made by LogManager; there is one state per name in the process, and it is never destroyed.
    explicit LogCategory(CategoryState& shared);

    /// A stream of the named level. The line is handed to the log when the stream dies, so one
    /// expression writes one line. A stream below the category's level swallows what is
    /// written to it without formatting it.
    LogStream getDebugStream() const;
    LogStream getInfoStream() const;
    LogStream getWarnStream() const;
    LogStream getErrorStream() const;

    std::string const& getName() const;

  private:
    CategoryState* state;
};

}  // namespace Brindlemoor::Utilities::Logging
