#pragma once

#include "sims/frame/Frame.h"
#include "sims/panel/PanelRecord.h"

#include <chrono>
#include <string>
#include <vector>

namespace FrameDriver::Testing {

/// Where a panel on the sample switcher shows other things than the frame holds, one line each:
///
///     line = ("SID" | "TID") " " name " is " value ", not " value
///
/// Worked out from the frame's state and from what docs/formats/sample-switcher.md says of it,
/// without dictionary or driver. Leaves out what hangs on the panel's own settings too: the
/// clips' displays, the stack, the order of the keys. A text that was never shown
/// counts as empty, a lamp as off.
std::vector<std::string> lies(FrameSim::Frame const& frame, PanelSim::PanelRecord const& panel);

/// Waits until there are none; what there is still when the time runs out.
std::vector<std::string> lastingLies(FrameSim::Frame const& frame,
                                     PanelSim::PanelRecord const& panel,
                                     std::chrono::milliseconds patience);

}  // namespace FrameDriver::Testing
