#pragma once

#include <cstdint>

namespace FrameDriver::Conversion {

/// A node of a dictionary's lookup tree. Thread: that of its owner.
class AbstractNode {
  public:
    static constexpr std::int32_t groupType = 0;
    static constexpr std::int32_t leafType = 1;

    AbstractNode(AbstractNode const&) = delete;
    AbstractNode& operator=(AbstractNode const&) = delete;
    virtual ~AbstractNode() = default;

    std::int32_t getType() const { return type; }
    /// How deep it lies; the root is at 0.
    std::int32_t getLevel() const { return level; }

  protected:
    AbstractNode(std::int32_t nodeType, std::int32_t nodeLevel)
        : type(nodeType), level(nodeLevel) {}

  private:
    std::int32_t const type;
    std::int32_t const level;
};

}  // namespace FrameDriver::Conversion
