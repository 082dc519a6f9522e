#include "tests/harmony/allocation_count.h"

#include <cstdlib>

namespace {

thread_local std::size_t allocations = 0;

}  // namespace

std::size_t AllocationsOfThisThread() {
    return allocations;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#pragma GCC visibility push(default)
extern "C" {
// The allocator of the C library under its other names.
void* __libc_malloc(std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) noexcept {
    ++allocations;
    return __libc_malloc(size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    ++allocations;
    return __libc_memalign(alignment, size);
}
}
#pragma GCC visibility pop

// A program in which `new` went by another way would find nothing.
[[maybe_unused]] const bool isCounting = [] {
    const int* volatile const word = new int(0);
    delete word;
    if (allocations == 0) std::abort();
    return true;
}();
#endif
