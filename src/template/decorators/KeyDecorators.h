#pragma once

#include "template/decorators/CopyableDecorator.h"

namespace FrameDriver::Template {

/// "ON" if the fill and the cut source of a key differ, "OFF" if they are equal or one of them
/// is absent. The value is the prefix of the key's state keys; the side that is compared is
/// "BACK" if value ".BACK.SELECTED" is exactly "TRUE", else "FRONT".
///
///     value "." side ".FILL.SOURCE"
///     value "." side ".CUT.SOURCE"
class SplitKeyDecorator : public CopyableDecorator<SplitKeyDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "splitKey"; }
};

}  // namespace FrameDriver::Template
