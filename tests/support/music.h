#pragma once
#include "tests/support/standard.h"

// Test audio: mono, rates in Hz, lengths in seconds unless a name says samples. Full scale is 1; `Shorts`
// makes 16-bit samples of it.
using Audio = std::vector<float>;

// Hz of a MIDI note in equal temperament.
inline double NoteHertz(double note) {
    return 440 * std::exp2((note - 69) / 12);
}
// Hz of a band of the detector's usual grid, which has 440 Hz at band 45.
inline double BandHertz(double band) {
    return NoteHertz(band + 24);
}
inline std::size_t Samples(double rate, double seconds) {
    return static_cast<std::size_t>(rate * seconds);
}

inline void AddSine(Audio& audio, double hertz, double level, double rate, std::size_t phaseSamples = 0) {
    const double step = 2 * std::numbers::pi * hertz / rate;
    for (std::size_t i = 0; i < audio.size(); ++i)
        audio[i] += static_cast<float>(level * std::sin(step * static_cast<double>(phaseSamples + i)));
}
inline Audio Sine(double hertz, double level, double rate, double seconds) {
    Audio audio(Samples(rate, seconds));
    AddSine(audio, hertz, level, rate);
    return audio;
}
// Sines of MIDI notes, from a sample on.
inline Audio Chord(const std::vector<int>& notes, std::size_t samples, std::size_t from = 0,
                   double rate = 44100, double level = 0.2) {
    Audio audio(samples);
    for (const int note : notes) AddSine(audio, NoteHertz(note), level, rate, from);
    return audio;
}
inline Audio Tones(const std::vector<int>& notes, double seconds, double rate = 44100, double level = 0.2) {
    return Chord(notes, Samples(rate, seconds), 0, rate, level);
}

// A struck or plucked note from a sample on: `partials` of it that fall off by 1/n and decay.
inline void AddStruck(Audio& audio, std::size_t begin, std::size_t length, double hertz, double rate,
                      int partials = 3, double level = 0.15) {
    for (int partial = 1; partial <= partials && hertz * partial < rate * 0.45; ++partial) {
        // A decaying rotation: x' = x d cos w - y d sin w, and likewise y.
        const double w = 2 * std::numbers::pi * hertz * partial / rate;
        const double decay = std::exp(-2.0 / static_cast<double>(length));
        const double c = decay * std::cos(w), s = decay * std::sin(w);
        double x = level / partial, y = 0;
        for (std::size_t i = begin; i < std::min(begin + length, audio.size()); ++i) {
            audio[i] += static_cast<float>(y);
            const double next = x * c - y * s;
            y = x * s + y * c;
            x = next;
        }
    }
}

template <typename Random>
Audio Noise(Random& random, std::size_t samples, double level = 1) {
    Audio audio(samples);
    for (float& sample : audio)
        sample = static_cast<float>(level * (static_cast<double>(random() % 65535) - 32767) / 32767);
    return audio;
}
inline Audio Noise(int rate, double seconds, std::uint32_t seed = 1) {
    std::minstd_rand random(seed);
    return Noise(random, Samples(rate, seconds));
}

// Chords of one to four sines, 0.1 to 0.6 s each, some with a pause behind them.
template <typename Random>
Audio RandomMusic(Random& random, double rate, double seconds) {
    Audio music;
    while (music.size() < Samples(rate, seconds)) {
        std::vector<int> notes(1 + random() % 4);
        for (int& note : notes) note = 36 + static_cast<int>(random() % 60);
        const Audio part = Tones(notes, 0.1 + static_cast<double>(random() % 500) / 1000, rate);
        music.insert(music.end(), part.begin(), part.end());
        if (random() % 4 == 0) music.resize(music.size() + random() % Samples(rate, 0.2));
    }
    music.resize(Samples(rate, seconds));
    return music;
}

inline Audio Silence(std::size_t samples) {
    return Audio(samples);
}
inline std::vector<short> Shorts(const Audio& audio, double fullScale = 32767) {
    std::vector<short> samples(audio.size());
    std::transform(audio.begin(), audio.end(), samples.begin(), [&](float sample) {
        return static_cast<short>(std::lrint(std::clamp(sample * fullScale, -32768.0, 32767.0)));
    });
    return samples;
}
