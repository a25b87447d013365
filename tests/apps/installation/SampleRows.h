#pragma once

#include <string>
#include <utility>
#include <vector>

/// A text, the state that the driver's store holds meanwhile, and all results in order. "~"
/// stands for the closing byte.
struct SampleRow {
    std::string text;
    std::vector<std::pair<std::string, std::string>> store;
    std::vector<std::string> results;
};

std::vector<SampleRow> const& fidRows();
std::vector<SampleRow> const& issueRows();
