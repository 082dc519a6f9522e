#pragma once
#include <pthread.h>

#include <chrono>

// A recursive lock that lends the waiter's priority to its holder, so that a thread of low priority which
// holds it cannot be kept from running while the audio thread waits. Works with std::lock_guard.
//
// Threads: [any]. Errors: none; where a system offers no priority inheritance it is a plain recursive lock.
class PriorityLock {
public:
    PriorityLock();
    ~PriorityLock();
    PriorityLock(const PriorityLock&) = delete;
    PriorityLock& operator=(const PriorityLock&) = delete;

    void lock();
    void unlock();
    bool try_lock();
    bool try_lock_for(std::chrono::milliseconds patience);  // by the system's clock

private:
    pthread_mutex_t mutex;
};
