#pragma once

#include <cstdint>

namespace FrameDriver::CPL {

/// What kind of value an untyped pointer points at. The numbers are the frame's and travel on
/// the link; each place that touches a value switches on them.
enum DataType : std::int32_t {
    Int16 = 0,
    Int32 = 1,
    UInt16 = 2,
    UInt32 = 3,
    Bool = 4,
    Float = 5,
    String = 7,
    Double = 8,
    Clock = 11,
    Degree = 12,
    Percent = 14,
    Revolution = 15,
    ScreenUnit = 16,
    SPercent = 17,
    State = 18,
    NoValue = 19
};

}  // namespace FrameDriver::CPL
