#pragma once

#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <thread>

namespace FrameDriver::Tools {

/// The driver's mutexes spin and yield instead of sleeping in the kernel: what they guard is
/// short, and an uncontended pair costs a few nanoseconds on the road of every FID. Written on
/// std::atomic, so that the thread sanitizer sees them. Both satisfy Lockable, for
/// std::lock_guard and std::unique_lock.
class SpinMutex {
  public:
    SpinMutex() = default;
    SpinMutex(SpinMutex const&) = delete;
    SpinMutex& operator=(SpinMutex const&) = delete;

    void lock() {
        while (!try_lock())
            std::this_thread::yield();
    }
    // A failed exchange orders nothing; the plain read keeps the cache line shared meanwhile.
    bool try_lock() {
        return word.load(std::memory_order_relaxed) == 0 &&
               word.exchange(1, std::memory_order_acquire) == 0;
    }
    void unlock() { word.store(0, std::memory_order_release); }

  private:
    std::atomic<std::uint32_t> word{0};
};

/// As SpinMutex; the owner may lock it again and unlocks it as often.
class SpinRecursiveMutex {
  public:
    SpinRecursiveMutex() = default;
    SpinRecursiveMutex(SpinRecursiveMutex const&) = delete;
    SpinRecursiveMutex& operator=(SpinRecursiveMutex const&) = delete;

    void lock() {
        while (!try_lock())
            std::this_thread::yield();
    }
    // Only the owner can read its own mark here, so relaxed order is enough for the test.
    bool try_lock() {
        void const* const self = threadMark();
        if (owner.load(std::memory_order_relaxed) == self) {
            if (count == UINT32_MAX)
                throw std::runtime_error(
                    "boost::interprocess::spin_recursive_mutex recursive lock overflow");
            ++count;
            return true;
        }
        if (!mutex.try_lock())
            return false;
        owner.store(self, std::memory_order_relaxed);
        count = 1;
        return true;
    }
    void unlock() {
        if (--count != 0)
            return;
        owner.store(nullptr, std::memory_order_relaxed);
        mutex.unlock();
    }

  private:
    /// An address that differs from thread to thread, cheaper to get than a thread's id.
    static void const* threadMark() {
        static thread_local char mark;
        return &mark;
    }

    SpinMutex mutex;
    std::atomic<void const*> owner{nullptr};
    std::uint32_t count = 0;  // guarded by mutex
};

}  // namespace FrameDriver::Tools
