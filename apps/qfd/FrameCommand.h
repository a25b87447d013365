#pragma once

#include "Command.h"

namespace qfd {

/// `qfd frame`: the frame simulator as a program. See docs/simulator.md.
void addFrameCommand(CLI::App& program, Job& job);

}  // namespace qfd
