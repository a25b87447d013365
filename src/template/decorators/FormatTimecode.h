#pragma once

#include <string>

namespace FrameDriver::Template {

class ContextStore;

/// The kinds of FormatDecorator that print and read colon time codes.
///
///     timecode = hours ":" minutes ":" seconds separator frames
///
/// Each field has at least two digits, and hours don't wrap.
namespace Format {

/// 25 frames a second with the option "50HZ", else 30. With "DROPFRAME" two frame numbers are
/// left out each minute but every tenth, and the separator is ";". The store is not read.
std::string framesToTimecode(std::string const& value, std::string const& option,
                             ContextStore const* store);

/// Two fields make a frame where "VIDEO.SCANTYPE" is another number than 0 or the rate is above
/// 30. The separator tells the field: ":" for an odd one, "." for an even one.
std::string fieldsToTimecode(std::string const& value, std::string const& option,
                             ContextStore const* store);

/// Fields are cut at the first three ":"; a missing one makes the last fields read from
/// the start of the text. With "DROPFRAME" the numbers left out aren't counted. Throws as
/// FormatDecorator says.
std::string timecodeToFrames(std::string const& value, std::string const& option,
                             ContextStore const* store);

/// Twice the frames, without drop-frame counting.
std::string timecodeToFields(std::string const& value, std::string const& option,
                             ContextStore const* store);

}  // namespace Format
}  // namespace FrameDriver::Template
