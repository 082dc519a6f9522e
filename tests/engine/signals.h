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

// Chords, sharp by some cents.
inline Pcm Music(int rate, double seconds, double cents) {
    std::minstd_rand random(1);
    return Shorts(RandomMusic(random, rate / std::exp2(cents / 1200), seconds));
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
