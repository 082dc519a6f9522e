#pragma once
#include <mutex>

#include "base/thread_annotations.h"

// The C++ library's mutex, whose use clang can check.
class CAPABILITY("mutex") Mutex {
public:
    void lock() ACQUIRE() { mutex.lock(); }
    void unlock() RELEASE_LOCK() { mutex.unlock(); }

private:
    std::mutex mutex;
};

// Holds a Mutex or a PriorityLock for the length of a scope.
template <typename Lock>
class SCOPED_CAPABILITY Locked {
public:
    explicit Locked(Lock& taken) ACQUIRE(taken) : lock(taken) { lock.lock(); }
    ~Locked() RELEASE_LOCK() { lock.unlock(); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    Lock& lock;
};
