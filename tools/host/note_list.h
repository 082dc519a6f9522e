#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "tools/host/take.h"

// A note with both its ends.
struct HeardNote {
    std::int64_t begin = 0;  // samples since the start of the audio
    std::int64_t end = 0;    // never before begin
    int channel = 0;         // 0 to 15
    int pitch = 0;           // MIDI note, 0 to 127
    int velocity = 0;        // 1 to 127
    int program = 0;         // 0 to 127: the channel's when the note began
};

bool BeginsBefore(const HeardNote& a, const HeardNote& b);  // or at one time with a lower pitch, or channel

// Pairs each note-on with the note-off that follows it on the same channel and pitch, in the order of
// sending. A second note-on ends the first; what nothing ends lasts to the end of the take; a note-off alone
// is no note. Messages of other kinds, events of three zero bytes among them, are passed over. Sorted by
// begin, then pitch.
std::vector<HeardNote> PairNotes(const Take& take);

// "C4" for MIDI note 60, "C#-1" for 1.
std::string NoteName(int pitch);
