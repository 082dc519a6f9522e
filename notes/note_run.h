#pragma once
#include <cstddef>
#include <cstdint>
#include <memory_resource>

// Room for a number of notes side by side. Notes that begin together are ordered by address, so notes made
// one after the other in one run keep the order in which they were made, and scores come out the same each
// time. Filling a score also costs one allocation a run rather than one a note.
//
// The run lives as long as the collection holds it or one of its notes lives, wherever that has moved to.
// Threads: that of the score.
class NoteRun {
public:
    static NoteRun* Make(std::pmr::memory_resource* memory, std::size_t capacity);  // held once
    void Drop();  // ends one hold, the collection's or a note's; the last one ends the run

    std::size_t Capacity() const { return capacity; }
    std::size_t Left() const { return capacity - used; }
    void* TakeSlot();  // room for one TNote, which holds the run; there must be some left
    bool Reuse();      // if no note lives any more, all room is free again; else false

    // Each note, in a run or not, stands behind a word that says where its room came from.
    static constexpr std::size_t originSize = sizeof(void*);
    static NoteRun*& Origin(void* note) { return static_cast<NoteRun**>(note)[-1]; }

private:
    NoteRun(std::pmr::memory_resource* source, std::size_t size) : memory(source), capacity(size) {}
    std::byte* Slots() { return reinterpret_cast<std::byte*>(this + 1); }

    std::pmr::memory_resource* memory;  // fixed, not owned
    std::size_t capacity;               // notes, fixed
    std::size_t used = 0;               // slots given out
    std::size_t holds = 1;              // the collection, and each living note
};
