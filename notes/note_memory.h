#pragma once
#include <cstddef>
#include <memory_resource>

// Where scores take their memory from, and a limit that a reader of foreign files can put on it.

// The usual source: the free store, with every byte shown to the calling thread's MemoryBudget, if it has
// one. It lives as long as the process, so notes may move between collections that use it. Threads: [any].
std::pmr::memory_resource* NoteMemory();

// While one exists, what the calling thread takes from NoteMemory() counts against `limit` bytes, and the
// request that would pass it fails with std::bad_alloc before anything is taken. Budgets nest: an inner one
// is charged to the outer ones too. What was taken earlier and is given back meanwhile counts as nothing.
//
// Threads: [any]; a budget belongs to the thread that made it and lives on its stack.
class MemoryBudget {
public:
    explicit MemoryBudget(std::size_t limit);
    ~MemoryBudget();
    MemoryBudget(const MemoryBudget&) = delete;
    MemoryBudget& operator=(const MemoryBudget&) = delete;

    std::size_t Highest() const { return highest; }  // most bytes held at once so far

    // For memory from elsewhere that belongs to the same work, a string's say. Without a budget, nothing.
    static void Charge(std::size_t bytes);
    static void Release(std::size_t bytes) noexcept;
    // What the C library takes for a block: 8 bytes of its own, in steps of 16, and never less than 32.
    static std::size_t BlockSize(std::size_t bytes);

private:
    std::size_t limit;  // bytes
    std::size_t used = 0;
    std::size_t highest = 0;
    MemoryBudget* outer;  // the budget that this one interrupts, or null
};
