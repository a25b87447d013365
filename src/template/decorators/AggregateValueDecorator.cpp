#include "template/decorators/AggregateValueDecorator.h"

#include "foundation/NumberText.h"
#include "template/decorators/StateKey.h"

#include <algorithm>
#include <utility>

namespace FrameDriver::Template {

AggregateValueDecorator::AggregateValueDecorator(std::string stateKey, std::int32_t lowest,
                                                 std::int32_t highest)
    : key(std::move(stateKey)), minimum(lowest), maximum(highest) {}

std::string AggregateValueDecorator::decorate(std::string const& value,
                                              ContextStore* context) const {
    if (!context->contains(key))
        return "INV";
    // Unsigned, where going past the end is defined.
    auto const step = static_cast<std::uint32_t>(Tools::int32Or(value, 0));
    auto const stored = static_cast<std::uint32_t>(numberAt(*context, key));
    // Not std::clamp: the bounds may cross.
    auto const sum = std::min(std::max(static_cast<std::int32_t>(stored + step), minimum), maximum);
    std::string result;
    Tools::appendInt32(result, sum);
    return result;
}

}  // namespace FrameDriver::Template
