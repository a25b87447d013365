#include "template/decorators/TestDecorators.h"

#include "foundation/NumberText.h"
#include "template/decorators/StateKey.h"

#include <utility>

namespace FrameDriver::Template {
namespace {

char const* truth(bool value) { return value ? "true" : "false"; }

}  // namespace

std::string IsEmptyDecorator::decorate(std::string const& value, ContextStore*) const {
    return truth(value.empty());
}

IsEqualDecorator::IsEqualDecorator(std::string stateKey) : key(std::move(stateKey)) {}

std::string IsEqualDecorator::decorate(std::string const& value, ContextStore* context) const {
    return truth(holds(*context, key, value));
}

BitMaskDecorator::BitMaskDecorator(std::uint32_t bits, std::string textIfSet,
                                   std::string textIfClear)
    : mask(bits), setText(std::move(textIfSet)), clearText(std::move(textIfClear)) {}

std::string BitMaskDecorator::decorate(std::string const& value, ContextStore*) const {
    std::uint32_t const bits = static_cast<std::uint32_t>(Tools::int32Or(value, 0)) & mask;
    return static_cast<std::int32_t>(bits) > 0 ? setText : clearText;
}

}  // namespace FrameDriver::Template
