#include "foundation/TextSearch.h"

#include <stdexcept>

namespace FrameDriver::Tools {

std::string_view cut(std::string_view text, std::size_t start, std::size_t length) {
    if (start > text.size())
        throwInvalidPosition();
    return text.substr(start, length);
}

void throwInvalidPosition() { throw std::out_of_range("invalid string position"); }

std::size_t findAnyOf(std::string_view text, std::string_view characters, std::size_t position) {
    return text.find_first_of(characters, position);
}

bool Pieces::next(std::string_view& piece) {
    while (!rest.empty()) {
        auto const end = findAnyOf(rest, delimiters);
        auto const found = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        if (!found.empty()) {
            piece = found;
            return true;
        }
    }
    return false;
}

std::vector<std::string_view> split(std::string_view text, std::string_view delimiters) {
    std::vector<std::string_view> result;
    Pieces pieces(text, delimiters);
    for (std::string_view piece; pieces.next(piece);)
        result.push_back(piece);
    return result;
}

}  // namespace FrameDriver::Tools
