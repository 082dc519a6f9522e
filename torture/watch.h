#pragma once
#include <cstddef>
#include <cstdint>

// Watches what threads ask of the system and the allocator. The functions in question are defined in this
// program, so that all of its libraries bind to them; in a build with a sanitizer, which has such functions
// of its own, and on other processors nothing is watched.
//
// Threads: each thread counts and is forbidden things for itself; what concerns all threads says so.

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ORVA_WATCHES 1
#else
#define ORVA_WATCHES 0
#endif

// While it exists, the calling thread is inside a process call: whatever may wait, allocate or leave for the
// system is told to `told`, by its name, instead of being done.
class InsideCall {
public:
    InsideCall();
    ~InsideCall();
    InsideCall(const InsideCall&) = delete;
    InsideCall& operator=(const InsideCall&) = delete;

    // Must not return. For all threads; set before the first InsideCall.
    static void (*told)(const char* name);
    // Mutexes in these bytes may be taken inside; four ranges at most. For all threads.
    static void AllowLocksIn(const void* object, std::size_t bytes);
    // From now on the kernel itself tells of each system call made inside by the calling thread, whoever
    // makes it. False where it cannot. Not for a thread that may wait for an allowed lock.
    static bool WatchSystemCalls();
};

// How long locks in the allowed ranges are held: processor time of the holding thread, without the time in
// which a Pause existed.
class LockHolds {
public:
    static void Measure();  // on the calling thread; forgets what was measured before
    struct Figures {
        double longest = 0;        // us
        std::uint64_t count = 0;   // holds
        std::uint64_t beyond = 0;  // of these, longer than 50 us
    };
    static Figures Measured();  // on the calling thread
    class Pause {               // a call out to the host or a device
    public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        std::int64_t since;
    };
};

// Allocations of the calling thread, by `new` and by `malloc` and its kin.
class Allocations {
public:
    static std::uint64_t Asked();  // so many, since the thread began
    static std::int64_t Live();    // blocks of all threads that are not given back; a difference tells
    // The n-th from now on fails, n from 1: `new` throws, `malloc` gives null. And all that follow, if so
    // wished, until Succeed.
    static void Fail(std::uint64_t n, bool andAllThatFollow);
    static bool Failed();  // since Fail
    static void Succeed();
};
