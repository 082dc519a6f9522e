// The last step of a frame: peaks and levels against the thresholds, and a hysteresis of three frames that
// turns them into notes.
#include <atomic>

#include "engine/real_time_detector.h"

namespace {

constexpr std::int32_t eight = 8;  // flags that are looked at together; arrays are padded to a multiple

}  // namespace

void TRealTimeTS107::DecideNotes() {
    const float strongest = StrongestAmplitude();
    const float floor = floorAmp;
    peakLevel = floor < strongest ? strongest : floor;
    const float relative = strongest * strongest * relativeThresholdSq;
    const float absolute = floorPower;
    threshold = relative > absolute ? relative : absolute;
    if (equalizerEnabled) WeighByEqualizer();
    ApplyHysteresis();
    if (monoEnabled) ApplyMonoRule();
}

// Of all bands, before the separation: a strong partial counts as strong here.
float TRealTimeTS107::StrongestAmplitude() {
    if (equalizerEnabled)
        for (std::int32_t i = 0; i < numBands; ++i) eqAmplitude[i] = eqGain[i] * amplitude[i];
    const float* const candidates = equalizerEnabled ? eqAmplitude.Data() : amplitude.Data();
    float strongest[eight] = {};  // of every eighth band: a maximum does not depend on the order
    for (std::int32_t i = 0; i < bandStride; i += eight)
        for (std::int32_t lane = 0; lane < eight; ++lane)
            strongest[lane] = candidates[i + lane] > strongest[lane] ? candidates[i + lane] : strongest[lane];
    for (std::int32_t lane = 1; lane < eight; ++lane)
        if (strongest[lane] > strongest[0]) strongest[0] = strongest[lane];
    return strongest[0];
}

void TRealTimeTS107::WeighByEqualizer() {
    for (std::int32_t j = 0; j < numBands; ++j)
        if (peakNow[j] || noteOn[j]) separated[j] = separated[j] * eqGainSq[j];
}

// A peak that failed the threshold moves on as no peak, and so counts against the note for two more frames.
// Band 0 and the top band have no flag, ever.
void TRealTimeTS107::ApplyHysteresis() {
    for (std::int32_t j = 0; j < numBands; ++j) {
        if (peakNow[j] && separated[j] < threshold) peakNow[j] = false;
        if (!noteOn[j] && peakOlder[j] && peakOld[j] && peakNow[j])
            SetNote(j, true);
        else if (noteOn[j] && !peakOlder[j] && !peakOld[j] && !peakNow[j])
            SetNote(j, false);
    }
}

// Keeps the lowest sounding band. A valley in its energy one frame ago, deep against the energies around
// it, is the same note played again: its flag goes off for one frame, so that the handler sees an end.
void TRealTimeTS107::ApplyMonoRule() {
    std::int32_t lowest = 0;
    while (lowest < numBands && !noteOn[lowest]) ++lowest;
    if (lowest < numBands) {
        if (retriggerEnabled) {
            const float e0 = energyPrev1[lowest];
            const float e1 = energyPrev2[lowest];
            const float e = energy[lowest];
            const float around = e + e1;
            if (e0 < e1 && e0 < e && around - 2.0F * e0 > (around + 2.0F * e0) * dipScale[lowest])
                SetNote(lowest, false);
        }
        for (std::int32_t j = lowest + 1; j < numBands; ++j)
            if (noteOn[j]) SetNote(j, false);
    }
    for (std::int32_t j = 1; j < numBands - 1; ++j) {
        energyPrev2[j] = energyPrev1[j];
        energyPrev1[j] = energy[j];
    }
}

// Another thread may look at a flag at any time, so a change is an atomic store; the detector's own reads
// need not be.
void TRealTimeTS107::SetNote(std::int32_t band, bool on) {
    std::atomic_ref<bool>(noteOn[band]).store(on, std::memory_order_relaxed);
}
