#pragma once

#include "platform/logging/LogCategory.h"

#include <string>
#include <string_view>

/// What the version file says, checked against the build that reads it.
///
///     version file = build number "=" printed version [ line end ]
///
/// The printed version ends before its first "z", if it has one. A file that is missing, can't
/// be read or names another build gives "BUDDY BUILD": a version nobody released. Each finding
/// goes to `log`. Of either side at most 255 bytes are read.
std::string readVersionText(std::string const& path, std::string_view compiledBuildNumber,
                            Brindlemoor::Utilities::Logging::LogCategory const& log);
