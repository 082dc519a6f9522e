#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/host/note_list.h"
#include "tools/host/take.h"

// What makes a take easier to read as music. All of it is off at the start: the take stays as it was sent.
struct NoteCleaning {
    double shortestGap = 0;   // ms: a shorter one between two notes of one pitch joins them; 0 joins none
    double shortestNote = 0;  // ms: shorter ones are left out; 0 leaves none out
    int gridParts = 0;        // parts of a whole note, to which both ends are moved; 0 for no grid
    double tempo = 120;       // quarter notes a minute, of the grid and of what is written
    Meter meter = {};         // of what is written
    std::optional<double> barOne = 0;  // s: where bar 1 and the grid begin; none: with the first note

    bool IsOff() const { return shortestGap <= 0 && shortestNote <= 0 && gridParts == 0; }
};

// "1/16" as 16: the parts of a whole note, 1 to 192, so that 1/12 is a triplet of eighths. Errors:
// std::invalid_argument with the reason.
int ParseGrid(const std::string& text);

// "0.556" as seconds, 0 to 86400, and "auto" as none. Errors: std::invalid_argument with the reason.
std::optional<double> ParseBarOne(const std::string& text);

// First gaps, then short notes, then the grid. Joined notes keep the first one's velocity. On the grid a note
// is a part long at least; of two on one pitch and one line, the louder one stays, with the later end; one
// that would reach into the next of its pitch ends there. `notes` and the result are sorted as by PairNotes.
std::vector<HeardNote> CleanNotes(std::vector<HeardNote> notes, const NoteCleaning& cleaning,
                                  std::int32_t rate);

// The same for a whole take. Messages other than notes stay; its tempo, meter, bar 1 and grid become
// the stated ones.
Take Cleaned(const Take& take, const NoteCleaning& cleaning);
