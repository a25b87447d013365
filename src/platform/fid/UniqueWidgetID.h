#pragma once

#include <cstdint>

/// The control that raised a FID. A plain value; its leading 16 bits are the widget's number.
struct UniqueWidgetID {
    std::uint16_t widget = 0;  ///< the widget's number on its panel
    std::uint16_t panel = 0;   ///< the panel's number
};
