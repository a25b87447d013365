#include "platform/cplclient/ValueBytes.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>

namespace {

// The width of a number by its tag; 0 for text and for tags that have no value.
constexpr std::size_t widths[] = {2, 4, 2, 4, 1, 4, 0, 0, 8, 0, 0, 4, 4, 0, 4, 4, 4, 4, 2};

bool isNumber(std::uint16_t dataType, std::size_t size) {
    return dataType < std::size(widths) && widths[dataType] == size;
}

}  // namespace

void toMachineOrder(std::uint16_t dataType, std::string_view value, unsigned char* target) {
    std::copy(value.begin(), value.end(), target);
    if constexpr (std::endian::native == std::endian::little)
        if (isNumber(dataType, value.size()))
            std::reverse(target, target + value.size());
}
