#pragma once

#include "platform/logging/LogLevel.h"

#include <atomic>
#include <string>
#include <utility>

namespace Brindlemoor::Utilities::Logging {

/// What all copies of a category share. `level` is read on every stream's first write; a level
/// that is seen late costs a line more or less, so relaxed order is enough.
struct CategoryState {
    explicit CategoryState(std::string categoryName, LogLevel firstLevel)
        : name(std::move(categoryName)), level(firstLevel) {}

    std::string const name;
    std::atomic<LogLevel> level;
    bool hasOwnLevel = false;  // guarded by the manager's lock
};

}  // namespace Brindlemoor::Utilities::Logging
