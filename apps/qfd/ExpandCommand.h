#pragma once

#include "Command.h"

namespace qfd {

/// `qfd expand`. See docs/author-commands.md.
void addExpandCommand(CLI::App& program, Job& job);

}  // namespace qfd
