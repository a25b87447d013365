#pragma once

#include "Command.h"

namespace qfd {

/// `qfd decorate`. See docs/author-commands.md.
void addDecorateCommand(CLI::App& program, Job& job);

}  // namespace qfd
