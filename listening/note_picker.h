#pragma once
#include <cstdint>

#include "base/relaxed.h"
#include "listening/net_kernels.h"

// Turns two outputs of the net, a frame at a time, into flags: a note begins where its onset rises through a
// threshold, and ends where it has stopped sounding for two frames.
//
// What the net says of a frame it says later, of the onset `onsetBack` frames, of the sound `soundingBack`
// frames. Ends are held back until no earlier onset can come any more, so that the notes of a band never
// overlap. A note that is struck again while it sounds is off for one frame and then on again.
//
// Threads: as its owner; FramesBack [any]. Nothing is allocated.
class NotePicker {
public:
    static constexpr std::int32_t refractory = 5;  // frames after an onset in which there is no other
    static constexpr std::int32_t holdFrames = 2;  // without sound, before it is an end

    NotePicker(std::int32_t onsetBack, std::int32_t soundingBack);
    void Reset();

    // One frame: the outputs for netBands bands, and from where on each counts. Where `threshold` is never,
    // no note begins.
    static constexpr std::int32_t never = INT32_MAX;
    void Step(const std::int32_t* onset, const std::int32_t* threshold, const std::int32_t* sounding,
              std::int32_t soundingThreshold);

    bool IsOn(std::int32_t band) const { return bands[band].on; }
    // How many frames ago the last change of the band's flag was to happen.
    std::int32_t FramesBack(std::int32_t band) const { return bands[band].framesBack; }

private:
    struct Band {
        std::int32_t before;               // onset output of the last frame
        std::int32_t sinceOnset;           // frames, up to `long ago`
        Relaxed<std::int32_t> framesBack;  // see FramesBack; an output may begin on any thread
        std::int32_t framesWithout;        // sound, in a row
        std::int32_t framesToEnd;          // 0: no end has been seen
        bool on, again;                    // again: off for this frame only
    };
    void StepBand(Band& band, std::int32_t onset, std::int32_t threshold, bool sounds) const;

    std::int32_t onsetBack;
    std::int32_t deafToEnds;  // frames after an onset in which `sounding` still speaks of before
    std::int32_t endWait;     // frames from seeing an end to the flag
    Band bands[netBands];
};
