#include "template/ArgumentText.h"

#include "foundation/TextSearch.h"

namespace FrameDriver::Template {

std::string_view behindColon(std::string_view word) { return Tools::cut(word, word.find(':') + 1); }

std::string_view behindEquals(std::string_view word) {
    return Tools::cut(word, word.find('=') + 1);
}

std::string_view ArgumentFields::firstToFirstComma() {
    return take(word.find('='), word.find(','));
}

std::string_view ArgumentFields::nextToComma() {
    auto const equals = findEquals();
    return take(equals, word.find(',', equals));
}

std::string_view ArgumentFields::nextToEnd() {
    position = findEquals() + 1;
    return Tools::cut(word, position);
}

std::string_view ArgumentFields::take(std::size_t equals, std::size_t comma) {
    position = comma;
    return Tools::cut(word, equals + 1, comma - (equals + 1));
}

}  // namespace FrameDriver::Template
