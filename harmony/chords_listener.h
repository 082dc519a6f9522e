#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "delivery/note_out.h"
#include "harmony/chord_name.h"
#include "harmony/name_slot.h"

// What the chord listener needs of the plug-in object.
class IChordOwner {
public:
    virtual float GetSampleRate() const = 0;  // [any] Hz
    // [any] The text now shown may have changed. Called inside Update and Stop, on their thread.
    virtual void ChordChanged() = 0;

protected:
    ~IChordOwner() = default;
};

// Names what is being played. It takes no note events: some times a second of sample time it looks at which
// bands are on, names them as a chord and writes the name into a ring, from which the name is read that is a
// chosen delay old, so that the display can follow a sound which the host plays later.
//
// A band's number modulo 12 is its pitch class, band 45 being A; the recorder's transposition plays no part.
//
// Threads: Update, Start and currentChord [audio]. Stop, setDelay and currentChordCopy [any]; a Stop shows at
// once to all readers, and the ring itself is blanked at the next operation of the audio thread.
// Memory: all of it at construction.
// Errors: none. A rate that is negative, infinite or not a number counts as 0; below updatesPerSecond there
// is an update for each sample.
class TChordsListener : public TNoteOut {
public:
    static constexpr std::size_t mostNotes = 11;         // the lowest ones are named; all of them have a name
    static constexpr std::uint64_t longestDelay = 2000;  // ms that the ring holds
    static constexpr std::int32_t mostUpdates = 1000;    // a second

    // updatesPerSecond is held between 1 and mostUpdates.
    TChordsListener(IChordOwner* chordOwner, std::int32_t updates);

    void NoteOn(std::int32_t) override {}
    void NoteOff(std::int32_t) override {}
    void Silence() override {}
    void Start() override;   // takes the owner's rate anew and sizes the ring; names are kept
    void Stop() override;    // blanks all names
    void Update() override;  // names the bands that are on, once for each step of the clock

    void setDelay(std::uint64_t ms);  // rounded down to whole updates

    // The name shown now; stands until the next call. Sizes the ring if nothing has yet.
    const TChordName& currentChord();
    // The same for other threads, where a change of the delay shows at the next update; empty while the ring
    // has no size.
    TChordName currentChordCopy() const;

    IChordOwner* const owner;  // not owned
    const std::int32_t updatesPerSecond;
    std::atomic<std::uint64_t> samplesPerUpdate{1};  // [audio] writes; at least 1
    std::uint64_t lastUpdate = ~std::uint64_t{0};    // [audio] number of the last update done
    std::vector<std::uint32_t> activeBands;          // [audio] the bands on at the last update
    std::vector<TChordName> delayRing;               // [audio]
    std::uint64_t writeIndex = 0;                    // [audio] next entry to write
    std::atomic<std::uint64_t> readOffset{0};  // [any] from writeIndex to the entry shown, modulo the size
    std::atomic<std::uint64_t> delayMs{1000};  // [any]
    std::atomic<bool> ringReady{false};        // [audio] writes; the ring has its size

private:
    std::uint64_t Rate() const;
    void prepareRing();
    void computeReadOffset();
    void blankIfStopped();
    void findActiveBands(const TNoteRecorder& from);
    TChordName nameActiveBands() const;
    void push(const TChordName& name);
    TChordName& entry(std::uint64_t index) {
        return delayRing[static_cast<std::size_t>(index % delayRing.size())];
    }
    TChordName& shownEntry() { return entry(readOffset + writeIndex); }

    NameSlot shownName;                       // [audio] writes
    std::atomic<std::uint64_t> ringSize{0};   // [audio] writes; of delayRing
    std::atomic<std::uint64_t> stops{0};      // [any] how often Stop was called
    std::atomic<std::uint64_t> stopsDone{0};  // [audio] writes; how many of them have blanked the ring
};
