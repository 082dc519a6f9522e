#pragma once
#include "engine/real_time_detector.h"
#include "tests/support/standard.h"

// All that a detector of either kind holds, as bits, but for the tables of the resonators, which show in the
// states at the next block.
template <typename Detector>
std::vector<std::uint64_t> StateOf(Detector& d) {
    std::vector<std::uint64_t> state;
    const auto addOne = [&](auto number) { std::memcpy(&state.emplace_back(), &number, sizeof number); };
    const auto add = [&](const auto&... values) {
        (addOne(+values), ...);  // out of its wrapper, if it has one; a flag becomes 0 or 1
    };
    std::vector<std::int32_t> folded(static_cast<std::size_t>(2 * d.numBands));
    d.FoldedSoFar(folded.data(), folded.data() + d.numBands);
    for (const std::int32_t sum : folded) add(sum);
    add(d.blockCountdown, d.frameCountdown, d.peakLevel, d.threshold, d.peakRatio);
    add(d.tune, d.tuneLeft, d.tuneCentre, d.tuneRight);
    for (std::int32_t i = 0; i < d.numBands; ++i) {
        add(d.stateA[i], d.stateB[i], d.energy[i], d.energyPrev1[i], d.energyPrev2[i], d.dipScale[i]);
        add(d.rising[i], d.peakNow[i], d.peakOld[i], d.peakOlder[i], d.noteOn[i]);
        add(d.amplitude[i], d.levelCap[i], d.rhs[i], d.separated[i], d.eqGain[i], d.eqGainSq[i],
            d.eqAmplitude[i]);
    }
    return state;
}
