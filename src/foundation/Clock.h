#pragma once

#include <chrono>
#include <ctime>

namespace FrameDriver::Tools {

/// The one place where the driver sleeps or reads a clock, so that a test can put a clock of
/// its own there. Thread: any.
class Clock {
  public:
    virtual ~Clock() = default;

    virtual void sleep(std::chrono::microseconds duration) = 0;
    /// The local wall clock, broken down.
    virtual std::tm localTime() = 0;

    /// The machine's own.
    static Clock& system();
};

}  // namespace FrameDriver::Tools
