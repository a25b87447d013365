#include "foundation/Clock.h"

#include "platform/sal/Thread.h"

#include <algorithm>
#include <limits>
#include <thread>

namespace FrameDriver::Tools {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

class SystemClock : public Clock {
  public:
    // The platform's sleep knows whole milliseconds.
    void sleep(microseconds duration) override {
        auto const whole = std::chrono::floor<milliseconds>(duration);
        if (whole.count() > 0)
            sal::Thread::mssleep(clamped(whole));
        if (duration > whole)
            std::this_thread::sleep_for(duration - whole);
    }

    std::tm localTime() override {
        std::time_t const now = std::time(nullptr);
        std::tm result{};
        localtime_r(&now, &result);
        return result;
    }

  private:
    static unsigned clamped(milliseconds whole) {
        constexpr milliseconds::rep longest = std::numeric_limits<unsigned>::max();
        return static_cast<unsigned>(std::min(whole.count(), longest));
    }
};

}  // namespace

Clock& Clock::system() {
    static SystemClock clock;
    return clock;
}

}  // namespace FrameDriver::Tools
