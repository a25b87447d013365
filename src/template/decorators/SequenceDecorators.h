#pragma once

#include "template/decorators/CopyableDecorator.h"

namespace FrameDriver::Template {

/// "true" if the last step of a sequence leads to itself, else "false", also where the last step
/// has fewer than two parts. Empty steps and empty parts don't count.
///
///     value = [ step { "/" step } ]
///     step  = from "->" to
class SequenceCompleteDecorator : public CopyableDecorator<SequenceCompleteDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "isSequenceComplete"; }
};

}  // namespace FrameDriver::Template
