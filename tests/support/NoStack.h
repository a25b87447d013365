#pragma once

#include <cstddef>
#include <pthread.h>

namespace FrameDriver::Testing {

/// While it lives, no new thread of this process can be had: each asks for a stack that no
/// machine has.
class NoStack {
  public:
    NoStack() {
        pthread_getattr_default_np(&before);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        pthread_attr_setstacksize(&huge, std::size_t{1} << 50);
        pthread_setattr_default_np(&huge);
        pthread_attr_destroy(&huge);
    }
    NoStack(NoStack const&) = delete;
    NoStack& operator=(NoStack const&) = delete;
    ~NoStack() {
        pthread_setattr_default_np(&before);
        pthread_attr_destroy(&before);
    }

  private:
    pthread_attr_t before;
};

}  // namespace FrameDriver::Testing
