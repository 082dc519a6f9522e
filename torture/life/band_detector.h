#pragma once
#include <atomic>
#include <cstdint>

#include "engine/note_detector.h"

// A detector whose flags a row sets by hand: 84 bands at 44100 Hz, band 45 at 440 Hz, so that band b is MIDI
// note b + 24.
class BandDetector : public INoteDetector {
public:
    BandDetector() {
        numBands = 84;
        sampleRate = 44100;
        frameLength = 441;
        referenceBand = 45;
        bandOn = on;
        bandLevel = level;
        for (float& each : level) each = 1;
    }
    void Process(const short*, unsigned) override {}
    void Reset() override {}
    float GetBandDelay(std::int32_t) override { return 40; }  // ms
    void Set(int band, bool isOn) { on[band] = isOn; }        // on the thread of OnFrame

    bool on[128] = {};
    float level[128] = {};
};
