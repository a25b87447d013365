#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

/// Counts what the calling thread takes from the heap. Replaces the global `operator new`, so one
/// source of a test program may include it. A sanitizer has an allocator of its own: there
/// QFD_COUNTS_ALLOCATIONS is 0 and the tests that count are left out.
#define QFD_COUNTS_ALLOCATIONS 1
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#undef QFD_COUNTS_ALLOCATIONS
#define QFD_COUNTS_ALLOCATIONS 0
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#undef QFD_COUNTS_ALLOCATIONS
#define QFD_COUNTS_ALLOCATIONS 0
#endif

#if QFD_COUNTS_ALLOCATIONS

namespace FrameDriver::Testing {

inline thread_local std::size_t allocations = 0;

template <class Call>
std::size_t allocationsOf(Call call) {
    auto const before = allocations;
    call();
    return allocations - before;
}

}  // namespace FrameDriver::Testing

// Never inlined: the compiler would see the `free` of what it takes for a plain `new`.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++FrameDriver::Testing::allocations;
    if (void* const memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#endif
