#pragma once
#include <cstddef>
#include <cstdint>

// Watches what a thread asks of the system and the allocator. The functions in question are defined by the
// program that links this, so that all of its libraries bind to them; under a sanitizer, which has such
// functions of its own, and on other processors nothing is watched, and counts are 0.
#if defined(__linux__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define ORVA_WATCHES 1
#else
#define ORVA_WATCHES 0
#endif

// What a thread does between Mark(true) and Mark(false), which is what Host::inProcess calls.
class Inside {
public:
    static void Mark(bool in);
    // Called by name in the place of whatever allocates, locks, signals, throws or leaves for the system, and
    // must not return. For all threads; set before the first Mark.
    static void (*report)(const char* name);
    // Mutexes in these bytes may be locked inside; four ranges at most. For all threads.
    static void AllowLocksIn(const void* object, std::size_t bytes);
    // From now on the kernel reports each system call that the calling thread makes inside. False where it
    // cannot. Not for a thread that may wait for an allowed lock.
    static bool WatchSystemCalls();
};

// Allocations of the calling thread, by `new` and by `malloc` and its kin.
class Allocations {
public:
    static std::uint64_t Requested();  // since the thread began
    static std::int64_t Live();        // blocks of all threads that are not given back
    // The n-th from now on fails, n from 1: `new` throws, `malloc` returns null. With `andAllThatFollow` the
    // later ones, too, until Succeed.
    static void Fail(std::uint64_t n, bool andAllThatFollow);
    static void Succeed();
};
