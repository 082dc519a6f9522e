#pragma once
#include <cstdint>
#include <string>

// How formats that scale each parameter from 0 to 1, or count its steps, show the 96 parameters.
//
// Threads: [any]; texts, and the first call of all, never [audio].

// The equal steps from 0 to its maximum; 0: it is continuous.
std::int32_t ParameterSteps(std::int32_t index);
// The most of what hosts call its plain value, which counts steps where there are some.
double PlainMaximum(std::int32_t index);
// The value that has this display, or that a user means who typed it. False, with the value as it was, where
// there is none.
bool ReadParameterText(std::int32_t index, const std::string& text, float& value);
