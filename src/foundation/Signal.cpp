#include "foundation/Signal.h"

#include "foundation/Clock.h"

#include <algorithm>
#include <thread>

namespace {

using std::chrono::microseconds;
using std::chrono::system_clock;

/// The pauses of one waiter: most signals come within the first yields; a long wait sleeps, so
/// that a thread that waits without limit costs next to nothing.
class Pauses {
  public:
    void pause(Signal::Deadline const& deadline) {
        if (yields < maximumYields) {
            ++yields;
            std::this_thread::yield();
            return;
        }
        FrameDriver::Tools::Clock::system().sleep(std::min(nap, left(deadline)));
        nap = std::min(2 * nap, longestNap);
    }

  private:
    static constexpr int maximumYields = 50;
    // Below a millisecond: a signal is seen well within the shortest timeout in use, 60 ms.
    static constexpr microseconds longestNap{500};

    static microseconds left(Signal::Deadline const& deadline) {
        if (!deadline)
            return longestNap;
        auto const rest = std::chrono::ceil<microseconds>(*deadline - system_clock::now());
        return std::max(rest, microseconds(0));
    }

    int yields = 0;
    microseconds nap{20};
};

}  // namespace

bool Signal::waitBehind(Mark seen, Deadline const& deadline) const {
    for (Pauses pauses; mark() == seen; pauses.pause(deadline)) {
        if (deadline && system_clock::now() >= *deadline)
            return mark() != seen;
    }
    return true;
}
