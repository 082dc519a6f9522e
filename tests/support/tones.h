#pragma once
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

// Sines of MIDI notes, from a sample on; in equal temperament note n has 440 x 2^((n - 69) / 12) Hz.
inline std::vector<float> Chord(const std::vector<int>& notes, std::size_t samples, std::size_t from = 0,
                                double rate = 44100, double level = 0.2) {
    std::vector<float> audio(samples);
    for (const int note : notes) {
        const double step = 2 * std::numbers::pi * 440 * std::exp2((note - 69) / 12.0) / rate;
        for (std::size_t i = 0; i < samples; ++i)
            audio[i] += static_cast<float>(level * std::sin(step * static_cast<double>(from + i)));
    }
    return audio;
}
