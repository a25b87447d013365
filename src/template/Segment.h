#pragma once

#include "template/VariableMap.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace FrameDriver::Template {

class ContextStore;

/// A piece of a template: literal text, or something that is filled from outside.
///
/// Immutable once loaded. Thread: any, several at once. The order of the virtual operations is
/// part of the design; `appendTo` comes behind it.
class Segment {
  public:
    /// What `find` answers if the segment doesn't occur.
    static constexpr std::size_t notFound = std::string_view::npos;

    virtual ~Segment() = default;
    /// A deep copy, the caller's.
    virtual Segment* clone() const = 0;
    /// True if the segment is filled from outside, false if it is literal text. Whatever answers
    /// true derives from Variable.
    virtual bool isVariable() const = 0;
    /// The number of characters that the segment occupies for certain in a matched text.
    virtual std::uint32_t length() const = 0;
    /// Whether the segment can be found at or after `position`. Nothing calls it.
    virtual bool occursIn(std::string_view text, std::size_t position) const = 0;
    /// The offset at or after `position` at which the segment is found, or `notFound`.
    virtual std::size_t find(std::string_view text, std::size_t position) const = 0;
    /// The segment's text. `context` is not kept; it may be null only for segments that hold
    /// neither a context string nor a decorator that reads the store.
    virtual std::string evaluate(VariableMap const& variables, ContextStore* context) const = 0;
    /// The segment printed in template syntax.
    virtual std::string toString() const = 0;

    /// As `evaluate`, at the end of `out`: a template's pieces meet in one string.
    virtual void appendTo(std::string& out, VariableMap const& variables,
                          ContextStore* context) const {
        out += evaluate(variables, context);
    }

  protected:
    Segment() = default;
    Segment(Segment const&) = default;
    Segment& operator=(Segment const&) = default;
};

using SegmentPtr = std::unique_ptr<Segment>;

}  // namespace FrameDriver::Template
