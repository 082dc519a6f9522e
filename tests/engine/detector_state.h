#pragma once
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "engine/real_time_detector.h"
#include "tests/engine/plain_detector.h"

// Everything that a detector holds, as bits, so that two detectors can be compared and the first difference
// be named. Works for both detectors, which share their fields' names.
using DetectorState = std::vector<std::pair<std::string, std::vector<std::uint64_t>>>;

inline std::uint64_t BitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}
inline std::uint64_t BitsOf(double value) {
    return std::bit_cast<std::uint64_t>(value);
}
inline std::uint64_t BitsOf(std::int32_t value) {
    return static_cast<std::uint32_t>(value);
}
inline std::uint64_t BitsOf(bool value) {
    return value ? 1 : 0;
}

// The two detectors' arrays differ in the type of their index.
template <typename Array>
auto Element(const Array& array, int index) {
    if constexpr (requires { array.Data(); })
        return array[index];
    else
        return array[static_cast<std::size_t>(index)];
}
inline std::int32_t Tap(const PlainDetector&, const PlainDetector::Taps& taps, int band, int row) {
    return taps[static_cast<std::size_t>(band)][static_cast<std::size_t>(row)];
}
inline std::int32_t Tap(const TRealTimeTS107& detector, const TAutoArray<std::int32_t>& taps, int band,
                        int row) {
    return taps[row * detector.bandStride + band];
}

// Tables, gains and every other setting: what no Reset changes.
template <typename Detector>
DetectorState SettingsOf(const Detector& d) {
    DetectorState state;
    const auto array = [&](const char* name, const auto& elements, int count) {
        auto& bits = state.emplace_back(name, std::vector<std::uint64_t>()).second;
        for (int index = 0; index < count; ++index) bits.push_back(BitsOf(Element(elements, index)));
    };
    const auto taps = [&](const char* name, const auto& rows) {
        auto& bits = state.emplace_back(name, std::vector<std::uint64_t>()).second;
        for (int band = 0; band < d.numBands; ++band)
            for (int row = 0; row < d.blockLength - 1; ++row) bits.push_back(BitsOf(Tap(d, rows, band, row)));
    };
    const int n = d.numBands;
#define FIELD(name) state.push_back({#name, {BitsOf(d.name)}})
#define ARRAY(name) array(#name, d.name, n)
    FIELD(numBands), FIELD(sampleRate), FIELD(frameLength), FIELD(referenceBand);
    FIELD(dipFactor), FIELD(tuningEnabled), FIELD(harmonicsEnabled), FIELD(equalizerEnabled),
        FIELD(monoEnabled);
    FIELD(retriggerEnabled), FIELD(harmonicBase), FIELD(harmonic2), FIELD(harmonic3), FIELD(harmonic4);
    FIELD(peakSlack), FIELD(floorDb), FIELD(relativeThreshold), FIELD(relativeThresholdSq), FIELD(tuneSeed);
    FIELD(bandwidth), FIELD(tune), FIELD(blockLength), FIELD(blockDecay), FIELD(frameDecay), FIELD(refOmega);
    FIELD(gainScale), FIELD(peakRatio), FIELD(floorAmp), FIELD(floorPower);
    ARRAY(feedAA), ARRAY(feedAB), ARRAY(feedBA), ARRAY(feedBB), ARRAY(inputAR), ARRAY(inputAI),
        ARRAY(inputBR);
    ARRAY(inputBI), ARRAY(tapZero), ARRAY(dipScale), ARRAY(eqGain), ARRAY(eqGainSq);
    array("harmonicCoefficients", d.harmonicCoefficients, 26);
    array("tapPowersRe", d.tapPowersRe, d.blockLength - 1),
        array("tapPowersIm", d.tapPowersIm, d.blockLength - 1);
    taps("tapsRe", d.tapsRe), taps("tapsIm", d.tapsIm);
    return state;
}

// The running block's accumulators; the detector keeps samples and folds them later.
struct Accumulators {
    std::vector<std::int32_t> re, im;
};
inline Accumulators AccumulatorsOf(const PlainDetector& d) {
    return {d.accRe, d.accIm};
}
inline Accumulators AccumulatorsOf(const TRealTimeTS107& d) {
    const auto bands = static_cast<std::size_t>(d.numBands);
    Accumulators folded{std::vector<std::int32_t>(bands), std::vector<std::int32_t>(bands)};
    d.FoldedSoFar(folded.re.data(), folded.im.data());
    return folded;
}

// What was heard so far. The arrays that only a frame writes are left out before the first.
template <typename Detector>
DetectorState AnalysisOf(const Detector& d, bool framesRan = true) {
    DetectorState state;
    const auto array = [&](const char* name, const auto& elements, int first) {
        auto& bits = state.emplace_back(name, std::vector<std::uint64_t>()).second;
        for (int index = first; index < d.numBands; ++index) bits.push_back(BitsOf(Element(elements, index)));
    };
#undef ARRAY
#define ARRAY(name) array(#name, d.name, 0)
    FIELD(blockCountdown), FIELD(frameCountdown), FIELD(tuneLeft), FIELD(tuneCentre), FIELD(tuneRight);
    const Accumulators folded = AccumulatorsOf(d);
    array("accRe", folded.re, 0), array("accIm", folded.im, 0);
    ARRAY(stateA), ARRAY(stateB), ARRAY(energy), ARRAY(energyPrev1);
    ARRAY(energyPrev2), ARRAY(separated), ARRAY(amplitude), ARRAY(eqAmplitude);
    ARRAY(peakNow), ARRAY(peakOld), ARRAY(peakOlder), ARRAY(noteOn);
    if (!framesRan) return state;
    FIELD(peakLevel), FIELD(threshold), ARRAY(levelCap), ARRAY(rhs);
    array("rising", d.rising, 1);  // nobody writes the lowest
#undef FIELD
#undef ARRAY
    return state;
}

// Empty if the states are the same bit for bit, or else the first field and element that differ.
inline std::string Difference(const DetectorState& one, const DetectorState& other) {
    if (one.size() != other.size()) return "unlike states";
    for (std::size_t field = 0; field < one.size(); ++field) {
        const auto& [name, bits] = one[field];
        const auto& otherBits = other[field].second;
        if (bits.size() != otherBits.size()) return name + ": unlike lengths";
        for (std::size_t index = 0; index < bits.size(); ++index) {
            if (bits[index] == otherBits[index]) continue;
            std::ostringstream text;
            text << name << '[' << index << "]: " << std::hex << bits[index] << " and " << otherBits[index];
            return text.str();
        }
    }
    return {};
}

template <typename One, typename Other>
std::string Difference(const One& one, const Other& other, bool framesRan = true) {
    const std::string settings = Difference(SettingsOf(one), SettingsOf(other));
    return settings.empty() ? Difference(AnalysisOf(one, framesRan), AnalysisOf(other, framesRan)) : settings;
}
