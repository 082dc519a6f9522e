#pragma once
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <new>
#include <vector>

#include "notes/note_memory.h"

// The notes of a score, as one chain of classes: TNoteFlags, TSimpleNote (a plain value), TNote (the same
// value living inside a TNotes, where each change of time, pitch or layer re-files it).
//
// Units: times are ticks of 1/22050 s from the start of the score, whatever the audio's rate. A pitch is
// the MIDI note number minus 24, modulo 256 (A 440 is 45). A level is loudness, 0 at velocity 127 and
// negative below. Channels count from 1; 0 and those above 16 keep a note out of MIDI files.
// Threads: a note belongs to the thread that owns its score; nothing here locks.

class TNote;
class TNoteMap;
class TNotes;

using TNoteList = std::pmr::vector<TNote*>;  // never owns

// The level of a MIDI velocity: (velocity * 693 - 88026) / 30, cut towards zero. 127 gives 0, 100 gives -624.
constexpr std::int32_t VelocityToLevel(std::uint8_t velocity) {
    return (std::int32_t{velocity} * 693 - 88026) / 30;
}

// The bits of `flags`. A note goes into MIDI files only if nfIncluded is set and both exclusions are clear.
enum TNoteFlag : std::uint32_t {
    nfIncluded = 0x80000000U,
    nfAuxiliary = 0x40000000U,  // kept and stored; no decision reads it
    nfExcludedA = 0x10000000U,
    nfExcludedB = 0x08000000U,
};

class TNoteFlags {
public:
    TNoteFlags() = default;
    TNoteFlags(const TNoteFlags&) = default;
    TNoteFlags& operator=(const TNoteFlags&) = default;
    virtual ~TNoteFlags() = default;

    void SetFlag(TNoteFlag flag) { flags |= flag; }
    void ClearFlag(TNoteFlag flag) { flags &= ~std::uint32_t{flag}; }
    void AssignFlag(TNoteFlag flag, bool on) { on ? SetFlag(flag) : ClearFlag(flag); }
    bool HasFlag(TNoteFlag flag) const { return (flags & flag) != 0; }

    std::uint32_t tag = 0;  // a free word: copied between collections and written, but dropped on reading
    std::uint32_t flags = nfIncluded | nfAuxiliary;
};

class TSimpleNote : public TNoteFlags {
public:
    // The names without Get only forward; they are what a reader of notes usually calls.
    virtual std::uint32_t GetBegin() const;
    virtual std::uint32_t Begin() const;
    virtual std::uint32_t GetEnd() const;
    virtual std::uint32_t End() const;
    virtual std::uint32_t GetStart() const;
    virtual std::uint32_t Start() const;
    virtual std::uint32_t GetLength() const;
    virtual std::uint32_t Length() const;
    // On a plain value these store, with no test; MoveTo keeps the length.
    virtual void MoveTo(std::uint32_t time);
    virtual void SetBegin(std::uint32_t time);
    virtual void SetEnd(std::uint32_t time);
    virtual void SetPitch(std::uint8_t newPitch);
    virtual void SetLayer(std::uint8_t newLayer);

    // Stores the seven fields, with no test.
    void Init(std::uint32_t newBegin, std::uint32_t newEnd, std::uint8_t newPitch, std::int32_t newLevel,
              std::uint8_t newProgram, std::uint8_t newLayer, std::uint8_t newChannel);
    // Takes over everything but `tag`, through the virtual setters, so that a TNote is re-filed.
    void Assign(const TSimpleNote& other);
    // Compares everything but `tag`.
    bool Equals(const TSimpleNote& other) const;

    // By begin, then by address: negative, zero or positive, zero only for one and the same note.
    static int CompareByBegin(const TSimpleNote* a, const TSimpleNote* b);

    std::uint8_t pitch = 0;
    std::int32_t level = 0;
    std::uint8_t program = 0;  // MIDI program, 0 to 127, at the note's begin
    std::uint8_t layer = 0;    // index into the owner's layer table
    std::uint8_t channel = 0;
    std::uint32_t begin = 0;  // a TNote neither reads nor writes these two
    std::uint32_t end = 0;
};

// A note's begin or end as a point on the time line. The collection keeps `sounding`; element 0 belongs to
// its map of all notes, element 1 to the map of the note's pitch: what sounds from here to the next point.
struct TNoteBoundary {
    TNoteBoundary(std::uint8_t pointKind, std::pmr::memory_resource* memory)
        : kind(pointKind), sounding{TNoteList(memory), TNoteList(memory)} {}

    std::uint8_t kind;  // 1 for a start, 0 for an end
    TNote* note = nullptr;
    std::uint32_t time = 0;  // ticks
    TNoteList sounding[2];
};

// By time, then ends before starts, then by address: negative, zero or positive. At one tick an end stands
// before a start, so that a note which ends where another begins does not sound together with it.
int CompareBoundary(const TNoteBoundary* a, const TNoteBoundary* b);

// A note in a collection. Made by TNotes::AddNote as a rule, and deleted by the collection; whoever takes a
// note out with ExtractNote and files it nowhere else deletes it. Outside a collection the setters only
// store. Invariant in a collection: begin < end. At the last tick, 2^32 - 1, an end that would lie past it is
// drawn back to it, and the begin before it.
class TNote : public TSimpleNote {
public:
    // `memory` serves the lists of both boundaries and must outlive the note.
    explicit TNote(std::pmr::memory_resource* memory = NoteMemory());
    ~TNote() override = default;
    TNote(const TNote&) = delete;
    TNote& operator=(const TNote&) = delete;

    std::uint32_t GetBegin() const override;
    std::uint32_t GetEnd() const override;
    std::uint32_t GetStart() const override;
    std::uint32_t Start() const override;
    std::uint32_t GetLength() const override;
    void MoveTo(std::uint32_t time) override;       // keeps the length
    void SetBegin(std::uint32_t time) override;     // at or past the end: one tick before it
    void SetEnd(std::uint32_t time) override;       // at or before the begin: one tick after it
    void SetPitch(std::uint8_t newPitch) override;  // moves between the owner's pitch maps
    void SetLayer(std::uint8_t newLayer) override;  // moves its count in the owner's layer table

    // `delete` is right for every note, whether made by `new` or in a collection's run.
    static void operator delete(TNote* note, std::destroying_delete_t);

    TNotes* owner = nullptr;
    TNoteBoundary startPoint;
    TNoteBoundary endPoint;
    std::int32_t listIndex[2] = {};  // place in `notes` of the map of all notes, and of the pitch's map
    std::shared_ptr<void> run;       // the collection's memory in which it stands; null after a plain `new`

private:
    using MoveInMap = void (TNoteMap::*)(TNoteBoundary* boundary, std::uint32_t time);
    void Move(TNoteBoundary& point, std::uint32_t time, MoveInMap later, MoveInMap earlier);
    void MoveBegin(std::uint32_t time);
    void MoveEnd(std::uint32_t time);
};
