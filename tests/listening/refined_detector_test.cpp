// From levels to notes: the features, the picker against a simpler model, and the whole ear on a sound.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <utility>

#include "listening/refined_detector.h"
#include "tests/engine/signals.h"

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

// What a handler sees of an ear: every change of a flag, and how far back it belongs.
struct Change {
    std::int64_t frame;
    std::int32_t band;
    bool on;
    float delay;
    bool operator==(const Change&) const = default;
};

struct Listener : INoteHandler {
    void Attach(INoteDetector* attached) override { detector = attached; }
    void OnFrame() override {
        ++frame;
        for (std::int32_t band = 0; band < netBands; ++band) {
            if (detector->bandOn[band] == on[band]) continue;
            on[band] = !on[band];
            changes.push_back({frame, band, on[band], detector->GetBandDelay(band)});
        }
    }
    INoteDetector* detector = nullptr;
    std::int64_t frame = 0;
    bool on[netBands] = {};
    std::vector<Change> changes;
};

// The ear as the plug-in builds it.
struct Ears {
    explicit Ears(TRefinedDetector::Look look, int rate = 44100)
        : inner(rate, 45, netBands), refined(std::make_unique<TRefinedDetector>(inner, look)) {
        inner.SetBandwidth(0.02F);
        inner.SetTuningEnabled(false);
        inner.SetEqualizerEnabled(true);
        inner.SetRelativeThreshold(0.13F);
        inner.SetFloorDb(-35);
        inner.handler = refined.get();
        refined->handler = &listener;
        listener.Attach(refined.get());
        refined->Reset();
    }
    void Hear(const Pcm& audio, std::size_t block) {
        for (std::size_t at = 0; at < audio.size(); at += block)
            refined->Process(&audio[at], Bytes(std::min(block, audio.size() - at)));
    }
    TRealTimeTS107 inner;
    std::unique_ptr<TRefinedDetector> refined;
    Listener listener;
};

}  // namespace

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

TEST(RefinedEar, HearsTheSameHoweverTheAudioIsCut) {
    const Pcm audio = Music(44100, 3);
    Ears whole(TRefinedDetector::Look::live);
    whole.Hear(audio, audio.size());
    EXPECT_GT(whole.listener.changes.size(), 10U);
    for (const std::size_t block : {std::size_t{1}, std::size_t{64}, std::size_t{777}}) {
        Ears cut(TRefinedDetector::Look::live);
        cut.Hear(audio, block);
        EXPECT_TRUE(cut.listener.changes == whole.listener.changes) << "blocks of " << block;
    }
    whole.refined->Reset();  // forgets all of it: the same sound is heard the same again
    const std::vector<Change> first = std::exchange(whole.listener, {}).changes;
    whole.listener.Attach(whole.refined.get());
    whole.Hear(audio, 777);
    EXPECT_TRUE(whole.listener.changes == first);
}

// Each control takes away notes only: a floor above the sound, a threshold out of reach.
TEST(RefinedEar, SettingsLeaveOutWhatTheySay) {
    const auto changes = [](float floorDb, float extraThreshold) {
        Ears ears(TRefinedDetector::Look::live);
        ears.inner.SetFloorDb(floorDb);
        ears.refined->extraThreshold = extraThreshold;
        ears.Hear(Music(44100, 2), 512);
        return ears.listener.changes.size();
    };
    EXPECT_GT(changes(-35, 0), 0U);
    EXPECT_EQ(changes(10, 0), 0U);
    EXPECT_EQ(changes(-35, 16), 0U);
    EXPECT_EQ(changes(-35, std::nanf("")), 0U);
}
