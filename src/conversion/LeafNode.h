#pragma once

#include "conversion/AbstractNode.h"
#include "conversion/TemplateConversion.h"

namespace FrameDriver::Conversion {

/// The end of a path of the lookup tree: the entry whose template the path spells.
class LeafNode : public AbstractNode {
  public:
    LeafNode(TemplateConversion const& entry, std::int32_t nodeLevel)
        : AbstractNode(leafType, nodeLevel), conversion(entry) {}

    TemplateConversion const* getConversion() const { return &conversion; }

  private:
    TemplateConversion conversion;
};

}  // namespace FrameDriver::Conversion
