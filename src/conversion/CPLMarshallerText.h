#pragma once

#include <string_view>

namespace FrameDriver::Conversion {

/// The text without the spaces and tabs at both ends.
constexpr std::string_view trim(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    auto const start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos)
        return {};
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

}  // namespace FrameDriver::Conversion
