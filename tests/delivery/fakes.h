#pragma once
#include "delivery/note_recorder.h"
#include "tests/support/test.h"

// A detector whose flags a test sets by hand: 84 bands at 44100 Hz, band 45 at 440 Hz, so that band b is
// MIDI note b + 24.
class FakeDetector : public INoteDetector {
public:
    FakeDetector() {
        numBands = 84;
        sampleRate = 44100;
        frameLength = 441;
        referenceBand = 45;
        bandOn = on;
        bandLevel = level;
    }
    void Process(const short*, unsigned) override {}
    void Reset() override {}
    float GetBandDelay(std::int32_t) override { return delay; }
    void Set(int band, bool isOn) { std::atomic_ref<bool>(on[band]).store(isOn, std::memory_order_relaxed); }

    bool on[84] = {};
    float level[84] = {};
    float delay = 40.0F;  // ms
};

// A recorder on such a detector, all bands at full level.
struct Bands {
    Bands() {
        std::fill_n(detector.level, detector.numBands, 1.0F);
        recorder.Attach(&detector);
        recorder.Activate(0);
    }
    FakeDetector detector;
    TNoteRecorder recorder;
};
