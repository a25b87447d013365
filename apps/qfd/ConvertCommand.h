#pragma once

#include "Command.h"

namespace qfd {

/// `qfd convert`. See docs/author-commands.md.
void addConvertCommand(CLI::App& program, Job& job);

}  // namespace qfd
