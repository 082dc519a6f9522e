#include "harmony/vocabulary.h"

// clang-format off

// ---- by pitch class ----

const char* const PitchNamesMixed[classCount] = {
    "C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B",
};

const char* const PitchNamesFlat[classCount] = {
    "C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B",
};

const char* const PitchNamesSharp[classCount] = {
    "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B",
};

const std::int16_t PitchAccidentalPreference[classCount] = {
    -1, 1, 1, -1, 1, -1, 1, -1, -1, 1, -1, 1,
};

const char* const SolfegeNamesFlat[classCount + 1] = {
    "do", "re_b", "re", "mi_b", "mi", "fa", "sol_b", "sol", "la_b", "la", "si_b", "si", "*",
};

const char* const SolfegeNamesSharp[classCount + 1] = {
    "do", "do#", "re", "re#", "mi", "fa", "fa#", "sol", "sol#", "la", "la#", "si", "*",
};

const char* const GermanNamesSharp[classCount + 1] = {
    "c", "cis", "d", "dis", "e", "f", "fis", "g", "gis", "a", "ais", "h", "*",
};

const char* const GermanNamesFlat[classCount + 1] = {
    "c", "des", "d", "es", "e", "f", "ges", "g", "as", "a", "b", "h", "*",
};

const std::uint16_t FifthsPosition[classCount] = {6, 1, 8, 3, 10, 5, 0, 7, 2, 9, 4, 11};
const std::uint16_t FifthsFromC[stepCount]     = {0, 7, 2, 9, 4, 11, 6};

// ---- the rings: a row is a step, raised once and twice, then the next step lowered twice and once ----

const char* const GermanNames[ringSize + 1] = {
    "c", "cis", "cisis", "deses", "des",
    "d", "dis", "disis", "eses",  "es",
    "e", "eis", "eisis", "feses", "fes",
    "f", "fis", "fisis", "geses", "ges",
    "g", "gis", "gisis", "ases",  "as",
    "a", "ais", "aisis", "heses", "b",
    "h", "his", "hisis", "ceses", "ces",
    "*",
};

const char* const SolfegeNames[ringSize + 1] = {
    "do",  "do#",  "do_x",  "re_bb",  "re_b",
    "re",  "re#",  "re_x",  "mi_bb",  "mi_b",
    "mi",  "mi#",  "mi_x",  "fa_bb",  "fa_b",
    "fa",  "fa#",  "fa_x",  "sol_bb", "sol_b",
    "sol", "sol#", "sol_x", "la_bb",  "la_b",
    "la",  "la#",  "la_x",  "si_bb",  "si_b",
    "si",  "si#",  "si_x",  "do_bb",  "do_b",
    "*",
};

const std::uint8_t RingPitchClasses[ringSize + 1] = {
    0,  1,  2,  0,  1,
    2,  3,  4,  2,  3,
    4,  5,  6,  3,  4,
    5,  6,  7,  5,  6,
    7,  8,  9,  7,  8,
    9,  10, 11, 9,  10,
    11, 0,  1,  10, 11,
    13,
};

// ---- by degree, quality, mode, alteration ----

const char* const IntervalNames[stepCount + 1] = {
    "unison", "second", "third", "forth", "fifth", "sixth", "seventh", "octave",
};

const char* const BassDegreeNames[9] = {
    "unison", "second", "third", "forth", "fifth", "sixth", "seventh", "octave", "ninth",
};

const char* const IntervalQualities[7] = {
    "double dimished", "dimished", "minor", "perfect", "major", "augmented", "double augmented",
};

const char* const DegreeNumerals[stepCount] = {
    "I", "II", "III", "IV", "V", "VI", "VII",
};

const char* const ModeNames[2] = {
    "dur", "moll",
};

const char* const AccidentalMarks[5] = {
    "bb", "b", "", "#", "x",
};

const std::uint16_t ScaleSemitones[stepCount + 1] = {0, 2, 4, 5, 7, 9, 11, 12};

// ---- by semitones above do, or above the tonic ----

const char* const IntervalPairNames[classCount] = {
    "DoDo",  "DoRe_b", "DoRe",   "DoMi_b", "DoMi",   "DoFa",
    "DoFis", "DoSol",  "DoLa_b", "DoLa",   "DoSi_b", "DoSi",
};

const char* const DegreeNameSets[10][classCount] = {
    {"I", "IIb", "II", "IIIb", "III",  "IV", "Vb",  "V", "VIb", "VI",   "VIIb", "VII"},
    {"I", "I#",  "II", "II#",  "III",  "IV", "IV#", "V", "V#",  "VI",   "VI#",  "VII"},
    {"I", "IIb", "II", "II#",  "III",  "IV", "IV#", "V", "V#",  "VI",   "VIIb", "VII"},
    {"I", "I#",  "II", "II#",  "III",  "IV", "IV#", "V", "V#",  "VI",   "VIIb", "VII"},
    {"I", "IIb", "II", "IIIb", "III",  "IV", "IV#", "V", "VIb", "VI",   "VIIb", "VII"},
    {"I", "IIb", "II", "III",  "IVb",  "IV", "Vb",  "V", "VI",  "VIIb", "VII",  "Ib"},
    {"I", "I#",  "II", "III",  "III#", "IV", "IV#", "V", "VI",  "VI#",  "VII",  "VII#"},
    {"I", "IIb", "II", "III",  "III#", "IV", "IV#", "V", "VI",  "VI#",  "VII",  "VII#"},
    {"I", "IIb", "II", "III",  "III#", "IV", "IV#", "V", "VI",  "VI#",  "VII",  "VII#"},
    {"I", "IIb", "II", "III",  "III#", "IV", "IV#", "V", "VI",  "VI#",  "VII",  "VII#"},
};

// ---- by chord type ----

const char* const ChordSuffixes[chordTypeCount] = {
    "",                        //  0
    "_A53",                    //  1
    "",                        //  2
    "m",                       //  3
    "aug",                     //  4
    "dim",                     //  5
    "_A7s",                    //  6
    "maj7",                    //  7
    "7",                       //  8
    "m+7",                     //  9
    "m7",                      // 10
    "+7+5",                    // 11
    "7-5",                     // 12
    "dim7",                    // 13
    "_A9s",                    // 14
    "9maj7",                   // 15
    "9",                       // 16
    "m9+7",                    // 17
    "m9",                      // 18
    "-9+7",                    // 19
    "-9",                      // 20
    "m-9+7",                   // 21
    "m-9",                     // 22
    "sus",                     // 23
    "7sus",                    // 24
    "A7+5",                    // 25
    "",                        // 26
    "5",                       // 27
    "6",                       // 28
    "m6",                      // 29
    "This name doesn't exist", // 30
};

// Types 22 and 25 hold no musical intervals; the names that are shown follow from them.
const TChordIntervals ChordIntervals[chordTypeCount] = {
    // third, fifth, seventh, ninth
    { 0,  0,  0,  0},  //  0 unknown
    { 0,  0,  0,  0},  //  1 unknown
    { 4,  7,  0,  0},  //  2 major
    { 3,  7,  0,  0},  //  3 m
    { 4,  8,  0,  0},  //  4 aug
    { 3,  6,  0,  0},  //  5 dim
    { 0,  0,  0,  0},  //  6 unknown
    { 4,  7, 11,  0},  //  7 maj7
    { 4,  7, 10,  0},  //  8 7
    { 3,  7, 11,  0},  //  9 m+7
    { 3,  7, 10,  0},  // 10 m7
    { 4,  8, 11,  0},  // 11 +7+5
    { 3,  6, 10,  0},  // 12 7-5
    { 3,  6,  9,  0},  // 13 dim7
    { 0,  0,  0,  0},  // 14 unknown
    { 4,  7, 11, 14},  // 15 9maj7
    { 4,  7, 10, 14},  // 16 9
    { 3,  7, 11, 14},  // 17 m9+7
    { 3,  7, 10, 14},  // 18 m9
    { 4,  7, 11, 13},  // 19 -9+7
    { 4,  7, 10, 13},  // 20 -9
    { 3,  7, 11, 13},  // 21 m-9+7
    { 4, 11, 20, 13},  // 22 m-9
    { 5,  7,  0,  0},  // 23 sus
    { 5,  7, 10,  0},  // 24 7sus
    { 4, 11, 20,  0},  // 25 A7+5
    { 0,  0,  0,  0},  // 26 unknown
    { 0,  0,  0,  0},  // 27 unknown
    { 4,  7,  9,  0},  // 28 6
    { 3,  7,  9,  0},  // 29 m6
    { 0,  0,  0,  0},  // 30 unknown
};

// clang-format on
