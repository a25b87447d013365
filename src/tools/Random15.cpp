#include "tools/Random15.h"

namespace FrameDriver::Tools::MonkeyTest {

int Random15::next() {
    std::uint32_t before = state.load(std::memory_order_relaxed);
    std::uint32_t after = 0;
    do
        after = before * 1103515245U + 12345U;
    while (!state.compare_exchange_weak(before, after, std::memory_order_relaxed));
    return static_cast<int>((after >> 16U) & 0x7FFFU);
}

Random15& Random15::ofProcess() {
    static Random15 random;
    return random;
}

}  // namespace FrameDriver::Tools::MonkeyTest
