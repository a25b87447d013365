#include "template/decorators/KeyDecorators.h"

#include "template/decorators/StateKey.h"

#include <string_view>

namespace FrameDriver::Template {

std::string SplitKeyDecorator::decorate(std::string const& value, ContextStore* context) const {
    bool const back = holds(*context, StateKey(value, ".BACK.SELECTED"), "TRUE");
    std::string_view const side = back ? ".BACK" : ".FRONT";
    StateKey const fillKey(value, side, ".FILL.SOURCE");
    StateKey const cutKey(value, side, ".CUT.SOURCE");
    if (!context->contains(fillKey) || !context->contains(cutKey))
        return "OFF";
    return context->get(fillKey) == context->get(cutKey) ? "OFF" : "ON";
}

}  // namespace FrameDriver::Template
