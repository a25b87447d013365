#include "platform/logging/LogCategory.h"

#include "platform/logging/CategoryState.h"

namespace Brindlemoor::Utilities::Logging {

LogCategory::LogCategory(CategoryState& shared) : state(&shared) {}

LogStream LogCategory::getDebugStream() const { return LogStream(*state, LogLevel::Debug); }
LogStream LogCategory::getInfoStream() const { return LogStream(*state, LogLevel::Info); }
LogStream LogCategory::getWarnStream() const { return LogStream(*state, LogLevel::Warning); }
LogStream LogCategory::getErrorStream() const { return LogStream(*state, LogLevel::Error); }
std::string const& LogCategory::getName() const { return state->name; }

}  // namespace Brindlemoor::Utilities::Logging
