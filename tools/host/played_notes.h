#pragma once
#include <string>
#include <vector>

// A note as it was written or played, to be compared with what is heard.
struct PlayedNote {
    double begin = 0, end = 0;  // s
    int pitch = 0;              // MIDI note
};

// All notes of a Standard MIDI File of format 0 or 1, at the tempi that it gives. Errors: std::runtime_error
// with the reason, without the file's name.
std::vector<PlayedNote> ReadPlayedNotes(const std::string& path);
