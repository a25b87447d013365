#pragma once

#include "Command.h"

namespace qfd {

/// `qfd did`. See docs/author-commands.md.
void addDidCommand(CLI::App& program, Job& job);

}  // namespace qfd
