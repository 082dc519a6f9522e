#pragma once
#include <cstdint>
#include <memory_resource>
#include <utility>
#include <vector>

#include "notes/note.h"

// An index of notes over a time line that is cut at each note's begin and end. Each cut knows what sounds
// from there on, so that asking what sounds at a tick is one binary search and the copy of a ready list.
//
// Never owns its notes. Threads: none of its own; the map belongs to the thread that owns the score.
// Invariants after each public operation, for this map's element m = mapIndex:
// - `points` holds both boundaries of each note, and notes[note->listIndex[m]] is the note;
// - point->sounding[m] is sorted by address and holds exactly the notes that sound from that point to the
//   next: a note is in the lists from its startPoint up to, but not including, its endPoint.
// Errors: std::bad_alloc or std::length_error from the lists. An insert that fails is taken back whole; a
// move that fails has moved the boundary, but lists may miss the note: such a score is to be discarded.
class TNoteMap {
public:
    using TPointList = std::pmr::vector<TNoteBoundary*>;

    explicit TNoteMap(std::uint32_t index = 0, std::pmr::memory_resource* memory = NoteMemory())
        : notes(memory), points(memory), mapIndex(index) {}
    virtual ~TNoteMap() = default;
    TNoteMap(const TNoteMap&) = delete;
    TNoteMap& operator=(const TNoteMap&) = delete;

    void Insert(TNote* note);
    void Remove(TNote* note);  // the note must be in the map; it stays alive

    // Change a boundary's time, in the direction that the name says, and repair the map. A start must stay
    // before its note's end at each moment.
    void MoveStartLater(TNoteBoundary* boundary, std::uint32_t time);
    void MoveStartEarlier(TNoteBoundary* boundary, std::uint32_t time);
    void MoveEndLater(TNoteBoundary* boundary, std::uint32_t time);
    void MoveEndEarlier(TNoteBoundary* boundary, std::uint32_t time);

    void NotesAt(TNoteList& result, std::uint32_t time) const;        // replaces `result`
    void AppendNotesAt(TNoteList& result, std::uint32_t time) const;  // sorted by address
    // What sounds at the earlier of the two times, then what begins after it and no later than the other.
    void AppendNotesInRange(TNoteList& result, std::uint32_t from, std::uint32_t to) const;

    TNoteBoundary* PointAt(std::uint32_t time) const;       // the last one at or before `time`, or null
    std::int32_t LastNoteBefore(std::uint32_t time) const;  // last index with begin <= `time`, or -1
    std::uint32_t LastTime() const;                         // of the last point, or 0

    void Clear();  // empties both vectors, deletes nothing

    TNoteList notes;         // sorted by TSimpleNote::CompareByBegin
    TPointList points;       // two for each note, sorted by CompareBoundary
    std::uint32_t mapIndex;  // 0 in the map of all notes, 1 in a pitch's map; fixed after construction

private:
    TNoteList& Sounding(std::size_t point) const { return points[point]->sounding[mapIndex]; }
    void TakeOverPrevious(std::size_t point, std::size_t more);
    std::size_t IndexOf(TNoteBoundary* boundary) const;
    std::pair<std::size_t, std::size_t> Move(TNoteBoundary* boundary, std::uint32_t time, std::size_t more);
    void MoveNote(TNote* note);
    void Renumber(std::size_t from, std::size_t end);
    void TakeBack(TNote* note);
};
