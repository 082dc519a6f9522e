#pragma once
#include <sanitizer/allocator_interface.h>

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

// Ends the fuzzing, with the input kept, unless it is true.
inline void Demand(bool isTrue, const std::string& what) {
    if (isTrue) return;
    std::fprintf(stderr, "not true: %s\n", what.c_str());
    std::abort();
}

// What the process has on its heap, as the allocator sees it and not as the code under test counts it, and
// how long it has worked. One at a time; what was there before counts as nothing.
class HeapWatch {
public:
    HeapWatch() : begin(Seconds()) {
        static const int installed = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);
        static_cast<void>(installed);
        live = 0;
        highest = 0;
    }
    HeapWatch(const HeapWatch&) = delete;
    HeapWatch& operator=(const HeapWatch&) = delete;

    std::size_t Highest() const { return static_cast<std::size_t>(highest); }  // bytes, most so far
    double Worked() const { return Seconds() - begin; }                        // s, of this thread's own

private:
    static double Seconds() {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
    }
    static std::ptrdiff_t SizeOf(const volatile void* piece) {
        return piece == nullptr ? 0 : static_cast<std::ptrdiff_t>(__sanitizer_get_allocated_size(piece));
    }
    static void OnMalloc(const volatile void* piece, std::size_t) {
        live += SizeOf(piece);
        if (live > highest) highest = live.load();
    }
    static void OnFree(const volatile void* piece) { live -= SizeOf(piece); }

    // Other threads of the process may allocate too.
    static inline std::atomic<std::ptrdiff_t> live{0}, highest{0};
    const double begin;
};
