#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "parameters/parameters.h"
#include "tools/host/audio_file.h"
#include "tools/host/ear_settings.h"
#include "tools/host/plugin_module.h"
#include "tools/host/take.h"
#include "tools/host/tuning.h"

struct RenderSettings {
    std::int32_t blockSize = 512;  // samples a call
    AudioFile::Channel channel = AudioFile::Channel::first;
    std::string hostVendor = "ORVA";
    std::vector<ParameterSetting> parameters;  // set in this order before the first block
    std::function<bool()> ended = [] {
        return false;
    };  // asked before each block: true leaves the rest unheard
    EarSettings ear;
    bool followsLevels = false;   // velocities follow the music
    double tuning = usualTuning;  // Hz of A4 in the recording; 0: found in the sound itself
    bool readsAhead = false;      // the file is read on a thread of its own
    bool realTime = false;        // blocks at the pace of the audio, for a device that listens
};

// dB that bring a peak to just below full scale, as --level auto has it: at most 40 up and 20 down, 0 for
// silence.
double LevelForPeak(double peak);

// Plays one audio file through a fresh instance and returns what it sent. `progress` hears the share that is
// done, 0 to 1, after each block. Errors: std::runtime_error with the reason, without the file's name.
// Threads: [any]; several files may be rendered at once, with one module.
Take Render(const PluginModule& module, const std::string& path, const RenderSettings& settings,
            const std::function<void(double)>& progress);
