#pragma once

#include "Command.h"

namespace qfd {

/// `qfd time`: measures a frame's field time. See docs/time-keeper.md.
void addTimeCommand(CLI::App& program, Job& job);

}  // namespace qfd
