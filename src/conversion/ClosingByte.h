#pragma once

namespace FrameDriver::Conversion {

/// A bracketed group of a text form opens with "[" and closes with this one byte, 0x92, not with
/// a right square bracket. Writers emit it, readers search for it, and dictionaries contain it.
/// By itself it is not valid UTF-8.
inline constexpr char closingByte = '\222';

}  // namespace FrameDriver::Conversion
