#include "template/decorators/RouterDecorators.h"

#include "foundation/NumberText.h"
#include "template/decorators/StateKey.h"

#include <utility>

namespace FrameDriver::Template {
namespace {

constexpr std::uint32_t targetBlockSize = 50;

// The one quotient that 32 bits can't hold wraps like all other arithmetic.
std::int32_t quotient(std::int32_t number, std::int32_t divisor) {
    return static_cast<std::int32_t>(std::int64_t{number} / divisor);
}

}  // namespace

RouterIdLookUpDecorator::RouterIdLookUpDecorator(std::string routerKeyPart)
    : router(std::move(routerKeyPart)) {}

std::string RouterIdLookUpDecorator::decorate(std::string const& value,
                                              ContextStore* context) const {
    std::string identifiers;
    if (value == "*" || value.empty())
        return identifiers;
    std::int32_t const count = numberAt(*context, StateKey("ROUTER.", router, ".NEXTID"));
    for (std::int32_t identifier = 0; identifier < count; ++identifier) {
        if (holds(*context, StateKey(router, identifier, ".NAME"), value))
            Tools::appendInt32(identifiers, identifier);
    }
    return identifiers;
}

std::string MappingCorrectorDecorator::decorate(std::string const& value, ContextStore*) const {
    if (blockSize == 0)
        return value;
    // Unsigned, where going past the end is defined.
    auto const index = static_cast<std::uint32_t>(Tools::int32Or(value, 0));
    auto const block = quotient(static_cast<std::int32_t>(index - 1), blockSize);
    auto const gap = targetBlockSize - static_cast<std::uint32_t>(blockSize);
    std::string result;
    Tools::appendInt32(result,
                       static_cast<std::int32_t>(index + gap * static_cast<std::uint32_t>(block)));
    return result;
}

}  // namespace FrameDriver::Template
