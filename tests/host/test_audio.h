#pragma once
#include <sndfile.h>

#include "tests/support/music.h"
#include "tests/support/test.h"
#include "tools/host/audio_file.h"

constexpr int formatWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

// Interleaved samples into a file of any format that libsndfile writes.
inline void WriteAudio(const std::string& path, const Audio& samples, int rate, int channels = 1,
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
inline Audio ReadAudio(const std::string& path) {
    AudioFile file(path, AudioFile::Channel::first);
    Audio samples, piece(65536);
    while (const std::size_t count = file.Read(piece.data(), piece.size()))
        samples.insert(samples.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    return samples;
}

constexpr double middleC = 261.6256;  // Hz, equal temperament at A 440

// One note from `begin` to `end`, in seconds of `length`, over faint noise that never sums to zero, since
// such a block counts as silence and resets the detector.
inline Audio OneNote(double hertz, int rate, double begin, double end, double length) {
    Audio samples(Samples(rate, length));
    std::minstd_rand random(1);
    for (float& sample : samples) sample = 0.0001F * static_cast<float>(5 + random() % 10);
    AddStruck(samples, Samples(rate, begin), Samples(rate, end - begin), hertz, rate, 4, 0.25);
    return samples;
}
