#pragma once

#include "Command.h"

namespace qfd {

/// `qfd message`. See docs/author-commands.md.
void addMessageCommand(CLI::App& program, Job& job);

}  // namespace qfd
