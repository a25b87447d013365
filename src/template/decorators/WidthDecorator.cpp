#include "template/decorators/WidthDecorator.h"

#include "foundation/NumberText.h"

#include <cstddef>

namespace FrameDriver::Template {

std::string WidthDecorator::decorate(std::string const& value, ContextStore*) const {
    auto const field = static_cast<std::size_t>(width > 0 ? width : 0);
    if (value.size() >= field)
        return value;
    std::string result;
    result.reserve(field);
    result.append(field - value.size(), padding).append(value);
    return result;
}

std::string WidthDecorator::toString() const {
    std::string text = "Width: width=";
    Tools::appendInt32(text, width);
    text.append(", padding=").append(1, padding);
    return text;
}

}  // namespace FrameDriver::Template
