#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <string>
#include <utility>
#include <vector>

#include "notes/bar_map.h"
#include "notes/note.h"
#include "notes/note_map.h"
#include "notes/serial.h"

struct TLayerRecord {
    std::string name;
    std::uint32_t useCount = 0;  // notes that name this layer
};

// The 256 pitch maps of a score, in place.
class TPitchMaps {
public:
    static constexpr std::size_t count = 256;

    explicit TPitchMaps(std::pmr::memory_resource* memory);
    ~TPitchMaps();
    TPitchMaps(const TPitchMaps&) = delete;
    TPitchMaps& operator=(const TPitchMaps&) = delete;

    TNoteMap& operator[](std::uint8_t pitch) { return maps[pitch]; }
    const TNoteMap& operator[](std::uint8_t pitch) const { return maps[pitch]; }
    TNoteMap* begin() { return maps; }
    TNoteMap* end() { return maps + count; }

private:
    union {  // so that the maps are made in a loop, each with its index and its memory
        TNoteMap maps[count];
    };
};

// A score: the notes of a take, filed in order of time, by what sounds when, and by pitch, with a title, a
// tempo, a meter, a key, a bar map and a table of layers. As a TNoteMap it is the map of all notes.
//
// Owns its notes. Threads: one at a time, no lock.
// Memory: all of it but the texts comes from the resource given at construction, which must outlive the
// score. An empty one allocates nothing and costs about a microsecond; the object itself takes some 21 KB, so
// it belongs on the heap or in a prepared area rather than on a small stack.
// Errors: std::bad_alloc or std::length_error; a failed AddNote leaves the score as it was.
class TNotes : public TNoteMap, public TSerial {
public:
    explicit TNotes(std::pmr::memory_resource* memory = NoteMemory());
    ~TNotes() override { TNotes::Clear(); }

    // Notes. An `end` that is not after `begin` becomes begin + 1 (at the last tick, 2^32 - 1, the begin
    // gives way instead). Filling in order of begin is what is cheap: everything happens near the end.
    TNote* AddNote(std::uint32_t begin, std::uint32_t end, std::uint8_t pitch, std::int32_t level,
                   std::uint8_t program, std::uint8_t layer, std::uint8_t channel);
    // Initialises a note that exists and files it, without the check on `end`: the caller sees to begin <
    // end. The note now belongs to this score, unless memory ran out.
    void InsertNote(TNote* note, std::uint32_t begin, std::uint32_t end, std::uint8_t pitch,
                    std::int32_t level, std::uint8_t program, std::uint8_t layer, std::uint8_t channel);
    TNote* AddCopy(const TSimpleNote& note);  // with tag and flags
    void AddCopies(const TNotes& other);      // of each note, in the order of other.notes
    void CopyNotes(const TNotes& other);      // Clear, then AddCopies
    void Assign(const TNotes& other);         // CopyNotes, then everything else that `other` holds
    // Takes a note out; the caller now owns it.
    void ExtractNote(TNote* note);
    // The same object leaves its owner for `target`, which must take its memory from the same resource. If
    // memory runs out, it belongs to the caller.
    static void TransferNote(TNote* note, TNotes& target);
    // Deletes all notes. Title, tempo, meter, key, bars and layers (with their counts) stay as they are.
    void Clear();
    // Memory for `count` notes more at ascending addresses, so that notes of one begin keep the order in
    // which they are added.
    void ReserveNotes(std::size_t count);

    // AppendNotesInRange of each pitch from the lower of the two to the higher, both included.
    void AppendNotesInPitchRange(TNoteList& result, std::uint8_t pitchA, std::uint8_t pitchB,
                                 std::uint32_t from, std::uint32_t to) const;

    // Layers.
    void TakeLayer(std::uint8_t layer);     // counts one note more, growing the table as needed
    void ReleaseLayer(std::uint8_t layer);  // one less; at zero, unused nameless records at the end go
    void ResizeLayers(std::size_t count);   // grows the table, never shrinks it

    // Bars. Times and distances are ticks; sums and products are 64 bits wide, and no bar is placed past
    // the last tick, 2^32 - 1.
    // Empties the map, then bars 0, 1, 2, ... at multiples of `spacing`, the last one numbered
    // end / spacing + 1. A spacing of 0 adds none.
    void FillBars(std::uint32_t end, std::uint32_t spacing, std::uint32_t beats);
    // Nothing if a bar stands there. The only bar is number 1, a first bar takes its successor's number, any
    // other its predecessor's plus one; those after it are numbered on from there.
    void AddBar(std::uint32_t time, std::uint32_t beats);
    void RemoveBar(std::uint32_t time);  // later bars go down by one; nothing if no bar stands there
    // At one time: takes over the beats. Else: RemoveBar of the old one, AddBar of the new one.
    void ReplaceBar(TBars::value_type old, TBars::value_type replacement);
    void MoveBar(std::uint32_t time, std::uint32_t newTime);
    void MergeCloseBars();  // removes each bar that stands less than closestBars after the one before it
    // On a map that is not empty: a bar at 0, one at `lastTime`, then, from the second bar on, closer ones
    // removed and gaps wider than widestBars filled at BarSpacing(numerator, shift, bpm).
    void NormalizeBars(std::uint32_t numerator, std::uint32_t shift, std::uint32_t bpm,
                       std::uint32_t lastTime);
    // From the first bar after `from` to the first one after `to`, half open; empty if from > to.
    std::pair<TBars::const_iterator, TBars::const_iterator> BarsInRange(std::uint32_t from,
                                                                        std::uint32_t to) const;

    // The stored form (docs/score_format.md). Read takes at most readerBudget bytes from NoteMemory(), then
    // std::bad_alloc; it believes no count, and time and memory stay in proportion to the file where notes
    // do not overlap. A score that has a resource of its own is bounded by that resource instead.
    // std::runtime_error says "Can't read byte from stream.", "Unknown data format signature", "Invalid data
    // format" or "Cannot read file: newer or incompatible file format.".
    static constexpr std::size_t readerBudget = std::size_t{256} << 20;  // bytes
    void Read(TBaseStream& stream) override;
    void Write(TBaseStream& stream) const override;

    std::string title;
    double tempo = 120.0;  // quarter notes per minute
    std::uint8_t meterNumerator = 4;
    std::uint8_t meterDenominatorLog2 = 2;
    std::int8_t keySharps = 0;  // flats if negative
    bool keyMinor = false;
    TBars bars;
    std::pmr::vector<TLayerRecord> layers;
    TPitchMaps pitchMaps;

private:
    struct TStoredNote;
    // Memory for one note, in a run of such side by side. Notes that begin together are ordered by address,
    // so those made one after the other in one run keep the order in which they were made, and scores come
    // out the same each time.
    struct NoteSlot {
        NoteSlot() {}  // leaves the bytes as they are
        alignas(TNote) std::byte bytes[sizeof(TNote)];
    };
    using NoteRun = std::pmr::vector<NoteSlot>;  // never grows past its capacity, so notes stay in place

    void File(TNote* note);
    void TrimLayers();
    TNote* NewNote();
    void ReadNotes(TBaseStream& stream, std::uint32_t count, std::uint32_t rate);
    static TStoredNote ReadNote(TBaseStream& stream, std::uint32_t rate, std::uint32_t order);
    void ReadLayers(TBaseStream& stream);
    void ReadBars(TBaseStream& stream);

    std::pmr::memory_resource* memory;  // fixed after construction, not owned
    std::shared_ptr<NoteRun> run;       // where the next notes are made; also held by each of its notes
};
