#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>

// By how much to hear a player louder: brings the loudest of the last seconds to 6 dB below full scale. It
// follows a louder sound at once and a quieter one by 3 dB a second, in whole dB, by 30 dB at most; pauses
// leave it alone.
//
// Threads: one, [audio] included.
class LevelFollower {
public:
    // Whether Level has changed by these samples. rate in Hz.
    bool Hear(const float* samples, std::uint32_t count, std::int32_t rate) {
        float loudest = 0;
        for (std::uint32_t i = 0; i < count; ++i) loudest = std::max(loudest, std::abs(samples[i]));
        if (loudest < pauseBelow) return false;
        const float seconds = static_cast<float>(count) / static_cast<float>(rate);
        peak = std::max(20 * std::log10(loudest), peak - fallPerSecond * seconds);
        const float wanted = std::round(std::clamp(wantedPeak - peak, 0.0F, most));
        const bool changes = wanted != level;
        level = wanted;
        return changes;
    }
    float Level() const { return level; }  // dB

private:
    static constexpr float wantedPeak = -6, fallPerSecond = 3, most = 30;  // dB
    static constexpr float pauseBelow = 0.0003F;                           // of full scale: -70 dB
    float peak = wantedPeak;                                               // dB
    float level = 0;
};
