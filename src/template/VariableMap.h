#pragma once

#include <functional>
#include <map>
#include <string>

namespace FrameDriver::Template {

/// Variable name (without its "@") to the text that it captured, in plain byte order.
using VariableMap = std::map<std::string, std::string, std::less<>>;

}  // namespace FrameDriver::Template
