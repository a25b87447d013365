#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <cstdint>
#include <string>

namespace FrameDriver::Template {

/// "true" for the empty value, else "false".
class IsEmptyDecorator : public CopyableDecorator<IsEmptyDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "isEmpty"; }
};

/// "true" if the store has the key with exactly the value as its text, else "false"; an absent
/// key gives "false" for the empty value too.
class IsEqualDecorator : public CopyableDecorator<IsEqualDecorator> {
  public:
    explicit IsEqualDecorator(std::string stateKey);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "isEqual"; }

  private:
    std::string key;
};

/// One text if the value, a signed decimal number, has a bit of the mask, another if not. A
/// result with the highest bit set is negative and counts as having none: the dictionaries in
/// use depend on it.
class BitMaskDecorator : public CopyableDecorator<BitMaskDecorator> {
  public:
    BitMaskDecorator(std::uint32_t bits, std::string textIfSet, std::string textIfClear);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "bitMask"; }

  private:
    std::uint32_t mask;
    std::string setText;
    std::string clearText;
};

}  // namespace FrameDriver::Template
