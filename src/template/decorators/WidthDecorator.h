#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <cstdint>
#include <string>

namespace FrameDriver::Template {

/// The value right-aligned in a field, filled on the left; a value at least as long stays whole.
///
///     printed = "Width: width=" width ", padding=" padding
class WidthDecorator : public CopyableDecorator<WidthDecorator> {
  public:
    WidthDecorator(std::int32_t count, char fill) : width(count), padding(fill) {}

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override;

  private:
    std::int32_t width;
    char padding;
};

}  // namespace FrameDriver::Template
