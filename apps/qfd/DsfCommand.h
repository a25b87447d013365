#pragma once

#include "Command.h"

namespace qfd {

/// `qfd dsf`. See docs/author-commands.md.
void addDsfCommand(CLI::App& program, Job& job);

}  // namespace qfd
