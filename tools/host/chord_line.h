#pragma once
#include <string>
#include <vector>

#include "tools/host/take.h"

// From when on which chord sounds.
struct ChordChange {
    double time = 0;   // seconds from the start of the audio, a multiple of 0.1
    std::string name;  // empty while nothing sounds
};

// The chords of a take: ten times a second the notes that sound are named, the eleven lowest of them, by the
// code that names them in the plug-in's window. Changes only. Threads: [any].
std::vector<ChordChange> ChordLine(const Take& take);

// The name of the chord that these MIDI notes make, in any order: the eleven lowest from C1 up count. Empty
// for no notes.
std::string ChordName(const std::vector<int>& notes);
