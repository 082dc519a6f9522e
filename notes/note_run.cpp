#include "notes/note_run.h"

#include <limits>
#include <new>

#include "notes/note.h"

namespace {

constexpr std::size_t slotSize = NoteRun::originSize + sizeof(TNote);
static_assert(alignof(TNote) <= alignof(NoteRun*) && sizeof(TNote) % alignof(NoteRun*) == 0);
static_assert(alignof(NoteRun) == alignof(NoteRun*));

std::size_t RunSize(std::size_t capacity) {
    return sizeof(NoteRun) + capacity * slotSize;
}

}  // namespace

NoteRun* NoteRun::Make(std::pmr::memory_resource* memory, std::size_t capacity) {
    if (capacity > (std::numeric_limits<std::size_t>::max() - sizeof(NoteRun)) / slotSize)
        throw std::bad_alloc();
    return new (memory->allocate(RunSize(capacity), alignof(NoteRun))) NoteRun(memory, capacity);
}

void NoteRun::Drop() {
    if (--holds > 0) return;
    std::pmr::memory_resource* const source = memory;
    const std::size_t size = RunSize(capacity);
    this->~NoteRun();
    source->deallocate(this, size, alignof(NoteRun));
}

void* NoteRun::TakeSlot() {
    void* const note = Slots() + used * slotSize + originSize;
    Origin(note) = this;
    ++used;
    ++holds;
    return note;
}

bool NoteRun::Reuse() {
    if (holds > 1) return false;
    used = 0;
    return true;
}
