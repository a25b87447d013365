#pragma once

#include "template/decorators/CopyableDecorator.h"

namespace FrameDriver::Template {

/// The number plus 1; a value that is no number is handed on unchanged. Past the largest number
/// comes the smallest.
class IncrementDecorator : public CopyableDecorator<IncrementDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "increment"; }
};

/// The number minus 1, else as IncrementDecorator.
class DecrementDecorator : public CopyableDecorator<DecrementDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "decrement"; }
};

/// The value times a factor in 32-bit float, printed with six significant digits. A value that
/// is no number counts as 0.
class ScaleDecorator : public CopyableDecorator<ScaleDecorator> {
  public:
    explicit ScaleDecorator(float scaleFactor) : factor(scaleFactor) {}

    std::string decorate(std::string const& value, ContextStore* context) const override;
    /// A clone, the caller's.
    SegmentDecorator* self() override { return clone(); }
    std::string toString() const override;

  private:
    float factor;
};

/// The integer part of the value plus a half: "2.5" gives "3", but "-2.5" gives "-2" and "-0.4"
/// gives "0". Displays expect this and not rounding to nearest for negative values.
class RoundDecorator : public CopyableDecorator<RoundDecorator> {
  public:
    std::string decorate(std::string const& value, ContextStore* context) const override;
    std::string toString() const override { return "round"; }
};

}  // namespace FrameDriver::Template
