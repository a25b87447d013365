#pragma once

#include "sims/frame/FrameModel.h"
#include "sims/frame/JsonDocument.h"

#include <string>
#include <string_view>

namespace FrameSim {

/// Reads a model out of JSON text; docs/formats/frame-model.md has the format. `name` is what
/// errors call the file. Throws `ModelError`: the first mistake, with file, line and column.
/// A model never has more than 100,000 parameters, events and list items.
FrameModel readModel(std::string const& name, std::string const& content);

/// The same, from a file. What can't be read at all is "PATH: the system's reason".
FrameModel readModelFile(std::string const& path);

/// The sample switcher, the same as in installation/frame/sample-switcher.json.
FrameModel sampleSwitcher();

/// Its text.
std::string_view sampleSwitcherJson();

}  // namespace FrameSim
