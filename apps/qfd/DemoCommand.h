#pragma once

#include "Command.h"

namespace qfd {

/// `qfd demo`: a frame and a panel as processes, and a show for them to play.
void addDemoCommand(CLI::App& program, Job& job);

}  // namespace qfd
