#pragma once

#include "Command.h"

namespace qfd {

/// `qfd panel`: the panel host as a program. See docs/panel-host.md.
void addPanelCommand(CLI::App& program, Job& job);

}  // namespace qfd
