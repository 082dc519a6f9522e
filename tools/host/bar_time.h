#pragma once
#include <cstdint>
#include <vector>

#include "tools/host/note_list.h"
#include "tools/host/take.h"

// Where a take's samples lie in its bars.

// Quarter notes from the begin of bar 1, negative before it; exactly a line's where the take has a grid.
double QuartersFromBarOne(const Take& take, std::int64_t sample);

// Whole bars that a score has before bar 1, so that it holds what is played before it; 0 as a rule.
std::int64_t BarsBeforeBarOne(const Take& take, const std::vector<HeardNote>& notes);
