#include "base/priority_lock.h"

#include <ctime>

PriorityLock::PriorityLock() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    if (pthread_mutex_init(&mutex, &attributes) != 0) {
        pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_NONE);
        pthread_mutex_init(&mutex, &attributes);
    }
    pthread_mutexattr_destroy(&attributes);
}

PriorityLock::~PriorityLock() {
    pthread_mutex_destroy(&mutex);
}
void PriorityLock::lock() {
    pthread_mutex_lock(&mutex);
}
void PriorityLock::unlock() {
    pthread_mutex_unlock(&mutex);
}
bool PriorityLock::try_lock() {
    return pthread_mutex_trylock(&mutex) == 0;
}
bool PriorityLock::try_lock_for(std::chrono::milliseconds timeout) {
    if (try_lock()) return true;
    timespec until = {};
    clock_gettime(CLOCK_REALTIME, &until);  // the only clock by which such a lock can be awaited
    constexpr long second = 1'000'000'000;  // ns
    const auto wait = std::chrono::nanoseconds(timeout).count() + until.tv_nsec;
    until.tv_sec += wait / second;
    until.tv_nsec = wait % second;
    return pthread_mutex_timedlock(&mutex, &until) == 0;
}
