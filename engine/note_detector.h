#pragma once
#include <atomic>
#include <cstdint>

#include "base/relaxed.h"

class INoteDetector;

// Takes a mono stream of signed 16-bit samples.
class IWaveProcessor {
public:
    virtual void Process(const short* samples, unsigned bytes) = 0;
    virtual ~IWaveProcessor() = default;
};

// Notified once per frame that the detector's flags and levels are fresh.
//
// Threads: Attach before the first sample; OnFrame [audio], inside Process.
class INoteHandler {
public:
    virtual void Attach(INoteDetector* detector) = 0;
    virtual void OnFrame() = 0;
    virtual ~INoteHandler() = default;
};

// What a note handler sees of a detector: its dimensions and, per band, one flag and one level.
// Band i stands for MIDI note 69 + i - referenceBand.
//
// Threads: the fields are fixed while audio runs, `handler` included; all may be read from [any]. The
// elements of `bandOn` and `bandLevel` are written by [audio] inside Process, and by whoever may call Reset
// while no Process runs. Another thread may read a flag at any time through BandIsOn; levels are for the
// audio thread.
class INoteDetector : public IWaveProcessor {
public:
    virtual void Reset() = 0;                           // forgets what was heard; settings stay
    virtual float GetBandDelay(std::int32_t band) = 0;  // ms from a note's begin in the sound to its flag

    std::int32_t numBands = 0;          // fixed after construction
    Relaxed<std::int32_t> sampleRate;   // Hz; changes only while no Process runs
    Relaxed<std::int32_t> frameLength;  // samples between two frames; changes with the rate
    std::int32_t referenceBand = 0;     // the band of 440 Hz
    bool* bandOn = nullptr;             // numBands flags: the band's note sounds
    float* bandLevel = nullptr;         // numBands powers, at least 0
    INoteHandler* handler = nullptr;    // not owned; may be null
};

// The flag of a band for a thread that may not be the detector's.
inline bool BandIsOn(bool* bandOn, std::int32_t band) {
    return std::atomic_ref<bool>(bandOn[band]).load(std::memory_order_relaxed);
}
