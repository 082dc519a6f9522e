// Levels, and the picker, frame by frame, against a simpler model that sees all of a band's outputs at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "listening/refined_detector.h"

namespace {

using Frames = std::vector<int>;
using Notes = std::vector<std::pair<int, int>>;  // begin and end, in frames; what ends later ends here:
constexpr int lastEnd = 380;

// The notes of one band from all of its outputs at once: an onset where the output rises through 0, five
// frames apart at least; an end at the first two frames without sound, or a frame before the next onset.
Notes PickWhole(const Frames& onset, const Frames& sounding, int onsetBack, int soundingBack) {
    Frames begins;
    for (std::size_t t = 1; t < onset.size(); ++t)
        if (onset[t] >= 0 && onset[t - 1] < 0 && (begins.empty() || static_cast<int>(t) - begins.back() >= 5))
            begins.push_back(static_cast<int>(t));
    Notes notes;
    for (std::size_t i = 0; i < begins.size(); ++i) {
        const int last = i + 1 < begins.size() ? begins[i + 1] - 1 - onsetBack : lastEnd;
        int t = std::max(begins[i], begins[i] - onsetBack + soundingBack + 4), without = 0;
        for (; t < static_cast<int>(sounding.size()) && without < 2; ++t)
            without = sounding[static_cast<std::size_t>(t)] >= 0 ? 0 : without + 1;
        const int end = without == 2 ? t - 2 - soundingBack : lastEnd;
        notes.emplace_back(begins[i] - onsetBack, std::min({end, last, lastEnd}));
    }
    return notes;
}

Notes PickByFrames(const Frames& onset, const Frames& sounding, int onsetBack, int soundingBack) {
    constexpr int band = 40;
    NotePicker picker(onsetBack, soundingBack);
    std::vector<std::int32_t> onsets(netBands, -1), sounds(netBands, -1), thresholds(netBands, 0);
    Notes notes;
    bool on = false;
    for (std::size_t t = 0; t < onset.size(); ++t) {
        onsets[band] = onset[t], sounds[band] = sounding[t];
        picker.Step(onsets.data(), thresholds.data(), sounds.data(), 0);
        if (picker.IsOn(band) == on) continue;
        const int frame = static_cast<int>(t) - picker.FramesBack(band);
        if (on = !on; on)
            notes.emplace_back(frame, lastEnd);
        else
            notes.back().second = std::min(frame, lastEnd);
    }
    return notes;
}

}  // namespace

TEST(RefinedEar, LevelsAreLogarithmsToAThousandthOfADecibel) {
    for (int step = 0; step < 15900; ++step) {
        const float power = std::pow(10.0F, static_cast<float>(step) / 1000 - 13.95F);
        ASSERT_NEAR(LevelOf(power) / stepsPerDb, 10 * std::log10(static_cast<double>(power)), 0.001);
    }
    for (const float silent : {0.0F, 1e-30F, std::nanf("")})
        EXPECT_NEAR(LevelOf(silent) / stepsPerDb, -140, 0.001);
}

TEST(RefinedEar, PickingByFramesFindsTheNotesOfPickingInTheWhole) {
    std::mt19937 random(1);
    for (const int back : {5, 8})
        for (int run = 0; run < 300; ++run) {
            Frames onset, sounding;
            int o = -1, s = -1;
            for (int t = 0; t < 400; ++t) {
                if (t < 390 && random() % 7 == 0) o = -1 - o;
                if (random() % (1 + static_cast<unsigned>(run) % 40) == 0) s = -1 - s;
                onset.push_back(t == 0 ? -1 : o);
                sounding.push_back(s);
            }
            ASSERT_EQ(PickByFrames(onset, sounding, back, 4), PickWhole(onset, sounding, back, 4)) << run;
        }
}
