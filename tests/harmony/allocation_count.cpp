#include "tests/harmony/allocation_count.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

void* Allocate(std::size_t size, std::size_t alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__) noexcept {
    ++allocations;
    return std::aligned_alloc(alignment, (size + alignment) / alignment * alignment);
}

void* Checked(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

}  // namespace

std::size_t AllocationsOfThisThread() {
    return allocations;
}

// Every form is replaced, since a sanitizer brings its own of those that are left out.
void* operator new(std::size_t size) {
    return Checked(Allocate(size));
}
void* operator new[](std::size_t size) {
    return Checked(Allocate(size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return Checked(Allocate(size, static_cast<std::size_t>(alignment)));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return Checked(Allocate(size, static_cast<std::size_t>(alignment)));
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    std::free(block);
}
