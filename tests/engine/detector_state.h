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
struct StateWord {
    const char* name;
    int index;
    std::uint64_t bits;
};
using DetectorState = std::vector<StateWord>;

template <typename Value>
std::uint64_t BitsOf(const Value& value) {
    const auto number = +value;  // out of its wrapper, if it has one; a flag becomes 0 or 1
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof number);
    return bits;
}

// The two detectors' arrays differ in the type of their index.
template <typename Array>
void Add(DetectorState& state, const char* name, const Array& array, int count) {
    for (int index = 0; index < count; ++index) {
        if constexpr (requires { array.Data(); })
            state.push_back({name, index, BitsOf(array[index])});
        else
            state.push_back({name, index, BitsOf(array[static_cast<std::size_t>(index)])});
    }
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

#define FIELD(name) state.push_back({#name, 0, BitsOf(d.name)})
#define ARRAY(name) Add(state, #name, d.name, d.numBands)

// The tables of the resonators are not among it: whatever they hold shows in the states at the next block.
template <typename Detector>
DetectorState StateOf(const Detector& d) {
    DetectorState state;
    FIELD(blockCountdown), FIELD(frameCountdown);
    Add(state, "accRe and accIm", AccumulatorsOf(d), 2 * d.numBands);
    ARRAY(stateA), ARRAY(stateB), ARRAY(energy), ARRAY(energyPrev1), ARRAY(energyPrev2), ARRAY(dipScale);
    ARRAY(rising), ARRAY(peakNow), ARRAY(peakOld), ARRAY(peakOlder), ARRAY(noteOn), FIELD(peakRatio);
    FIELD(tune), FIELD(tuneLeft), FIELD(tuneCentre), FIELD(tuneRight);
    ARRAY(amplitude), ARRAY(levelCap), ARRAY(rhs), ARRAY(separated);
    ARRAY(eqGain), ARRAY(eqGainSq), ARRAY(eqAmplitude), FIELD(peakLevel), FIELD(threshold);
    return state;
}

#undef FIELD
#undef ARRAY

// Empty if the detectors are the same bit for bit, or else the first field and element that differ.
template <typename One, typename Other>
std::string Difference(const One& one, const Other& other) {
    const DetectorState state = StateOf(one), otherState = StateOf(other);
    if (state.size() != otherState.size()) return "unlike numbers of bands";
    for (std::size_t word = 0; word < state.size(); ++word) {
        const auto& [name, index, bits] = state[word];
        if (bits == otherState[word].bits) continue;
        std::ostringstream text;
        text << name << '[' << index << "]: " << std::hex << bits << " and " << otherState[word].bits;
        return text.str();
    }
    return {};
}

// One frame on whatever stands in `energy`: a sample of silence within a block is folded in and steps
// nothing.
template <typename Detector>
void RunFrame(Detector& detector) {
    const short silence = 0;
    detector.blockCountdown = detector.blockLength;
    detector.frameCountdown = 1;
    detector.Process(&silence, sizeof silence);
}
