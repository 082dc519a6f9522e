#pragma once
#include <array>
#include <cassert>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <vector>

#include "harmony/chord_name.h"
#include "harmony/vocabulary.h"
#include "notes/notes.h"

// From notes that sound together to the name of a chord. Every note is scored as a root; above the best one
// the intervals are marked; the number of pitch classes decides what kinds of chord are looked for; and what
// was not recognised is analysed again without its lowest note, then without its highest one.
//
// Threads: one at a time for each TChord. There is no state between or beside the objects: chords on several
// threads do not know of each other.

// What analyse has found.
struct TChordInfo {
    bool ok = false;  // there is a result
    TChordType type = ctNone;
    std::uint16_t bassDegree = 0;  // of the lowest note above the root, an index into BassDegreeNames
    bool hasForeignBass = false;   // a chord whose root is not the lowest note
    bool fromReducedSet[2] = {};   // both: the type was found without the lowest or the highest note
    bool chordIsPartial = false;   // third and seventh without the fifth
    bool noThird = false;
    bool bothThirds = false;       // minor and major
    bool majorBelowMinor = false;  // of both thirds, the major one comes first
    bool isTriad = false;          // the form that was recognised
    bool isSeventh = false;
    bool isNinth = false;
    bool majorThird = false;
    bool majorSeventh = false;
    bool diminishedSeventh = false;
    bool plainFifth = false;
    bool plainNinth = false;
    bool knownChord = false;
    bool twoClasses = false;
    std::int32_t rootIndex = -1;  // of the root in `tones`; -1 when nothing was analysed
};

// What remains of a chord for naming it. Intervals in semitones above the root, 0 where there is none.
struct TChordForm {
    std::int32_t third = 0;
    std::int32_t fifth = 0;
    std::int32_t seventh = 0;
    std::int32_t ninth = 0;
    std::int32_t eleventh = 0;  // no type has one
    bool unknown = false;       // the type has no intervals
    std::int32_t root = 0;      // pitch class
    // 0 with the root in the bass, else the distance from the root *down* to the lowest note, 0 to 11, which
    // chordText adds *upward*: C E G played as E G C reads C/Ab. Users know it so.
    std::int32_t bass = 0;
    bool bassInChord = false;  // `bass` equals the place, from 0, of one of the intervals up to the first 0
};

struct TChordTone {
    std::uint32_t pitch = 0;
    std::uint32_t index = 0;           // in `pitches`
    std::uint32_t sortedPosition = 0;  // in tones[i]: where the tone of pitches[i] has come to stand
};

// The notes of a chord and what is found out about them.
class TChord {
public:
    static constexpr std::int32_t mostTones = 12;  // more give no result

    // Takes a list's first `limit` notes, all with a limit of -1 or above its size. A pitch that equals its
    // direct predecessor counts once.
    TChord(const TNoteList& list, std::int32_t limit);
    // Takes pitches alone and has no score. The memory must outlive the chord.
    TChord(std::span<const std::uint32_t> chordPitches, std::pmr::memory_resource* memory);
    TChord(const TChord&) = delete;
    TChord& operator=(const TChord&) = delete;

    // A second call returns the stored result. Not ok: no notes, more than mostTones, or all twelve classes.
    TChordInfo analyse();
    bool recognise();  // the same without the texts; false where there is no result

    // Its first two steps.
    void prepare();           // tones and the counts of pitches; nothing the second time
    void computeIntervals();  // intervalRows, span and the counts of intervals

    // Semitones from tones[low] up to tones[high], low < high; in pitchClassMode from class to class.
    std::int16_t distance(std::int32_t low, std::int32_t high) const {
        assert(hasIntervals && 0 <= low && low < high && high < noteCount);
        const std::int32_t row = low * (noteCount - 1) - low * (low - 1) / 2;  // row i has noteCount - 1 - i
        return intervalRows[static_cast<std::size_t>(row + high - low - 1)];
    }

    std::unique_ptr<TNotes> notes;  // copies of the list's notes; none in a chord of pitches alone
    bool valid = false;             // there is a note
    bool hasIntervals = false;      // computeIntervals has run
    bool pitchClassMode = false;    // all below 12: classes, neither sorted nor measured as pitches
    bool sorted = false;            // prepare has run
    bool prepared = false;
    bool knownChord = false;  // as in `info`
    bool analysed = false;    // analyse has run
    bool rootIsBass = false;  // the root is the lowest note
    std::int32_t noteCount = 0;
    std::int32_t distinctPitchCount = 0;
    std::int32_t pitchClassCount = 0;
    std::int32_t unisonCount = 0;  // tones equal to the one before
    std::int32_t octaveCount = 0;  // pairs of tones one or more octaves apart
    std::uint16_t pitchClassHistogram[classCount] = {};
    std::uint16_t intervalClassCount = 0;  // over all pairs of tones
    std::uint16_t intervalClassHistogram[classCount] = {};
    std::uint16_t adjacentClassCount = 0;  // over neighbours
    std::uint16_t adjacentClassHistogram[classCount] = {};
    std::uint16_t wideStepCount = 0;  // neighbours more than an octave apart
    std::int16_t span = 0;  // semitones from the lowest to the highest; of classes, the sum of the steps
    std::array<bool, 15> semitonePresent{};  // by semitones above the root, 1 to 14; 13 and 14 are the ninths
    std::array<bool, 9> degreePresent{};     // by degree, unison to ninth
    std::pmr::vector<std::uint32_t> pitches;      // in the order of the list
    std::pmr::vector<TChordTone> tones;           // ascending; in pitchClassMode as `pitches`
    std::pmr::vector<std::int16_t> intervalRows;  // row after row; row i: from tone i to those above
    std::pmr::string longText;
    std::pmr::string shortText;
    TChordInfo info;
    std::array<std::int32_t, mostTones> scores{};  // of each tone as a root; a repeated class scores 0

private:
    void dropRepeats();
    void sortTones();
    void countPitches();
    void countInterval(std::uint32_t value, bool adjacent);
    template <typename Visit>
    void walkIntervals(std::int32_t root, Visit visit) const;
    void clearDegrees();
    std::int32_t scoreAsRoot(std::int32_t candidate);
    std::int32_t findRoot();
    bool markIntervals(std::int32_t root);
    void classify(TChordInfo& result) const;
    void classifyTwo(TChordInfo& result) const;
    void classifyThree(TChordInfo& result) const;
    void classifyFour(TChordInfo& result) const;
    void classifyFive(TChordInfo& result) const;
    void findBassDegree(TChordInfo& result) const;
    bool mayRetryWithoutLowest(const TChordInfo& result) const;
    bool mayRetryWithoutHighest(const TChordInfo& result) const;
    void retry(TChordInfo& result, std::int32_t first) const;
    void writeTexts();

    bool isRetry = false;  // makes no retry of its own
};

// Adds a tone at `value` semitones above a candidate root to those collected in `mask` (bit 0 the root, then
// 3, 4, 7, 8, 9, 10, 11). A tone that is in no chord, or not beside those collected, empties the mask. True
// if the mask now holds a triad, or root, third and seventh.
bool addChordTone(std::int32_t value, std::uint16_t& mask);

// The chord is done with afterwards. One that is not valid gives an unknown form of zeros.
// Throws std::out_of_range("invalid vector<T> subscript") if the analysis gave no result.
TChordForm chordFormOf(TChord&& chord);

TChordName chordText(const TChordForm& form);

// The chord of `count` notes that sound together: each begins at its `starts` and lasts its `durations`, in
// ticks; its velocity serves as its level. The first argument is not read. Throws as chordFormOf; up to 11
// different pitches always have a form. Threads: [any].
TChordForm chordOfPitches(std::uint32_t ignored, std::int32_t count, const std::uint32_t* pitches,
                          const std::uint32_t* velocities, const std::uint32_t* starts,
                          const std::uint32_t* durations);
// The same from pitches alone; up to mostTones of them are named without an allocation.
TChordForm chordOfPitches(std::span<const std::uint32_t> pitches);  // [audio]
