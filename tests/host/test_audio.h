#pragma once
#include <sndfile.h>

#include <cmath>
#include <numbers>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/host/audio_file.h"

constexpr int formatWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

// Interleaved samples into a file of any format that libsndfile writes.
inline void WriteAudio(const std::string& path, const std::vector<float>& samples, int rate, int channels = 1,
                       int format = formatWav16) {
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = channels;
    info.format = format;
    SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
    const auto count = static_cast<sf_count_t>(samples.size());
    const bool written = file != nullptr && sf_write_float(file, samples.data(), count) == count;
    if (sf_close(file) != 0 || !written) throw std::runtime_error(path + ": " + sf_strerror(nullptr));
}

// The first channel.
inline std::vector<float> ReadAudio(const std::string& path) {
    AudioFile audio(path, AudioFile::Channel::first);
    std::vector<float> samples, piece(65536);
    while (const std::size_t count = audio.Read(piece.data(), piece.size()))
        samples.insert(samples.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    return samples;
}

// One held note from `begin` to `end`, in seconds of `length`: four partials that fall off by 1/n, as a
// plucked or bowed string has them, over a bed of faint noise. The bed never adds up to zero, since a block
// that does would count as silence and set the detector back.
inline std::vector<float> HeldNote(double hertz, int rate, double begin, double end, double length) {
    std::vector<float> samples;
    std::minstd_rand random(1);  // a fixed seed, so that a failure repeats
    std::uniform_real_distribution<double> noise(0.0005, 0.0015);
    constexpr double fade = 0.005;  // s, so that neither end clicks
    for (int i = 0; i < static_cast<int>(length * rate); ++i) {
        const double t = static_cast<double>(i) / rate;
        double sample = noise(random);
        if (t >= begin && t < end) {
            const double level = 0.25 * std::min({1.0, (t - begin) / fade, (end - t) / fade});
            for (int partial = 1; partial <= 4; ++partial)
                sample += level / partial * std::sin(2 * std::numbers::pi * hertz * partial * (t - begin));
        }
        samples.push_back(static_cast<float>(sample));
    }
    return samples;
}
