#pragma once

#include "template/decorators/CopyableDecorator.h"

namespace FrameDriver::Template {

/// The elements that are armed for the next transition, as a bit set in decimal. The value is
/// the prefix of their state keys, "ME1.PRIMARY" for example; an element counts if its key's
/// text is exactly "ON".
class TransitionElementCombinerDecorator
    : public CopyableDecorator<TransitionElementCombinerDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "transitionElementCombiner"; }
};

}  // namespace FrameDriver::Template
