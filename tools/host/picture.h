#pragma once
#include <string>

#include "tools/host/take.h"

// A piano roll of a take as a PNG: time from left to right, a row a semitone, the colour a pitch class, the
// chord names above; what was really played, where the take has it, lies in grey behind what was heard. The
// bytes of the file. Errors: std::runtime_error. Threads: [any].
std::string PianoRoll(const Take& take);
