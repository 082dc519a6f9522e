#pragma once
#include <atomic>

#include "base/priority_lock.h"

class TNoteOut;

// The attached outputs, in order of attachment. One thread may walk the list while another changes it, and
// an output may add or remove one (itself included) in the middle of a walk: a walk sees each output that
// was there throughout exactly once, and none after its removal. No walk ever waits.
//
// A removed output may still be in the hands of a walk that reached it before: it must live until Quiet() has
// been true once after its removal.
//
// Threads: [any]. Lock: a leaf lock of its own around what changes the list.
// Memory: Append allocates; entries removed under a walk are freed by a later change.
class OutputList {
public:
    OutputList() = default;
    ~OutputList();
    OutputList(const OutputList&) = delete;
    OutputList& operator=(const OutputList&) = delete;

    void Append(TNoteOut* output);
    void Remove(const TNoteOut* output);  // its first entry; nothing if there is none
    bool Contains(const TNoteOut* output) const;

    template <typename Visit>
    void ForEach(Visit visit) const {
        const Walk walk(*this);
        for (const Entry* entry = first.load(); entry != nullptr; entry = entry->next.load())
            if (TNoteOut* const output = entry->output.load()) visit(*output);
    }
    // No walk is under way. False on a thread that is inside one itself.
    bool Quiet() const { return walks.load() == 0; }

private:
    struct Entry {
        std::atomic<TNoteOut*> output;      // null once removed
        std::atomic<Entry*> next{nullptr};  // stays after removal, so that a walk standing here goes on
        Entry* retired = nullptr;           // next in the chain of removed entries
    };
    struct Walk {
        explicit Walk(const OutputList& walked) : list(walked) { list.walks.fetch_add(1); }
        ~Walk() { list.walks.fetch_sub(1); }
        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;
        const OutputList& list;
    };
    void FreeRetired();

    PriorityLock changing;

    // All accesses keep one total order: a walk that starts after Quiet() was true cannot meet an entry that
    // was unlinked before it.
    std::atomic<Entry*> first{nullptr};
    Entry* retired = nullptr;  // under `changing`: removed entries that a walk may still stand on
    mutable std::atomic<int> walks{0};
};
