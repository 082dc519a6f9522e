#include "base/priority_lock.h"

PriorityLock::PriorityLock() = default;
PriorityLock::~PriorityLock() = default;
void PriorityLock::lock() {
    mutex.lock();
}
void PriorityLock::unlock() {
    mutex.unlock();
}
bool PriorityLock::try_lock() {
    return mutex.try_lock();
}
bool PriorityLock::try_lock_for(std::chrono::milliseconds timeout) {
    return mutex.try_lock_for(timeout);
}
