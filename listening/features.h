#pragma once
#include <cstdint>

#include "listening/net_kernels.h"

// A level: the logarithm of a power to base 2, in steps of 1/4096, that is of 0.000735 dB.
constexpr std::int32_t levelStepsPerOctave = 4096;
constexpr double stepsPerDb = levelStepsPerOctave / 3.0102999566398119;  // 10 log10(2)

// The level of a power, by a table of whole numbers: the same on every machine. Powers are cut to -140 to
// 20 dB; what is negative or NaN counts as silence.
std::int32_t LevelOf(float power);

// What the net is given of each frame: for each band its level under a reference, and how far it rose since
// the frame before. The reference is the loudest band, and falls by 10 dB a second, so that the music's
// loudness does not matter.
class EarFeatures {
public:
    EarFeatures() { Reset(); }
    void Reset();  // as after a long silence
    // One frame: netBands powers. Returns netBands pairs: (level - reference + 45 dB) / 20 dB, in steps of
    // 1/4096, and the change / 5 dB in the same.
    const std::int16_t* Step(const float* powers);
    const std::int32_t* Levels() const { return levels; }  // of the last frame

private:
    std::int32_t reference = 0;
    std::int32_t levels[netBands];
    std::int16_t pairs[2 * netBands];
};
