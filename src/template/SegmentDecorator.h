#pragma once

#include <string>

namespace FrameDriver::Template {

class ContextStore;

/// Transforms a value on its way out of a template.
///
/// A decorator never throws and never refuses: what it can't read it treats as its class says,
/// "INVALID" (a missing state key) included. Immutable once loaded; what it knows of the
/// switcher it reads from the store on each call. Thread: any, several at once. The order of the
/// virtual operations is part of the design.
class SegmentDecorator {
  public:
    /// The transformed value. `context` is not kept. `value` stays valid during the call only.
    virtual std::string decorate(std::string const& value, ContextStore* context) const = 0;
    /// A copy, the caller's.
    virtual SegmentDecorator* clone() const = 0;
    /// The object itself; a few classes return a clone, the caller's. Nothing calls it.
    virtual SegmentDecorator* self() = 0;
    /// The decorator as a template prints it, which isn't always the word that made it.
    virtual std::string toString() const = 0;

    /// Stands last, where the decorators with a destructor of their own have it.
    virtual ~SegmentDecorator() = default;

  protected:
    SegmentDecorator() = default;
    SegmentDecorator(SegmentDecorator const&) = default;
    SegmentDecorator& operator=(SegmentDecorator const&) = default;
};

}  // namespace FrameDriver::Template
