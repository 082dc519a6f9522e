#pragma once
#include <cstdint>

// What a value of parameters 3 to 95 stands for, and how a host shows it.
//
// Threads: [any] but [audio]; pure functions, but for the names of devices.

std::int32_t ProgramOf(float value);  // 0 to 127 for values up to 1
std::int32_t ChannelOf(float value);  // from 0; 16 or more for values above 1
float DelayOf(float value);           // of the chord display, in ms

// Writes at most AudioEffect::textRoom bytes, terminator included.
void ParameterDisplay(float value, std::int32_t index, char* text);
