#pragma once
#include <map>

#include "engine/real_time_detector.h"

// Powers by band; 0 on all others.
using Spectrum = std::map<int, float>;

// One frame on whatever stands in `energy`: a sample of silence within a block is folded in and steps
// nothing.
template <typename Detector>
void RunFrame(Detector& detector) {
    const short silence = 0;
    detector.blockCountdown = detector.blockLength;
    detector.frameCountdown = 1;
    detector.Process(&silence, sizeof silence);
}

inline void Frame(TRealTimeTS107& detector, const Spectrum& spectrum) {
    for (int band = 0; band < detector.numBands; ++band) detector.energy[band] = 0;
    for (const auto& [band, power] : spectrum) detector.energy[band] = power;
    RunFrame(detector);
}
