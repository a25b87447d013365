#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <cstdint>
#include <string>

namespace FrameDriver::Template {

/// The order of six keys, with a new priority for some of them, packed into one number in
/// decimal. The value is the prefix of their state keys. Each key 1 to 6 has its priority, 1 to
/// 6, in
///
///     value ".TRANSI.KEY" key ".PRIORITY." keyPart
///
/// and may have a new one in the same key text followed by ".NEW". A key with a new priority is
/// moved towards the front, and those that it passes one place back; a new priority behind the
/// key's place is ignored, as is any outside 1 to 6. The lowest hexadecimal digit of the result
/// holds the index, 0 to 5, of the key in front; a place that no key has holds 0.
class PriorityCombinerDecorator : public CopyableDecorator<PriorityCombinerDecorator> {
  public:
    explicit PriorityCombinerDecorator(std::string lastKeyPart);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "priorityElementCombiner"; }

  private:
    std::string keyPart;
};

/// The places, 1 to 8, whose hexadecimal digit in the value (lowest first) names the key of this
/// number; all of them, one behind the other. Only a well-formed order gives one place: unused
/// digits are 0, so key 1 has those places too.
class PriorityExtractorDecorator : public CopyableDecorator<PriorityExtractorDecorator> {
  public:
    explicit PriorityExtractorDecorator(std::int32_t key) : priority(key) {}

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "PriorityExtractorDecorator"; }

  private:
    std::int32_t priority;
};

}  // namespace FrameDriver::Template
