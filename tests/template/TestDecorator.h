#pragma once

#include "template/SegmentDecorator.h"

#include <string>
#include <utility>

namespace FrameDriver::Template {

/// Puts the value between round brackets behind a label, so that a result shows which decorators
/// ran and in which order. Counts how many of it are alive.
class TestDecorator : public SegmentDecorator {
  public:
    explicit TestDecorator(std::string decoratorLabel) : label(std::move(decoratorLabel)) {
        ++alive();
    }
    TestDecorator(TestDecorator const& other) : SegmentDecorator(other), label(other.label) {
        ++alive();
    }
    TestDecorator& operator=(TestDecorator const&) = delete;
    ~TestDecorator() override { --alive(); }

    std::string decorate(std::string const& value, ContextStore*) const override {
        return label + "(" + value + ")";
    }
    TestDecorator* clone() const override { return new TestDecorator(*this); }
    TestDecorator* self() override { return this; }
    std::string toString() const override { return label; }

    static int& alive() {
        static int count = 0;
        return count;
    }

  private:
    std::string label;
};

}  // namespace FrameDriver::Template
