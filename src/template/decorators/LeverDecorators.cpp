#include "template/decorators/LeverDecorators.h"

#include "foundation/NumberText.h"
#include "template/decorators/StateKey.h"

#include <string_view>

namespace FrameDriver::Template {
namespace {

constexpr std::int32_t middle = 2047;
constexpr float fullRange = 4095.0F;
constexpr float fractionPerStep = 0.00024420026F;  // the float nearest 1/4095

std::string directionKeyOf(std::int32_t me, std::int32_t bank, bool emem) {
    constexpr std::string_view name = "TRANSI.FADERDIRECTION";
    if (emem && me == -1)
        return std::string("EMEM.MASTER.").append(name);
    std::string key = emem ? "EMEM.ME" : "ME";
    Tools::appendInt32(key, me);
    key.append(bank == 0 ? ".PRIMARY." : ".SECONDARY.").append(name);
    return key;
}

}  // namespace

DirectionDecorator::DirectionDecorator(std::int32_t me, std::int32_t bank, bool emem)
    : directionKey(directionKeyOf(me, bank, emem)), lockKey(directionKey + ".LOCK") {}

std::string DirectionDecorator::decorate(std::string const& value, ContextStore* context) const {
    if (holds(*context, lockKey, "OFF")) {
        std::int32_t const position = Tools::int32Or(value, 0);
        if (position != middle) {
            context->set(directionKey, position < middle ? "UP" : "DOWN");
            context->set(lockKey, "ON");
        }
    }
    return context->get(directionKey);
}

LeverArmDecorator::LeverArmDecorator(std::int32_t me, std::int32_t bank, bool emem)
    : directionKey(directionKeyOf(me, bank, emem)) {}

std::string LeverArmDecorator::decorate(std::string const& value, ContextStore* context) const {
    std::string const direction = context->get(directionKey);
    bool const down = direction == "DOWN";
    // The product for the full range comes out a little off 1, so the ends are told by the text.
    if ((direction == "UP" && value == "4095") || (down && value == "0"))
        return "1";
    float const position = Tools::floatOr(value, 0.0F);
    std::string result;
    Tools::appendFloat(result, (down ? fullRange - position : position) * fractionPerStep);
    return result;
}

}  // namespace FrameDriver::Template
