#include "foundation/SpinLock.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

namespace FrameDriver::Tools {
namespace {

template <class Mutex>
int countUnder(Mutex& mutex) {
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5000; ++round) {
                std::lock_guard guard(mutex);
                ++count;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    return count;
}

bool isFreeForAnother(auto& mutex) {
    bool taken = false;
    std::thread([&] {
        taken = mutex.try_lock();
        if (taken)
            mutex.unlock();
    }).join();
    return taken;
}

TEST(SpinMutex, LetsOneInAtATime) {
    SpinMutex mutex;
    EXPECT_EQ(countUnder(mutex), 20000);
}

TEST(SpinMutex, IsNotRecursive) {
    SpinMutex mutex;
    std::lock_guard guard(mutex);
    EXPECT_FALSE(mutex.try_lock());
}

TEST(SpinRecursiveMutex, LetsOneInAtATime) {
    SpinRecursiveMutex mutex;
    EXPECT_EQ(countUnder(mutex), 20000);
}

TEST(SpinRecursiveMutex, OwnerUnlocksAsOftenAsItLocked) {
    SpinRecursiveMutex mutex;
    mutex.lock();
    mutex.lock();
    EXPECT_FALSE(isFreeForAnother(mutex));
    mutex.unlock();
    EXPECT_FALSE(isFreeForAnother(mutex));
    mutex.unlock();
    EXPECT_TRUE(isFreeForAnother(mutex));
}

}  // namespace
}  // namespace FrameDriver::Tools
