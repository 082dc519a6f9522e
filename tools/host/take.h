#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "tools/host/meter.h"
#include "tools/host/played_notes.h"

// One MIDI message that the plug-in sent to the host.
struct TimedEvent {
    std::int64_t sample = 0;  // where in the audio it belongs: samples since its start, never below 0
    std::array<std::uint8_t, 3> bytes{};  // status and two data bytes; all zero where the plug-in had no note

    float level = 0;  // of a note's end: the highest power that it reached, where that was asked for

    bool operator==(const TimedEvent&) const = default;
};

// What the plug-in made of one recording: all that a table, a list of events or a file is written from.
struct Take {
    std::int32_t rate = 0;                // Hz
    std::int64_t length = 0;              // samples heard
    std::vector<TimedEvent> events;       // in the order in which they were sent; dates may step back
    float peak = 0;                       // largest amplitude of what was heard, full scale at 1.0
    float peakOfAll = 0;                  // the same, over all channels of the file
    double tuning = 440;                  // Hz of A4, by which it was heard; 0: none was found, and 440 taken
    std::vector<PlayedNote> played = {};  // what was really played, where that is known; for the picture
    // How it is written as a score; the sound knows none of this.
    double tempo = 120;  // quarter notes a minute
    Meter meter = {};
    double barOne = 0;  // seconds from the start of the audio to where bar 1 begins
    int gridParts = 0;  // parts of a whole note, on whose lines from bar 1 on all notes lie; 0: on none
};

// Where a sample of the take lies, in seconds from its start.
inline double Seconds(const Take& take, std::int64_t sample) {
    return static_cast<double>(sample) / take.rate;
}
