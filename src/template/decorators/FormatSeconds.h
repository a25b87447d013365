#pragma once

#include <string>

namespace FrameDriver::Template {

class ContextStore;

/// The kinds of FormatDecorator between seconds and frames, all in 32-bit float.
namespace Format {

/// The nearest number of frames, upwards from a half.
std::string secondsToFrames(std::string const& value, std::string const& option,
                            ContextStore const* store);

/// By the option; "INV" for any other. The mark is "*" for a frame that is more than four tenths
/// over, else a space; the source is "F" while the master duration is forced, else "N".
///
///     "SS:FF:*N/F"   seconds ":" frames ":" mark " " source
///     "SS:FF:*"      [ "-" ] seconds ":" frames ":" mark
std::string secondsToTimecode(std::string const& value, std::string const& option,
                              ContextStore const* store);

/// As "SETTINGS.AUTO.TRANSRATE.DISPLAY" wants it: for "FRAMES" as secondsToFrames, for "TIME"
/// with a rate as seconds "." frames, else the empty string.
std::string secondsToAutotrans(std::string const& value, std::string const& option,
                               ContextStore const* store);

/// The part of the latest effect's duration ("EMEM." option ".LATEST.EFFDUR") on a bar of 0 to
/// 4095; "0" without a duration. A duration of exactly 1 is a full bar whatever the value: panels
/// rely on it.
std::string secondsToLedBar(std::string const& value, std::string const& option,
                            ContextStore const* store);

/// Reads seconds and frames, not a colon time code.
///
///     value = [ "-" ] ( frames | seconds "." frames [ "." field ] )
///
/// With more parts the field doesn't count.
std::string framesToSeconds(std::string const& value, std::string const& option,
                            ContextStore const* store);

}  // namespace Format
}  // namespace FrameDriver::Template
