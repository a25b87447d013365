#include "foundation/AbstractThread.h"

#include <utility>

AbstractThread::AbstractThread(std::string threadName) : name(std::move(threadName)) {}

AbstractThread::~AbstractThread() {
    // By hand: a joinable boost::thread's own destructor ends the process in newer interfaces
    // of the library.
    if (thread.joinable())
        thread.detach();
}
