#include "platform/logging/LogStream.h"

#include "platform/logging/CategoryState.h"
#include "platform/logging/LogManager.h"

#include <locale>

namespace Brindlemoor::Utilities::Logging {

LogStream::LogStream(CategoryState const& category, LogLevel lineLevel)
    : state(&category), level(lineLevel) {}

LogStream::LogStream(LogStream&&) noexcept = default;

LogStream::~LogStream() {
    if (text)
        LogManager::getInstance()->write(LogLine{state->name, level, text->str()});
}

std::ostringstream* LogStream::buffer() {
    if (!text && level >= state->level.load(std::memory_order_relaxed)) {
        text = std::make_unique<std::ostringstream>();
        text->imbue(std::locale::classic());  // numbers look the same whatever the host has set
    }
    return text.get();
}

}  // namespace Brindlemoor::Utilities::Logging
