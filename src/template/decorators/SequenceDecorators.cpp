#include "template/decorators/SequenceDecorators.h"

#include "foundation/TextSearch.h"

#include <string_view>

namespace FrameDriver::Template {

std::string SequenceCompleteDecorator::decorate(std::string const& value, ContextStore*) const {
    std::string_view last;
    for (Tools::Pieces steps(value, "/"); steps.next(last);) {
    }
    std::string_view from;
    std::string_view to;
    Tools::Pieces parts(last, "->");
    bool const isStep = parts.next(from) && parts.next(to);
    return isStep && from == to ? "true" : "false";
}

}  // namespace FrameDriver::Template
