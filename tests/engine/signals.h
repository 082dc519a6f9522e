#pragma once
#include "tests/support/music.h"

// What a detector is given: mono, signed 16 bits, full scale 32767. Rates in Hz, lengths in seconds.
using Pcm = std::vector<short>;

inline unsigned Bytes(std::size_t samples) {
    return static_cast<unsigned>(samples * sizeof(short));
}

template <typename Detector>
void Play(Detector& detector, const Pcm& audio) {
    detector.Process(audio.data(), Bytes(audio.size()));
}

// Chords of three struck notes, a new one every 0.2 s; sharp by `cents`.
inline Pcm Music(int rate, double seconds, double cents = 0) {
    static constexpr double chords[][3] = {{24, 31, 40}, {29, 38, 45}, {26, 33, 54}, {12, 43, 47}};
    Audio mix(Samples(rate, seconds));
    const std::size_t length = Samples(rate, 0.2);
    for (std::size_t begin = 0, chord = 0; begin < mix.size(); begin += length, ++chord)
        for (const double band : chords[chord % 4])
            AddStruck(mix, begin, length, BandHertz(band + cents / 100), rate, 4, 0.12);
    return Shorts(mix);
}

// Loud and quiet, on and off the grid, to the bound of the accumulators and beyond it, where they wrap (at
// 8000 Hz, 65538 x 32768 = 2^31 + 65536), and a tail of single steps and of nothing, long enough for the
// upper bands' energy (10 ms, so 90 time constants to the smallest normal number) to sink past it.
inline Pcm Everything(int rate) {
    Pcm whole;
    for (const Pcm& part :
         {Music(rate, 0.5, 30), Shorts(Noise(rate, 0.1)), Shorts(Sine(440, 9, rate, 0.1)),
          Pcm(Samples(rate, 0.1), -32768), Shorts(Sine(440, 1, rate, 0.05), 1), Pcm(Samples(rate, 1.1), 0)})
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}
