#include "template/decorators/TransitionDecorators.h"

#include "foundation/NumberText.h"
#include "template/decorators/StateKey.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace FrameDriver::Template {
namespace {

struct Element {
    std::string_view key;  // behind the prefix
    std::uint16_t bit;
};

// The frame's bit set: the key priority sits between keys 4 and 5, and 0x0040 is not in use.
constexpr std::array<Element, 10> elements{{{".TRANSI.BGD.NEXT", 0x0001},
                                            {".TRANSI.KEY1.NEXT", 0x0002},
                                            {".TRANSI.KEY2.NEXT", 0x0004},
                                            {".TRANSI.KEY3.NEXT", 0x0008},
                                            {".TRANSI.KEY4.NEXT", 0x0010},
                                            {".TRANSI.KEYPRIOR.NEXT", 0x0020},
                                            {".TRANSI.KEY5.NEXT", 0x0080},
                                            {".TRANSI.KEY6.NEXT", 0x0100},
                                            {".TRANSI.KEY7.NEXT", 0x0200},
                                            {".TRANSI.KEY8.NEXT", 0x0400}}};

}  // namespace

std::string TransitionElementCombinerDecorator::decorate(std::string const& value,
                                                         ContextStore* context) const {
    std::uint32_t armed = 0;
    for (auto const& [key, bit] : elements)
        armed |= holds(*context, StateKey(value, key), "ON") ? bit : 0U;
    std::string result;
    Tools::appendUInt32(result, armed);
    return result;
}

}  // namespace FrameDriver::Template
