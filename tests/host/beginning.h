#pragma once
#include <string>
#include <vector>

#include "test_audio.h"
#include "tools/host/audio_file.h"

// The first seconds of a recording, as a file of its own: the program plays it in real time.
inline void WriteBeginning(const std::string& recording, const std::string& path, double seconds) {
    AudioFile audio(recording, AudioFile::Channel::first);
    std::vector<float> samples(static_cast<std::size_t>(seconds * audio.Rate()));
    samples.resize(audio.Read(samples.data(), samples.size()));
    WriteAudio(path, samples, audio.Rate());
}
