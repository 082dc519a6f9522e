#pragma once
#include <cstddef>
#include <cstdint>

// The words of music theory: how a pitch, an interval, a degree and a chord type are written, and the small
// arithmetic of pitch classes.
//
// A pitch is a MIDI note number, or any number that counts semitones from a C, such as a band. A pitch class
// is a pitch modulo 12; 0 is C. All texts are plain 8-bit text.
// Threads: [any]; constant tables and pure functions.

// A pitch as it is written. The alteration is what a sharp, a flat or a pair of them does to the step.
struct TSpelledPitch {
    std::int16_t step = 0;        // diatonic, 0 (do, c) to 6 (si, h)
    std::int16_t alteration = 0;  // semitones, -2 to 2

    friend bool operator==(const TSpelledPitch&, const TSpelledPitch&) = default;
};
static_assert(sizeof(TSpelledPitch) == 4);

struct TInterval {
    std::int16_t degree = 0;  // 0 (unison) to 7 (octave)
    std::int16_t semitones = 0;

    friend bool operator==(const TInterval&, const TInterval&) = default;
};
static_assert(sizeof(TInterval) == 4);

// The types of chord that the analysis distinguishes, numbered as the rows of ChordSuffixes. The numbers left
// out belong to rows that nothing produces.
enum TChordType : std::uint32_t {
    ctNone = 0,  // not recognised
    ctMajor = 2,
    ctMinor = 3,
    ctAugmented = 4,
    ctDiminished = 5,
    ctMajorSeventh = 7,
    ctSeventh = 8,
    ctMinorMajorSeventh = 9,
    ctMinorSeventh = 10,
    ctAugmentedMajorSeventh = 11,
    ctHalfDiminished = 12,
    ctDiminishedSeventh = 13,
    ctMajorNinth = 15,
    ctNinth = 16,
    ctMinorNinth = 18,
    ctFlatNinth = 20,
    ctMinorFlatNinth = 22,
    ctSuspended = 23,
    ctSeventhSuspended = 24,
    ctAugmentedSeventh = 25,
    ctFifth = 27,
    ctSixth = 28,
    ctMinorSixth = 29,
    chordTypeCount = 31,
};

// What stands above the root of a chord type, in semitones; 0 is absent.
struct TChordIntervals {
    std::int32_t third, fifth, seventh, ninth;
};

inline constexpr std::int32_t classCount = 12;  // pitch classes, semitones in an octave
inline constexpr std::int32_t stepCount = 7;    // steps of a scale
inline constexpr std::size_t ringSize = 35;     // steps times alterations

// Read when a chord is named.
extern const char* const PitchNamesMixed[classCount];             // by class: a chord's root
extern const char* const PitchNamesFlat[classCount];              // by class
extern const char* const PitchNamesSharp[classCount];             // by class
extern const std::int16_t PitchAccidentalPreference[classCount];  // by class: 1 writes a bass with sharps
extern const char* const SolfegeNamesFlat[classCount + 1];        // by class, then "*"
extern const char* const BassDegreeNames[9];                      // by degree, unison to ninth
extern const char* const ChordSuffixes[chordTypeCount];           // by TChordType
extern const TChordIntervals ChordIntervals[chordTypeCount];  // by TChordType; all 0 where there is no list

// By MIDI program: the number, a blank, the name. A null entry ends the table.
extern const char* const InstrumentNames[129];

// Kept for whoever writes music with this vocabulary; no chord is named by them. The three rings hold all
// spellings; RingIndex says where a spelled pitch stands.
extern const char* const GermanNames[ringSize + 1];          // ring, then "*"
extern const char* const SolfegeNames[ringSize + 1];         // ring, then "*"
extern const std::uint8_t RingPitchClasses[ringSize + 1];    // ring; 13 stands for "*"
extern const char* const GermanNamesSharp[classCount + 1];   // by class, then "*"
extern const char* const GermanNamesFlat[classCount + 1];    // by class, then "*"
extern const char* const SolfegeNamesSharp[classCount + 1];  // by class, then "*"
extern const char* const IntervalNames[stepCount + 1];       // by degree, unison to octave
extern const char* const IntervalQualities[7];               // double diminished to double augmented
extern const char* const DegreeNumerals[stepCount];
extern const char* const ModeNames[2];                     // major, minor
extern const char* const AccidentalMarks[5];               // by alteration + 2
extern const char* const IntervalPairNames[classCount];    // by semitones: the interval above do
extern const char* const DegreeNameSets[10][classCount];   // by semitones above the tonic
extern const std::uint16_t ScaleSemitones[stepCount + 1];  // the major scale by degree, unison to octave
extern const std::uint16_t FifthsPosition[classCount];  // by class: place on the fifths from the tritone up
extern const std::uint16_t FifthsFromC[stepCount];      // rising fifths, the tritone last

// The argument modulo 12, and divided by 12, both cut towards zero: a negative pitch has a negative class.
std::int16_t pitchClassOf(std::int16_t pitch);
std::int16_t octaveOf(std::int16_t pitch);

// The degree of an interval of at least 0 semitones; a negative one gives 0. An octave reduces to a unison,
// and so 7 never comes out. With `ascending`, a second at a distance of 3 or more is a ninth, 8.
std::int16_t degreeOf(std::int16_t semitones, bool ascending);

std::int16_t addClass(std::int16_t a, std::int16_t b);  // (a + b + 12) modulo 12
// (b - a * direction + 12) modulo 12: with direction 1, how far b stands above a.
std::uint16_t classAbove(std::int16_t a, std::int16_t b, std::int16_t direction);
std::int16_t addStep(std::int16_t step, std::int16_t delta);  // (step + delta + 7) modulo 7

// The interval of a degree, 0 to 7 (its low 3 bits count), and a quality, an index into IntervalQualities. A
// degree that has no perfect form takes perfect for major; one that has takes minor and major for perfect.
TInterval makeInterval(std::int16_t degree, std::int16_t quality);

// The pitch an interval above (direction above 0) or below (below 0); direction 0 is no move. The step is the
// interval's own where an alteration of -2 to 2 can say it, else the nearest step that can.
TSpelledPitch addToPitch(TSpelledPitch pitch, TInterval interval, std::int16_t direction);

// Where a spelled pitch stands in the rings: (5 * step + alteration + 35) modulo 35.
std::int16_t RingIndex(TSpelledPitch pitch);
