#pragma once

#include "template/SegmentDecorator.h"

namespace FrameDriver::Template {

/// What every decorator family starts from: `clone` copies the fields of `Derived`, `self` is
/// the object itself.
template <typename Derived>
class CopyableDecorator : public SegmentDecorator {
  public:
    SegmentDecorator* clone() const override {
        return new Derived(static_cast<Derived const&>(*this));
    }
    SegmentDecorator* self() override { return this; }

  private:
    CopyableDecorator() = default;
    friend Derived;
};

}  // namespace FrameDriver::Template
