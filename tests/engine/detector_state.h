#pragma once
#include <cstring>
#include <string>
#include <vector>

#include "engine/real_time_detector.h"

// Everything that a detector holds, as bits, so that two detectors can be compared and the first difference
// be named. Works for both detectors, which share their fields' names.
struct StateWord {
    const char* name;
    std::int32_t index;
    std::uint64_t bits;
};
using DetectorState = std::vector<StateWord>;

// The tables of the resonators are not among it: whatever they hold shows in the states at the next block.
template <typename Detector>
DetectorState StateOf(const Detector& d) {
    DetectorState state;
    const auto add = [&](const char* name, std::int32_t index, const auto& value) {
        const auto number = +value;  // out of its wrapper, if it has one; a flag becomes 0 or 1
        std::uint64_t bits = 0;
        std::memcpy(&bits, &number, sizeof number);
        state.push_back({name, index, bits});
    };
    std::vector<std::int32_t> folded(static_cast<std::size_t>(2 * d.numBands));
    d.FoldedSoFar(folded.data(), folded.data() + d.numBands);
    for (const std::int32_t sum : folded) add("accRe and accIm", 0, sum);
#define FIELD(name) add(#name, 0, d.name)
#define BANDS(name) add(#name, i, d.name[i])
    FIELD(blockCountdown), FIELD(frameCountdown), FIELD(peakLevel), FIELD(threshold), FIELD(peakRatio);
    FIELD(tune), FIELD(tuneLeft), FIELD(tuneCentre), FIELD(tuneRight);
    for (std::int32_t i = 0; i < d.numBands; ++i) {
        BANDS(stateA), BANDS(stateB), BANDS(energy), BANDS(energyPrev1), BANDS(energyPrev2), BANDS(dipScale);
        BANDS(rising), BANDS(peakNow), BANDS(peakOld), BANDS(peakOlder), BANDS(noteOn);
        BANDS(amplitude), BANDS(levelCap), BANDS(rhs), BANDS(separated);
        BANDS(eqGain), BANDS(eqGainSq), BANDS(eqAmplitude);
    }
#undef FIELD
#undef BANDS
    return state;
}

// Empty if the detectors are the same bit for bit, or else the first field and element that differ.
template <typename One, typename Other>
std::string Difference(const One& one, const Other& other) {
    const DetectorState state = StateOf(one), otherState = StateOf(other);
    if (state.size() != otherState.size()) return "unlike numbers of bands";
    for (std::size_t word = 0; word < state.size(); ++word)
        if (state[word].bits != otherState[word].bits)
            return std::string(state[word].name) + '[' + std::to_string(state[word].index) + ']';
    return {};
}
