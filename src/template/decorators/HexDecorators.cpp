#include "template/decorators/HexDecorators.h"

#include "foundation/NumberText.h"

#include <cstdint>

namespace FrameDriver::Template {

std::string HexToDecimalDecorator::decorate(std::string const& value, ContextStore*) const {
    std::int32_t number = 0;
    Tools::readHexInt32(value, number);
    std::string result;
    Tools::appendInt32(result, number);
    return result;
}

std::string DecimalToHexDecorator::decorate(std::string const& value, ContextStore*) const {
    std::string result;
    Tools::appendHex32(result, static_cast<std::uint32_t>(Tools::int32Or(value, 0)));
    return result;
}

std::string DecimalUnsignedToHexDecorator::decorate(std::string const& value, ContextStore*) const {
    std::uint32_t number = 0;
    Tools::readUInt32(value, number);
    std::string result;
    Tools::appendHex32(result, number);
    return result;
}

std::string StringToHexDecorator::decorate(std::string const& value, ContextStore*) const {
    std::string result;
    result.reserve(2 * value.size());
    for (char const character : value) {
        auto const byte = static_cast<unsigned char>(character);
        // A byte with its highest bit set is a negative number.
        Tools::appendHex32(result, byte < 0x80U ? byte : 0xFFFFFF00U | byte);
    }
    return result;
}

}  // namespace FrameDriver::Template
