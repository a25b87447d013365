#pragma once

#include "template/decorators/CopyableDecorator.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace FrameDriver::Template {

/// Renders values for the panel's displays, and converts between the time forms of panel and
/// frame. What depends on the video standard reads it from the store on each call, since it can
/// change at any time; without one the result is "INV", except where a kind says otherwise.
///
/// Displays are expected to show exactly what these kinds compute, 32-bit float steps included.
/// A value that can't be read counts as 0. The two readers of colon time codes alone throw: an
/// IllegalArgumentException ("Unable to convert a string value into an UInt32.") for a field that
/// is no number of up to 32767.
///
///     word = "format:" kind [ "," option ]
class FormatDecorator : public CopyableDecorator<FormatDecorator> {
  public:
    enum class Kind : std::int32_t {
        floatAsInteger,
        none,
        percent,
        degree,
        screenUnit,
        secondsToEmemLedBar,
        secondsToFrames,
        secondsToTimecode,
        framesToSeconds,
        framesToTimecode,
        fieldsToTimecode,
        timecodeToFrames,
        timecodeToFields,
        timecodeToSeconds,
        secondsToAutotrans
    };

    FormatDecorator(Kind formatKind, std::string kindOption);
    /// From the whole decorator word. A kind that isn't known passes the value unchanged.
    static std::unique_ptr<FormatDecorator> fromWord(std::string_view word);

    std::string decorate(std::string const& value, ContextStore* context) const override;
    /// A clone, the caller's.
    SegmentDecorator* self() override { return clone(); }
    std::string toString() const override;

  private:
    Kind kind;
    std::string option;
};

}  // namespace FrameDriver::Template
