#pragma once
#include <cstdio>
#include <cstdlib>
#include <string>

// Ends the fuzzing, with the input kept, unless it is true. Time and memory are limited by libFuzzer.
inline void Demand(bool isTrue, const std::string& what) {
    if (isTrue) return;
    std::fprintf(stderr, "not true: %s\n", what.c_str());
    std::abort();
}
