#include "torture/watch.h"

#if ORVA_WATCHES
#include <dlfcn.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <cxxabi.h>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

// 1 while the thread is inside a process call. The kernel reads it, too: it is what the dispatch of system
// calls calls its selector.
extern "C" {
__attribute__((tls_model("local-exec"), used)) thread_local unsigned char insideProcessCall = 0;

// The allocator of the C library under its other names.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

void (*InsideCall::told)(const char* name) = nullptr;

namespace {

[[noreturn]] void Tell(const char* name) {
    insideProcessCall = 0;
    if (InsideCall::told != nullptr) InsideCall::told(name);
    std::abort();
}

// A function of the library that stands behind one of ours.
struct Watched {
    void* real;
    const char* name;
};

}  // namespace

extern "C" {
[[noreturn]] __attribute__((used)) void TellForbidden(const char* name) {
    Tell(name);
}
// dlsym itself is one of them, and found by another way.
__attribute__((used)) void* ResolveWatched(Watched* function) {
    const bool self = std::strcmp(function->name, "dlsym") == 0;
    function->real = self ? dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.2.5") : dlsym(RTLD_NEXT, function->name);
    if (function->real == nullptr) std::abort();
    return function->real;
}
}

// Common to all that follow: looks the real function up, with all arguments kept, and goes on to it.
asm(R"(
    .pushsection .text
    .type resolveThenJump, @function
resolveThenJump:
    push %rax
    push %rdi
    push %rsi
    push %rdx
    push %rcx
    push %r8
    push %r9
    push %r10
    sub $136, %rsp
    movups %xmm0, (%rsp)
    movups %xmm1, 16(%rsp)
    movups %xmm2, 32(%rsp)
    movups %xmm3, 48(%rsp)
    movups %xmm4, 64(%rsp)
    movups %xmm5, 80(%rsp)
    movups %xmm6, 96(%rsp)
    movups %xmm7, 112(%rsp)
    mov %r11, %rdi
    call ResolveWatched
    mov %rax, %r11
    movups (%rsp), %xmm0
    movups 16(%rsp), %xmm1
    movups 32(%rsp), %xmm2
    movups 48(%rsp), %xmm3
    movups 64(%rsp), %xmm4
    movups 80(%rsp), %xmm5
    movups 96(%rsp), %xmm6
    movups 112(%rsp), %xmm7
    add $136, %rsp
    pop %r10
    pop %r9
    pop %r8
    pop %rcx
    pop %rdx
    pop %rsi
    pop %rdi
    pop %rax
    jmp *%r11
    .size resolveThenJump, . - resolveThenJump
    .popsection
)");

// A function of this name that goes on to the library's, whatever its arguments are; inside a process call it
// tells its name instead.
#define FORBID(name)                                 \
    asm(".pushsection .text\n"                       \
        ".globl " #name                              \
        "\n"                                         \
        ".type " #name ", @function\n" #name         \
        ":\n"                                        \
        "    endbr64\n"                              \
        "    cmpb $0, %fs:insideProcessCall@tpoff\n" \
        "    jne 1f\n"                               \
        "    movq watched_" #name                    \
        "(%rip), %r11\n"                             \
        "    test %r11, %r11\n"                      \
        "    je 2f\n"                                \
        "    jmp *%r11\n"                            \
        "1:  movq 8+watched_" #name                  \
        "(%rip), %rdi\n"                             \
        "    and $-16, %rsp\n"                       \
        "    call TellForbidden\n"                   \
        "2:  lea watched_" #name                     \
        "(%rip), %r11\n"                             \
        "    jmp resolveThenJump\n"                  \
        ".size " #name ", . - " #name                \
        "\n"                                         \
        ".popsection\n"                              \
        ".pushsection watched_functions, \"aw\"\n"   \
        ".balign 8\n"                                \
        "watched_" #name                             \
        ": .quad 0, 3f\n"                            \
        ".popsection\n"                              \
        ".pushsection .rodata\n"                     \
        "3:  .string \"" #name                       \
        "\"\n"                                       \
        ".popsection\n");

// Memory
FORBID(mmap)
FORBID(mmap64)
FORBID(munmap)
FORBID(mremap)
FORBID(madvise)
FORBID(mprotect)
FORBID(sbrk)
// Files
FORBID(open)
FORBID(open64)
FORBID(openat)
FORBID(openat64)
FORBID(creat)
FORBID(read)
FORBID(write)
FORBID(readv)
FORBID(writev)
FORBID(pread)
FORBID(pwrite)
FORBID(close)
FORBID(lseek)
FORBID(lseek64)
FORBID(stat)
FORBID(stat64)
FORBID(fstat)
FORBID(fstat64)
FORBID(lstat)
FORBID(access)
FORBID(unlink)
FORBID(rename)
FORBID(ftruncate)
FORBID(fsync)
FORBID(ioctl)
FORBID(fcntl)
FORBID(fcntl64)
FORBID(pipe)
FORBID(pipe2)
FORBID(opendir)
FORBID(readdir)
// Sockets, and waiting on any of these
FORBID(socket)
FORBID(connect)
FORBID(send)
FORBID(sendto)
FORBID(sendmsg)
FORBID(recv)
FORBID(recvfrom)
FORBID(recvmsg)
FORBID(poll)
FORBID(__poll_chk)
FORBID(ppoll)
FORBID(select)
FORBID(pselect)
FORBID(epoll_wait)
// Sleep and other threads
FORBID(nanosleep)
FORBID(clock_nanosleep)
FORBID(usleep)
FORBID(sleep)
FORBID(sched_yield)
FORBID(pthread_cond_wait)
FORBID(pthread_cond_timedwait)
FORBID(pthread_cond_clockwait)
FORBID(pthread_cond_signal)
FORBID(pthread_cond_broadcast)
FORBID(pthread_rwlock_rdlock)
FORBID(pthread_rwlock_wrlock)
FORBID(pthread_barrier_wait)
FORBID(pthread_create)
FORBID(pthread_join)
FORBID(pthread_once)
FORBID(sem_wait)
FORBID(sem_timedwait)
FORBID(sem_post)
FORBID(__cxa_guard_acquire)
// Other programs
FORBID(fork)
FORBID(vfork)
FORBID(posix_spawn)
FORBID(posix_spawnp)
FORBID(execve)
FORBID(waitpid)
FORBID(kill)
FORBID(sigaction)
FORBID(sigprocmask)
FORBID(pthread_sigmask)
// Libraries
FORBID(dlopen)
FORBID(dlsym)
FORBID(dlclose)
// Standard streams
FORBID(fopen)
FORBID(fopen64)
FORBID(fdopen)
FORBID(fclose)
FORBID(fflush)
FORBID(fread)
FORBID(fwrite)
FORBID(fputs)
FORBID(fputc)
FORBID(fgets)
FORBID(puts)
FORBID(putchar)
FORBID(printf)
FORBID(__printf_chk)
FORBID(fprintf)
FORBID(__fprintf_chk)
FORBID(vfprintf)
FORBID(__vfprintf_chk)
FORBID(snprintf)
FORBID(__snprintf_chk)
FORBID(vsnprintf)
FORBID(__vsnprintf_chk)
FORBID(sscanf)
FORBID(strtod)
FORBID(strtod_l)
FORBID(syslog)
// Locale and environment
FORBID(setlocale)
FORBID(newlocale)
FORBID(__newlocale)
FORBID(uselocale)
FORBID(__uselocale)
FORBID(getenv)
FORBID(setenv)
// Anything at all
FORBID(syscall)
FORBID(__cxa_throw)
FORBID(__cxa_rethrow)
FORBID(abort)

namespace {

std::int64_t ThreadNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

// --- locks ---

struct Range {
    std::uintptr_t begin = 0, end = 0;
};
std::array<Range, 4> allowed;
std::size_t allowedCount = 0;

bool IsAllowed(const pthread_mutex_t* mutex) {
    const auto address = reinterpret_cast<std::uintptr_t>(mutex);
    for (std::size_t i = 0; i < allowedCount; ++i)
        if (address >= allowed[i].begin && address < allowed[i].end) return true;
    return false;
}

struct Holds {
    bool measured = false;
    int depth = 0;
    std::int64_t since = 0;
    LockHolds::Figures figures;
};
thread_local Holds holds;

template <typename Function>
Function* Real(Function*& real, const char* name) {
    if (real == nullptr) real = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
    return real;
}
using MutexCall = int(pthread_mutex_t*);
MutexCall* realLock = nullptr;
MutexCall* realTryLock = nullptr;
MutexCall* realUnlock = nullptr;

void Taken(const pthread_mutex_t* mutex) {
    if (holds.measured && IsAllowed(mutex) && holds.depth++ == 0) holds.since = ThreadNanoseconds();
}

// --- allocations ---

thread_local std::uint64_t asked = 0;
thread_local std::uint64_t failsAt = 0;  // by `asked`; 0: none
thread_local bool failsOn = false;       // and all that follow
thread_local bool hasFailed = false;
std::atomic<std::int64_t> live{0};

// One request more; false if it is to fail.
bool Grant(const char* name) {
    if (insideProcessCall != 0) Tell(name);
    ++asked;
    if (failsAt == 0 || asked < failsAt || (asked > failsAt && !failsOn)) return true;
    hasFailed = true;
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
    if (insideProcessCall != 0 && !IsAllowed(mutex)) Tell("pthread_mutex_lock");
    const int result = Real(realLock, "pthread_mutex_lock")(mutex);
    if (result == 0) Taken(mutex);
    return result;
}
int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept {
    if (insideProcessCall != 0 && !IsAllowed(mutex)) Tell("pthread_mutex_trylock");
    const int result = Real(realTryLock, "pthread_mutex_trylock")(mutex);
    if (result == 0) Taken(mutex);
    return result;
}
int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
    if (holds.measured && IsAllowed(mutex) && --holds.depth == 0) {
        const double held = static_cast<double>(ThreadNanoseconds() - holds.since) * 1e-3;
        ++holds.figures.count;
        if (held > 50) ++holds.figures.beyond;
        if (held > holds.figures.longest) holds.figures.longest = held;
    }
    return Real(realUnlock, "pthread_mutex_unlock")(mutex);
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
void* reallocarray(void* block, std::size_t count, std::size_t size) noexcept {
    std::size_t bytes = 0;
    if (!__builtin_mul_overflow(count, size, &bytes)) return realloc(block, bytes);
    errno = ENOMEM;
    return nullptr;
}
void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return Grant("memalign") ? Counted(__libc_memalign(alignment, size)) : nullptr;
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return Grant("aligned_alloc") ? Counted(__libc_memalign(alignment, size)) : nullptr;
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    void* const given = Grant("posix_memalign") ? Counted(__libc_memalign(alignment, size)) : nullptr;
    if (given == nullptr) return ENOMEM;
    *block = given;
    return 0;
}
void free(void* block) noexcept {
    if (insideProcessCall != 0) Tell("free");
    if (block == nullptr) return;
    live.fetch_sub(1, std::memory_order_relaxed);
    __libc_free(block);
}
}

// Looked up at the begin of the program, since a lookup leaves its traces in the loader's memory. What a
// library lacks is looked up when it is called, which does not happen.
extern "C" Watched __start_watched_functions[];  // made by the linker
extern "C" Watched __stop_watched_functions[];

namespace {

const bool lookedUp = [] {
    for (Watched* each = __start_watched_functions; each != __stop_watched_functions; ++each)
        if (std::strcmp(each->name, "dlsym") != 0) each->real = dlsym(RTLD_NEXT, each->name);
    dlerror();
    Real(realLock, "pthread_mutex_lock");
    Real(realTryLock, "pthread_mutex_trylock");
    Real(realUnlock, "pthread_mutex_unlock");
    return true;
}();

}  // namespace

// --- what the rows see ---

InsideCall::InsideCall() {
    insideProcessCall = 1;
}
InsideCall::~InsideCall() {
    insideProcessCall = 0;
}

void InsideCall::AllowLocksIn(const void* object, std::size_t bytes) {
    if (allowedCount == allowed.size()) std::abort();
    const auto begin = reinterpret_cast<std::uintptr_t>(object);
    allowed[allowedCount++] = {begin, begin + bytes};
}

bool InsideCall::WatchSystemCalls() {
    struct sigaction action {};
    action.sa_flags = SA_SIGINFO;
    action.sa_sigaction = [](int, siginfo_t* what, void*) {
        insideProcessCall = 0;
        char name[40];
        std::snprintf(name, sizeof name, "system call %d", what->si_syscall);
        Tell(name);
    };
    sigaction(SIGSYS, &action, nullptr);
    constexpr int dispatch = 59, on = 1;  // PR_SET_SYSCALL_USER_DISPATCH; older headers do not name it
    return prctl(dispatch, on, 0UL, 0UL, &insideProcessCall) == 0;
}

void LockHolds::Measure() {
    holds = {};
    holds.measured = true;
}
LockHolds::Figures LockHolds::Measured() {
    return holds.figures;
}
LockHolds::Pause::Pause() : since(holds.depth > 0 ? ThreadNanoseconds() : 0) {}
LockHolds::Pause::~Pause() {
    if (holds.depth > 0 && since != 0) holds.since += ThreadNanoseconds() - since;
}

std::uint64_t Allocations::Asked() {
    return asked;
}
std::int64_t Allocations::Live() {
    return live.load(std::memory_order_relaxed);
}
void Allocations::Fail(std::uint64_t n, bool andAllThatFollow) {
    failsAt = asked + n;
    failsOn = andAllThatFollow;
    hasFailed = false;
}
bool Allocations::Failed() {
    return hasFailed;
}
void Allocations::Succeed() {
    failsAt = 0;
}

#endif
