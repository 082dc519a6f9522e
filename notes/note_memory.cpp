#include "notes/note_memory.h"

#include <algorithm>
#include <new>

#include "base/lasting.h"

namespace {

thread_local MemoryBudget* currentBudget = nullptr;

class FreeStore : public std::pmr::memory_resource {
    void* do_allocate(std::size_t bytes, std::size_t alignment) override {
        MemoryBudget::Charge(MemoryBudget::BlockSize(bytes));
        return std::pmr::new_delete_resource()->allocate(bytes, alignment);
    }
    void do_deallocate(void* block, std::size_t bytes, std::size_t alignment) override {
        std::pmr::new_delete_resource()->deallocate(block, bytes, alignment);
        MemoryBudget::Release(MemoryBudget::BlockSize(bytes));
    }
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
        return this == &other;
    }
};

constinit Lasting<FreeStore> store;

}  // namespace

std::pmr::memory_resource* NoteMemory() {
    return &store.value;
}

MemoryBudget::MemoryBudget(std::size_t bytes) : limit(bytes), outer(currentBudget) {
    currentBudget = this;
}

MemoryBudget::~MemoryBudget() {
    currentBudget = outer;
}

std::size_t MemoryBudget::BlockSize(std::size_t bytes) {
    return std::max<std::size_t>(32, (bytes + 8 + 15) / 16 * 16);
}

void MemoryBudget::Charge(std::size_t bytes) {
    for (MemoryBudget* budget = currentBudget; budget != nullptr; budget = budget->outer)
        if (bytes > budget->limit - budget->used) throw std::bad_alloc();
    for (MemoryBudget* budget = currentBudget; budget != nullptr; budget = budget->outer) {
        budget->used += bytes;
        budget->highest = std::max(budget->highest, budget->used);
    }
}

void MemoryBudget::Release(std::size_t bytes) noexcept {
    for (MemoryBudget* budget = currentBudget; budget != nullptr; budget = budget->outer)
        budget->used -= std::min(budget->used, bytes);
}
