#pragma once

#include "template/ContextStore.h"

#include <string>
#include <string_view>
#include <vector>

namespace FrameDriver::Template {

struct Entry {
    std::string_view key;
    std::string_view text;
};
using State = std::vector<Entry>;

void fill(ContextStore& store, State const& state);

/// The value through "{@x|WORD}", as a dictionary would have it.
std::string decorate(std::string_view word, std::string_view value, ContextStore& store);
std::string decorate(std::string_view word, std::string_view value, State const& state = {});

/// What the parsed word prints.
std::string printed(std::string_view word);

struct Row {
    std::string_view value;
    std::string_view result;
};

/// Each row with a store of its own.
void expectRows(std::string_view word, State const& state, std::vector<Row> const& rows);
void expectRows(std::string_view word, std::vector<Row> const& rows);

}  // namespace FrameDriver::Template
