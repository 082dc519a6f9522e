#pragma once
#include <atomic>

// A word that two threads share and that reads and writes like a plain one. Each access stands for itself:
// no order among several words is promised, which is what a setting or a display needs and no more.
//
// Threads: [any]. Cost: that of a plain load or store.
template <typename T>
class Relaxed {
public:
    constexpr Relaxed(T initial = T{}) : word(initial) {}  // implicit: it stands where a T would
    Relaxed(const Relaxed& other) : word(other.load()) {}
    Relaxed& operator=(const Relaxed& other) {
        word.store(other.load(), std::memory_order_relaxed);
        return *this;
    }
    Relaxed& operator=(T value) {
        word.store(value, std::memory_order_relaxed);
        return *this;
    }
    operator T() const { return load(); }  // implicit, for the same reason
    T load() const { return word.load(std::memory_order_relaxed); }
    T operator->() const { return load(); }  // for words that are pointers

private:
    std::atomic<T> word;
    static_assert(std::atomic<T>::is_always_lock_free);
};
