#include "platform/sal/Thread.h"

#include <chrono>
#include <thread>

namespace sal {

void Thread::mssleep(unsigned milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace sal
