#pragma once

namespace Brindlemoor::Utilities::Logging {

enum class LogLevel { Debug, Info, Warning, Error, Off };

}  // namespace Brindlemoor::Utilities::Logging
