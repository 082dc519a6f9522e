#include "notes/note_memory.h"

#include <algorithm>
#include <new>

#include "base/lasting.h"

namespace {

thread_local MemoryBudget* currentBudget = nullptr;

constexpr bool IsPlain(std::size_t alignment) {
    return alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__;
}

class FreeStore : public std::pmr::memory_resource {
    void* do_allocate(std::size_t bytes, std::size_t alignment) override {
        MemoryBudget::Charge(MemoryBudget::BlockSize(bytes));
        try {  // an alignment that any block has is not asked for, which would take a slower path
            return IsPlain(alignment) ? ::operator new(bytes)
                                      : ::operator new (bytes, std::align_val_t{alignment});
        } catch (...) {
            MemoryBudget::Release(MemoryBudget::BlockSize(bytes));
            throw;
        }
    }
    void do_deallocate(void* block, std::size_t bytes, std::size_t alignment) override {
        if (IsPlain(alignment))
            ::operator delete(block);
        else
            ::operator delete (block, std::align_val_t{alignment});
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
