#include "tests/support/watch.h"

void (*Inside::report)(const char* name) = nullptr;

#if ORVA_WATCHES
#include <dlfcn.h>
#include <pthread.h>
#include <sys/prctl.h>

#include "tests/support/standard.h"

#pragma GCC visibility push(default)
extern "C" {
// 1 while the thread is inside. The kernel reads it, too, as the selector of its dispatch of system calls.
thread_local volatile unsigned char orvaIsInside = 0;

// The allocator of the C library under its other names.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

struct Range {
    std::uintptr_t begin = 0, end = 0;
};
std::array<Range, 4> allowed;
std::size_t allowedCount = 0;

thread_local std::uint64_t requested = 0;
thread_local std::uint64_t failsAt = 0;  // by `requested`; 0: none
thread_local bool failsOn = false;       // and all that follow
std::atomic<std::int64_t> live{0};

void Forbid(const char* name) {
    if (orvaIsInside == 0) return;
    orvaIsInside = 0;
    if (Inside::report != nullptr) Inside::report(name);
    std::abort();
}

// One request more; false if it is to fail.
bool Grant(const char* name) {
    Forbid(name);
    ++requested;
    if (failsAt == 0 || requested < failsAt || (requested > failsAt && !failsOn)) return true;
    errno = ENOMEM;
    return false;
}

void* Counted(void* block) {
    if (block != nullptr) live.fetch_add(1, std::memory_order_relaxed);
    return block;
}

}  // namespace

extern "C" {

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static auto* const real =
        reinterpret_cast<int (*)(pthread_mutex_t*)>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    const auto address = reinterpret_cast<std::uintptr_t>(mutex);
    bool known = false;
    for (std::size_t i = 0; orvaIsInside != 0 && i < allowedCount; ++i)
        known = known || (address >= allowed[i].begin && address < allowed[i].end);
    if (!known) Forbid("pthread_mutex_lock");
    return real(mutex);
}
void* malloc(std::size_t size) noexcept {
    return Grant("malloc") ? Counted(__libc_malloc(size)) : nullptr;
}
void* calloc(std::size_t count, std::size_t size) noexcept {
    return Grant("calloc") ? Counted(__libc_calloc(count, size)) : nullptr;
}
void* realloc(void* block, std::size_t size) noexcept {
    if (!Grant("realloc")) return nullptr;
    void* const moved = __libc_realloc(block, size);
    if (block == nullptr) return Counted(moved);
    if (moved == nullptr && size == 0) live.fetch_sub(1, std::memory_order_relaxed);
    return moved;
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return Grant("aligned_alloc") ? Counted(__libc_memalign(alignment, size)) : nullptr;
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    void* const given = aligned_alloc(alignment, size);
    if (given != nullptr) *block = given;
    return given != nullptr ? 0 : ENOMEM;
}
void free(void* block) noexcept {
    Forbid("free");
    if (block == nullptr) return;
    live.fetch_sub(1, std::memory_order_relaxed);
    __libc_free(block);
}
}
#pragma GCC visibility pop

void Inside::Mark(bool in) {
    orvaIsInside = in ? 1 : 0;
}
void Inside::AllowLocksIn(const void* object, std::size_t bytes) {
    if (allowedCount == allowed.size()) std::abort();
    const auto begin = reinterpret_cast<std::uintptr_t>(object);
    allowed[allowedCount++] = {begin, begin + bytes};
}
bool Inside::WatchSystemCalls() {
    struct sigaction action {};
    action.sa_flags = SA_SIGINFO;
    action.sa_sigaction = [](int, siginfo_t* what, void*) {
        orvaIsInside = 1;
        char name[40];
        std::snprintf(name, sizeof name, "system call %d", what->si_syscall);
        Forbid(name);
    };
    sigaction(SIGSYS, &action, nullptr);
    constexpr int dispatch = 59, on = 1;  // PR_SET_SYSCALL_USER_DISPATCH; older headers do not name it
    return prctl(dispatch, on, 0UL, 0UL, &orvaIsInside) == 0;
}

std::uint64_t Allocations::Requested() {
    return requested;
}
std::int64_t Allocations::Live() {
    return live.load(std::memory_order_relaxed);
}
void Allocations::Fail(std::uint64_t n, bool andAllThatFollow) {
    failsAt = requested + n;
    failsOn = andAllThatFollow;
}
void Allocations::Succeed() {
    failsAt = 0;
}
#else
std::uint64_t Allocations::Requested() {
    return 0;
}
std::int64_t Allocations::Live() {
    return 0;
}
#endif
