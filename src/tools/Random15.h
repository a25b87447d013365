#pragma once

#include <atomic>
#include <cstdint>

namespace FrameDriver::Tools::MonkeyTest {

/// Numbers of 15 bits, 0 to 32767, in the sequence that the C standard gives as its example. It
/// is never seeded, so a monkey does the same from one start of the process to the next; and it
/// is the driver's own, so that nothing else in the process takes numbers out of the sequence.
/// Thread: any; each number is given once.
class Random15 {
  public:
    int next();

    /// The one of this process.
    static Random15& ofProcess();

  private:
    std::atomic<std::uint32_t> state{1};
};

/// The next number of the process's sequence.
inline int rand() { return Random15::ofProcess().next(); }

}  // namespace FrameDriver::Tools::MonkeyTest
