#pragma once
#include <string>

#include "tools/host/take.h"

class TNotes;

// Adds the take's notes, as PairNotes lists them, to `score`: one layer, bars and tempo as the
// take says, dates rounded up to score ticks.
void TakeToScore(const Take& take, TNotes& score);

// The bytes of a Standard MIDI File, and of a stored score.
std::string MidiFileBytes(const TNotes& score);
std::string StoredScoreBytes(const TNotes& score);
