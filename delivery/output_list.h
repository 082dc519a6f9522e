#pragma once
#include <array>
#include <atomic>
#include <cstddef>

#include "base/priority_lock.h"
#include "base/scoped.h"

class TNoteOut;

// The attached outputs, in order of attachment. One thread may walk the list while another changes it, and
// an output may add or remove one (itself included) in the middle of a walk: a walk sees each output that
// was there throughout exactly once, and none after its removal. No walk ever waits.
//
// A removed output may still be in the hands of a walk that reached it before: it must live until Quiet() has
// been true once after its removal.
//
// Threads: [any]. Lock: a leaf lock of its own around what changes the list. Memory: a fixed row of slots.
class OutputList {
public:
    static constexpr std::size_t capacity = 16;  // the plug-in attaches four

    OutputList() = default;
    OutputList(const OutputList&) = delete;
    OutputList& operator=(const OutputList&) = delete;

    void Append(TNoteOut* output);        // std::length_error where all slots are taken
    void Remove(const TNoteOut* output);  // its first entry; nothing if there is none
    bool Contains(const TNoteOut* output) const;

    template <typename Visit>
    void ForEach(Visit visit) const {
        const ScopedCount walk(walks);
        for (const std::atomic<TNoteOut*>& slot : slots)
            if (TNoteOut* const output = slot.load()) visit(*output);
    }
    // No walk is under way. False on a thread that is inside one itself.
    bool Quiet() const { return walks.load() == 0; }

private:
    PriorityLock changing;
    // All accesses keep one total order: a walk that starts after Quiet() was true cannot reach an output
    // that was removed before it.
    std::array<std::atomic<TNoteOut*>, capacity> slots{};
    mutable std::atomic<int> walks{0};
};
