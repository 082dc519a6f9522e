#pragma once
#include <set>
#include <string>
#include <vector>

// The naming of chords a second time, as plainly as it can be told: sets, maps and strings, no thought for
// cost, and nothing shared with the code under test. What the two disagree about is a fault in one of them.
struct PlainChord {
    bool ok = false;
    int type = 0;
    int bassDegree = 0;
    bool hasForeignBass = false, chordIsPartial = false;
    bool fromReducedSet[2] = {};
    bool noThird = false, bothThirds = false, majorBelowMinor = false;
    bool isTriad = false, isSeventh = false, isNinth = false;
    bool majorThird = false, majorSeventh = false, diminishedSeventh = false;
    bool plainFifth = false, plainNinth = false;
    bool knownChord = false, twoClasses = false;
    int rootIndex = -1;

    std::vector<int> tones;   // sorted, unless all are below 12
    std::vector<int> scores;  // of each tone as a root
    std::string shortText, longText;
    std::string name;  // as displayed
};

// Names pitches in the order given, a pitch that repeats its direct predecessor counting once.
PlainChord NamePlainly(std::vector<int> pitches, bool mayRetry = true);
