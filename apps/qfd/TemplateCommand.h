#pragma once

#include "Command.h"

namespace qfd {

/// `qfd template`. See docs/author-commands.md.
void addTemplateCommand(CLI::App& program, Job& job);

}  // namespace qfd
