#pragma once
#include <chrono>

#include "base/thread_annotations.h"
#ifdef _WIN32  // which lends no priorities
#include <mutex>
using SystemLock = std::recursive_timed_mutex;
#else
#include <pthread.h>
using SystemLock = pthread_mutex_t;
#endif

// A recursive lock that lends the waiter's priority to its holder, so that a thread of low priority which
// holds it cannot be kept from running while the audio thread waits. Works with Locked.
//
// Threads: [any]. Errors: none; where a system offers no priority inheritance it is a plain recursive lock.
class CAPABILITY("mutex") PriorityLock {
public:
    PriorityLock();
    ~PriorityLock();
    PriorityLock(const PriorityLock&) = delete;
    PriorityLock& operator=(const PriorityLock&) = delete;

    void lock() ACQUIRE();
    void unlock() RELEASE_LOCK();
    bool try_lock() TRY_ACQUIRE(true);
    bool try_lock_for(std::chrono::milliseconds timeout) TRY_ACQUIRE(true);  // by the system's clock

private:
    SystemLock mutex;
};
