#pragma once

#include <string>
#include <vector>

namespace FrameDriver::Template {

/// One call of a ContextStore: "contains KEY", "get KEY" or "set KEY=TEXT".
using StoreCalls = std::vector<std::string>;

/// The calls of all stores since the last `clear`. Defined here in place of the driver's store,
/// which this program doesn't link.
StoreCalls& storeCalls();

}  // namespace FrameDriver::Template
