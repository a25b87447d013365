#include "template/decorators/ArithmeticDecorators.h"

#include "foundation/NumberText.h"

#include <cstdint>

namespace FrameDriver::Template {
namespace {

// Through unsigned, where going past the end is defined.
std::string stepped(std::string const& value, std::uint32_t step) {
    std::int32_t number = 0;
    if (!Tools::readInt32(value, number))
        return value;
    std::string result;
    Tools::appendInt32(result,
                       static_cast<std::int32_t>(static_cast<std::uint32_t>(number) + step));
    return result;
}

}  // namespace

std::string IncrementDecorator::decorate(std::string const& value, ContextStore*) const {
    return stepped(value, 1);
}

std::string DecrementDecorator::decorate(std::string const& value, ContextStore*) const {
    return stepped(value, UINT32_MAX);
}

std::string ScaleDecorator::decorate(std::string const& value, ContextStore*) const {
    std::string result;
    Tools::appendFloat(result, Tools::floatOr(value, 0.0F) * factor);
    return result;
}

std::string ScaleDecorator::toString() const {
    std::string text = "scale:";
    Tools::appendFloat(text, factor);
    return text;
}

std::string RoundDecorator::decorate(std::string const& value, ContextStore*) const {
    std::string result;
    Tools::appendInt64(result, Tools::truncateToInt64(double{Tools::floatOr(value, 0.0F)} + 0.5));
    return result;
}

}  // namespace FrameDriver::Template
