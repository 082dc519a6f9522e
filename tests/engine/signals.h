#pragma once
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <numbers>
#include <random>
#include <vector>

// Test signals: mono, signed 16 bits, full scale 32767. Rates in Hz, lengths in seconds.

using Audio = std::vector<short>;

// Hz of a band of the detector's usual grid, which has 440 Hz at band 45.
inline double BandFrequency(double band) {
    return 440 * std::exp2((band - 45) / 12);
}

inline std::size_t Samples(int rate, double seconds) {
    return static_cast<std::size_t>(rate * seconds);
}

inline Audio Sine(double hertz, double amplitude, int rate, double seconds) {
    Audio audio(Samples(rate, seconds));
    for (std::size_t at = 0; at < audio.size(); ++at)
        audio[at] = static_cast<short>(
            std::lrint(amplitude * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(at) / rate)));
    return audio;
}

// Chords of three decaying tones with four partials each, a new one every 0.2 s; sharp by `cents`.
inline Audio Music(int rate, double seconds, double cents = 0) {
    static constexpr double chords[][3] = {{24, 31, 40}, {29, 38, 45}, {26, 33, 54}, {12, 43, 47}};
    static constexpr double partials[] = {1, 0.75, 0.5, 0.25};
    std::vector<double> mix(Samples(rate, seconds));
    const std::size_t chordLength = Samples(rate, 0.2);
    for (std::size_t begin = 0, chord = 0; begin < mix.size(); begin += chordLength, ++chord) {
        const std::size_t end = std::min(begin + chordLength, mix.size());
        for (const double band : chords[chord % 4]) {
            for (int partial = 1; partial <= 4; ++partial) {
                const double hertz = BandFrequency(band + cents / 100) * partial;
                if (hertz > rate * 0.45) continue;
                for (std::size_t at = begin; at < end; ++at) {
                    const double time = static_cast<double>(at - begin) / rate;
                    mix[at] += 4000 * partials[partial - 1] * std::exp(-3 * time) *
                               std::sin(2 * std::numbers::pi * hertz * time);
                }
            }
        }
    }
    Audio audio(mix.size());
    std::transform(mix.begin(), mix.end(), audio.begin(),
                   [](double value) { return static_cast<short>(std::lrint(value)); });
    return audio;
}

inline Audio Noise(int rate, double seconds, std::uint32_t seed = 1) {
    std::minstd_rand random(seed);
    Audio audio(Samples(rate, seconds));
    for (short& sample : audio) sample = static_cast<short>(static_cast<int>(random() % 65535) - 32767);
    return audio;
}

// Full scale up and down, `half` samples each.
inline Audio Square(int rate, double seconds, std::size_t half) {
    Audio audio(Samples(rate, seconds));
    for (std::size_t at = 0; at < audio.size(); ++at) audio[at] = (at / half) % 2 == 0 ? 32767 : -32767;
    return audio;
}

inline Audio Joined(std::initializer_list<Audio> parts) {
    Audio whole;
    for (const Audio& part : parts) whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

inline unsigned Bytes(std::size_t samples) {
    return static_cast<unsigned>(samples * sizeof(short));
}

template <typename Detector>
void Play(Detector& detector, const Audio& audio) {
    detector.Process(audio.data(), Bytes(audio.size()));
}
