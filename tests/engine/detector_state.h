#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "engine/real_time_detector.h"
#include "tests/engine/plain_detector.h"

// Everything that a detector holds, as bits, so that two detectors can be compared and the first difference
// be named. Works for both detectors, which share their fields' names.
using DetectorState = std::vector<std::pair<std::string, std::vector<std::uint64_t>>>;

template <typename Value>
std::uint64_t BitsOf(const Value& value) {
    const auto number = +value;  // out of its wrapper, if it has one; a flag becomes 0 or 1
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof number);
    return bits;
}

// The two detectors' arrays differ in the type of their index.
template <typename Array>
std::vector<std::uint64_t> BitsOf(const Array& array, int count) {
    std::vector<std::uint64_t> bits;
    for (int index = 0; index < count; ++index) {
        if constexpr (requires { array.Data(); })
            bits.push_back(BitsOf(array[index]));
        else
            bits.push_back(BitsOf(array[static_cast<std::size_t>(index)]));
    }
    return bits;
}

// Band by band.
inline std::vector<std::uint64_t> TapBits(const PlainDetector& detector, const PlainDetector::Taps& taps) {
    std::vector<std::uint64_t> bits;
    for (std::size_t band = 0; band < static_cast<std::size_t>(detector.numBands); ++band)
        for (const std::int32_t tap : taps[band]) bits.push_back(BitsOf(tap));
    return bits;
}
inline std::vector<std::uint64_t> TapBits(const TRealTimeTS107& detector,
                                          const TAutoArray<std::int32_t>& taps) {
    std::vector<std::uint64_t> bits;
    for (int band = 0; band < detector.numBands; ++band)
        for (int row = 0; row < detector.blockLength - 1; ++row)
            bits.push_back(BitsOf(taps[row * detector.bandStride + band]));
    return bits;
}

#define FIELD(name) state.push_back({#name, {BitsOf(d.name)}})
#define ARRAY(name) state.push_back({#name, BitsOf(d.name, d.numBands)})

// Tables, gains and every other setting: what no Reset changes.
template <typename Detector>
DetectorState SettingsOf(const Detector& d) {
    DetectorState state;
    FIELD(numBands), FIELD(sampleRate), FIELD(frameLength), FIELD(referenceBand), FIELD(dipFactor);
    FIELD(tuningEnabled), FIELD(harmonicsEnabled), FIELD(equalizerEnabled), FIELD(monoEnabled);
    FIELD(retriggerEnabled), FIELD(harmonicBase), FIELD(harmonic2), FIELD(harmonic3), FIELD(harmonic4);
    FIELD(peakSlack), FIELD(floorDb), FIELD(relativeThreshold), FIELD(relativeThresholdSq), FIELD(tuneSeed);
    FIELD(bandwidth), FIELD(tune), FIELD(blockLength), FIELD(blockDecay), FIELD(frameDecay), FIELD(refOmega);
    FIELD(gainScale), FIELD(peakRatio), FIELD(floorAmp), FIELD(floorPower);
    ARRAY(feedAA), ARRAY(feedAB), ARRAY(feedBA), ARRAY(feedBB), ARRAY(inputAR), ARRAY(inputAI);
    ARRAY(inputBR), ARRAY(inputBI), ARRAY(tapZero), ARRAY(dipScale), ARRAY(eqGain), ARRAY(eqGainSq);
    state.push_back({"harmonicCoefficients", BitsOf(d.harmonicCoefficients, 26)});
    state.push_back({"tapPowersRe", BitsOf(d.tapPowersRe, d.blockLength - 1)});
    state.push_back({"tapPowersIm", BitsOf(d.tapPowersIm, d.blockLength - 1)});
    state.push_back({"tapsRe", TapBits(d, d.tapsRe)});
    state.push_back({"tapsIm", TapBits(d, d.tapsIm)});
    return state;
}

// The running block's accumulators, the real ones before the others; the detector keeps samples and folds
// them later.
inline std::vector<std::int32_t> AccumulatorsOf(const PlainDetector& d) {
    std::vector<std::int32_t> folded(d.accRe.begin(), d.accRe.begin() + d.numBands);
    folded.insert(folded.end(), d.accIm.begin(), d.accIm.begin() + d.numBands);
    return folded;
}
inline std::vector<std::int32_t> AccumulatorsOf(const TRealTimeTS107& d) {
    std::vector<std::int32_t> folded(static_cast<std::size_t>(2 * d.numBands));
    d.FoldedSoFar(folded.data(), folded.data() + d.numBands);
    return folded;
}

// What was heard so far.
template <typename Detector>
DetectorState AnalysisOf(const Detector& d) {
    DetectorState state;
    FIELD(blockCountdown), FIELD(frameCountdown), FIELD(tuneLeft), FIELD(tuneCentre), FIELD(tuneRight);
    state.push_back({"accRe and accIm", BitsOf(AccumulatorsOf(d), 2 * d.numBands)});
    ARRAY(stateA), ARRAY(stateB), ARRAY(energy), ARRAY(energyPrev1), ARRAY(energyPrev2);
    ARRAY(separated), ARRAY(amplitude), ARRAY(eqAmplitude);
    ARRAY(rising), ARRAY(peakNow), ARRAY(peakOld), ARRAY(peakOlder), ARRAY(noteOn);
    FIELD(peakLevel), FIELD(threshold), ARRAY(levelCap), ARRAY(rhs);
    return state;
}

#undef FIELD
#undef ARRAY

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
std::string Difference(const One& one, const Other& other) {
    const std::string settings = Difference(SettingsOf(one), SettingsOf(other));
    return settings.empty() ? Difference(AnalysisOf(one), AnalysisOf(other)) : settings;
}
