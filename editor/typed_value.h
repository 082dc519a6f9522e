#pragma once
#include <cstdint>
#include <string>

// Values that a user types into the window, in the units that it shows them in.
//
// Threads: pure functions, [any] but [audio].

bool TakesTyping(std::int32_t index);                     // sliders and bars
std::string TypingText(std::int32_t index, float value);  // to begin with, "-35"
std::string RangeText(std::int32_t index);                // "0 to -40 dB"; of those alone, as the next
std::string TypingRange(std::int32_t index);              // "Sensitivity: 0 to -40 dB"

// A decimal comma is as good as a point, and units may follow. False, with the value as it was, for what is
// no number in the range.
bool ReadTyped(std::int32_t index, std::string text, float& value);
