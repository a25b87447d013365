#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <cstdint>
#include <string>

namespace FrameDriver::Template {

/// The stored number plus the value, kept within bounds; the upper one wins where they cross.
/// "INV" if the store doesn't have the key. The store is not changed.
class AggregateValueDecorator : public CopyableDecorator<AggregateValueDecorator> {
  public:
    AggregateValueDecorator(std::string stateKey, std::int32_t lowest, std::int32_t highest);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "AggregateValue"; }

  private:
    std::string key;
    std::int32_t minimum;
    std::int32_t maximum;
};

}  // namespace FrameDriver::Template
