#include "platform/cplclient/ValueBytes.h"

#include <algorithm>
#include <bit>

namespace {

constexpr std::uint16_t stringTag = 7;

bool isNumber(std::size_t size) { return size == 2 || size == 4 || size == 8; }

}  // namespace

void toMachineOrder(std::uint16_t dataType, std::string_view value, unsigned char* target) {
    std::copy(value.begin(), value.end(), target);
    if constexpr (std::endian::native == std::endian::little)
        if (dataType != stringTag && isNumber(value.size()))
            std::reverse(target, target + value.size());
}
