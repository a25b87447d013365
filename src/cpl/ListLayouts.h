#pragma once

#include "foundation/DataType.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace FrameDriver::CPL {

/// One field of the items of a list: the name under which dictionaries know it, and its kind.
/// The kind tells the width on the link, which belongs to the list and not to the name: one
/// byte for Bool, two for Int16 and UInt16, four for Int32, UInt32 and Float, and a String up to
/// its NUL.
struct ListField {
    std::string_view name;
    DataType dataType;
};

/// The fields of a list's items in their order on the link; none for a list that isn't known.
std::span<ListField const> listFields(std::int32_t lid);

}  // namespace FrameDriver::CPL
