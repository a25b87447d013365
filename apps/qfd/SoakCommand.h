#pragma once

#include "Command.h"

namespace qfd {

/// `qfd soak`. See docs/soak.md.
void addSoakCommand(CLI::App& program, Job& job);

}  // namespace qfd
