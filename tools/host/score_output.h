#pragma once
#include <string>

#include "tools/host/take.h"

class TNotes;

// A take as a score, by the road that the plug-in's own recording takes: events dated in samples, then notes.
// What was sent keeps its velocity. `score` is filled; notes without an end are dropped.
void TakeToScore(const Take& take, TNotes& score);

// The bytes of a Standard MIDI File, and of a stored score.
std::string MidiFileBytes(const TNotes& score);
std::string StoredScoreBytes(const TNotes& score);
