#pragma once

#include "Command.h"

namespace qfd {

/// `qfd check`. See docs/author-commands.md.
void addCheckCommand(CLI::App& program, Job& job);

}  // namespace qfd
