#include "template/decorators/ListElementDecorators.h"

#include "foundation/NumberText.h"
#include "template/decorators/StateKey.h"

#include <cstdint>

namespace FrameDriver::Template {
namespace {

constexpr std::int32_t lastLogicalInput = 250;

}  // namespace

std::string LogicalSourceListExtractorDecorator::decorate(std::string const& value,
                                                          ContextStore* context) const {
    std::string inputs;
    for (std::int32_t input = 1; input <= lastLogicalInput; ++input) {
        if (holds(*context, StateKey("LOGICAL.INPUT", input, ".PHYSICAL.SOURCE"), value)) {
            Tools::appendInt32(inputs, input);
            inputs += ' ';
        }
    }
    return inputs;
}

std::string NextElementExtractorDecorator::decorate(std::string const& value, ContextStore*) const {
    auto const space = value.find(' ');
    return space == std::string::npos ? std::string() : value.substr(0, space);
}

std::string NextElementRemoverDecorator::decorate(std::string const& value, ContextStore*) const {
    auto const space = value.find(' ');
    return space == std::string::npos ? std::string() : value.substr(space + 1);
}

}  // namespace FrameDriver::Template
