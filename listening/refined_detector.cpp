#include "listening/refined_detector.h"

#include <algorithm>
#include <atomic>
#include <cassert>

#include "base/float_environment.h"
#include "base/truncate.h"

namespace {

// The plug-in's initial threshold relative to the strongest band, at which the net's own threshold holds, and
// the logits that a whole unit of it makes. Chosen so that the whole travel of the control goes from a few
// more notes than played to the surest alone.
constexpr float usualRelativeThreshold = 0.13F;
constexpr float logitsPerRelativeThreshold = 6.0F;
// The net hears far below the floor of the inner detector, so that one counts this many times: from 0 dB down
// to -100 dB.
constexpr float floorDepth = 2.5F;
// One logit for each halving of a band's gain, which is two octaves of power.
constexpr std::int32_t stepsPerGainLogit = levelStepsPerOctave;
constexpr float mostLogits = 16.0F;  // beyond which nothing changes any more

EarNet::Output OnsetOf(TRefinedDetector::Look look) {
    return look == TRefinedDetector::Look::live ? EarNet::onset50 : EarNet::onset80;
}

NotePicker PickerOf(EarNet::Output onset) {
    return {EarNet::framesBack[onset], EarNet::framesBack[EarNet::sounding40]};
}

// NaN, which a host may set, counts as the most: no note.
std::int32_t Units(EarNet::Output output, float logits) {
    const float cut = logits < mostLogits ? std::max(logits, -mostLogits) : mostLogits;
    return TruncateToInt32(cut * static_cast<float>(EarNet::UnitsPerLogit(output)));
}

}  // namespace

TRefinedDetector::TRefinedDetector(TRealTimeTS107& newInner, Look look, const NetKernels& kernels)
    : inner(newInner), onset(OnsetOf(look)), net(kernels), picker(PickerOf(onset)) {
    assert(inner.numBands == netBands);
    numBands = netBands;
    referenceBand = inner.referenceBand;
    bandOn = flags;
    bandLevel = powers;
    sampleRate = inner.sampleRate;
    frameLength = inner.frameLength;
}

void TRefinedDetector::SetLook(Look look) {
    onset = OnsetOf(look);
    picker = PickerOf(onset);
    Reset();
}

void TRefinedDetector::RateChanged() {
    sampleRate = inner.sampleRate;
    frameLength = inner.frameLength;
    Reset();
}

void TRefinedDetector::Reset() {
    inner.Reset();
    Forget();
}

void TRefinedDetector::Forget() {
    features.Reset();
    net.Reset();
    picker.Reset();
    for (bool& flag : flags) std::atomic_ref<bool>(flag).store(false, std::memory_order_relaxed);
    std::fill(std::begin(powers), std::end(powers), 0.0F);
}

float TRefinedDetector::GetBandDelay(std::int32_t band) {
    const float frame = static_cast<float>(frameLength) * 1000.0F / static_cast<float>(sampleRate);
    return static_cast<float>(picker.FramesBack(band)) * frame;
}

void TRefinedDetector::OnFrame() {
    {
        const FlushToZero arithmetic;
        Hear();
    }
    if (handler != nullptr) handler->OnFrame();
}

void TRefinedDetector::Hear() {
    net.Step(features.Step(inner.energy.Data()));
    FindThresholds();
    picker.Step(net.Get(onset), thresholds, net.Get(EarNet::sounding40),
                EarNet::Threshold(EarNet::sounding40));
    for (std::int32_t band = 0; band < netBands; ++band) {
        const bool on = picker.IsOn(band);
        if (flags[band] != on) std::atomic_ref<bool>(flags[band]).store(on, std::memory_order_relaxed);
        // Of a note that sounds, all its power: what the inner detector leaves of it may be nothing.
        powers[band] = on ? inner.energy[band] : inner.separated[band];
    }
}

void TRefinedDetector::FindThresholds() {
    const float logits =
        extraThreshold + (inner.relativeThreshold - usualRelativeThreshold) * logitsPerRelativeThreshold;
    const std::int32_t base = EarNet::Threshold(onset) + Units(onset, logits);
    const std::int32_t floor = TruncateToInt32(inner.floorDb * floorDepth * static_cast<float>(stepsPerDb));
    const std::int32_t unitsPerLogit = EarNet::UnitsPerLogit(onset);
    const std::int32_t* const levels = features.Levels();
    for (std::int32_t band = 0; band < netBands; ++band) {
        thresholds[band] = levels[band] < floor ? NotePicker::never : base;
        const float gain = inner.eqGain[band];
        if (gain == 1.0F || !inner.equalizerEnabled) continue;
        if (!(gain > 0.0F)) {
            thresholds[band] = NotePicker::never;
        } else if (thresholds[band] != NotePicker::never) {
            const std::int64_t steps = -LevelOf(gain);
            thresholds[band] += static_cast<std::int32_t>(steps * unitsPerLogit / stepsPerGainLogit);
        }
    }
}
