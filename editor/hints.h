#pragma once
#include <cstdint>
#include <string>

#include "editor/activity_meter.h"

// One sentence for each thing in the window: what a control does, for a mouse that rests over it. The range
// of a slider or a bar is RangeText's.
//
// Threads: pure functions, [any] but [audio].

constexpr std::int32_t stripOfPages = -1;  // stands for the page buttons and Help

// Of the control with this tag on that page (0 main, 1 equalizer, 2 options, 3 about); empty for others.
std::string HintOf(std::int32_t page, std::int32_t tag);
std::string HintOf(CActivityMeter::Part part);
