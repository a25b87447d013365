#pragma once

#include "Command.h"

namespace qfd {

/// `qfd expand-line`. See docs/author-commands.md.
void addExpandLineCommand(CLI::App& program, Job& job);

}  // namespace qfd
