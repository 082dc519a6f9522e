// What the detector owes its host: bytes, rates, delays, resets, cuts, and the processor's control word.
#include "engine/real_time_detector.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <limits>

#include "tests/engine/detector_state.h"
#include "tests/engine/signals.h"

namespace {

// Rounds upward while it lives, as a host might.
struct RoundingUpward {
    RoundingUpward() { std::fesetround(FE_UPWARD); }
    ~RoundingUpward() { std::fesetround(FE_TONEAREST); }
    RoundingUpward(const RoundingUpward&) = delete;
    RoundingUpward& operator=(const RoundingUpward&) = delete;
};

bool DenormalsLive() {
    volatile float small = std::numeric_limits<float>::min();
    small = small / 2;
    return small != 0;
}

// Counts frames, and how often the host's arithmetic was not the host's.
class Listener : public INoteHandler {
public:
    void Attach(INoteDetector*) override {}
    void OnFrame() override {
        ++frames;
        if (std::fegetround() != FE_UPWARD || std::fetestexcept(FE_ALL_EXCEPT) != 0 || !DenormalsLive())
            ++foreign;
        std::feclearexcept(FE_ALL_EXCEPT);
    }
    int frames = 0, foreign = 0;
};

}  // namespace

TEST(RealTimeDetector, OnlyWholeSamplesCount) {
    TRealTimeTS107 detector(44100, 45, 84);
    const DetectorState before = AnalysisOf(detector, false);
    const short samples[] = {30000, -30000};
    detector.Process(samples, 0);
    detector.Process(samples, 1);
    EXPECT_EQ(Difference(AnalysisOf(detector, false), before), "");
    detector.Process(samples, 3);
    EXPECT_EQ(detector.blockCountdown, 10);
    EXPECT_EQ(detector.frameCountdown, 440);
    EXPECT_EQ(AccumulatorsOf(detector).re[45],
              Tap(detector, detector.tapsRe, 45, 9) * 30000);  // the oldest of 11 samples: p^10
}

TEST(RealTimeDetector, DelayIsThreeFramesAnd10MsPlusTheBandsOwn) {
    TRealTimeTS107 detector(44100, 45, 84);
    EXPECT_FLOAT_EQ(detector.GetBaseDelay(), 40);
    EXPECT_FLOAT_EQ(detector.GetBandDelay(83), 40);
    // Per band below the top: 1.11565 / 84 / 0.02 = 0.664077 ms.
    EXPECT_NEAR(detector.GetBandDelay(45), 40 + 38 * 0.664077, 1e-3);  // 65.2 ms
    EXPECT_NEAR(detector.GetBandDelay(0), 40 + 83 * 0.664077, 1e-3);   // 95.1 ms
    detector.SetSampleRate(22050);                                     // frames of 220 samples, not 220.5
    EXPECT_FLOAT_EQ(detector.GetBaseDelay(), 220 * 1000.0F / 22050 * 3 + 10);
}

TEST(RealTimeDetector, ResetForgetsTheSoundAndKeepsTheSettings) {
    TRealTimeTS107 detector(44100, 45, 84), fresh(44100, 45, 84);
    detector.SetEqualizerEnabled(true);
    detector.SetBandGain(40, 0.5F);
    Play(detector, Music(44100, 0.3, 30));
    ASSERT_NE(detector.tune, 0);  // the tracker was at work
    const DetectorState settings = SettingsOf(detector);
    detector.Reset();
    EXPECT_EQ(Difference(SettingsOf(detector), settings), "");
    EXPECT_EQ(Difference(AnalysisOf(detector, false), AnalysisOf(fresh, false)), "");
}

TEST(RealTimeDetector, ANewRateDropsTheGainsAndKeepsAllOtherSettings) {
    TRealTimeTS107 changed(44100, 45, 84), fresh(96000, 45, 84);
    for (TRealTimeTS107* detector : {&changed, &fresh}) {
        detector->SetEqualizerEnabled(true);
        detector->SetMonoEnabled(true);
        detector->SetFloorDb(-35);
        detector->SetRelativeThreshold(0.13F);
        detector->SetBandwidthAndTune(0.03F, 0.4F);
        detector->SetTuningEnabled(false);
    }
    changed.SetBandGain(40, 0);
    Play(changed, Music(44100, 0.1));
    changed.SetSampleRate(96000);
    EXPECT_EQ(changed.eqGain[40], 1);
    EXPECT_EQ(Difference(SettingsOf(changed), SettingsOf(fresh)), "");
    // All but the tuning sums: those of `fresh` were seeded at its construction, before its bandwidth was
    // set.
    fresh.Reset();
    EXPECT_EQ(Difference(AnalysisOf(changed, false), AnalysisOf(fresh, false)), "");
}

TEST(RealTimeDetector, TuningSumsAreSeededOnlyWhenTheTrackerIsSwitchedOn) {
    TRealTimeTS107 detector(44100, 45, 84);
    const float seed = detector.tuneCentre;
    EXPECT_NEAR(seed, 1 / (1 - 0.2 / 0.21), 1e-4);  // the sum of a steady 1 at 200 ms and 10 ms frames: 21
    EXPECT_EQ(detector.tuneLeft, seed * 0.5F * detector.peakRatio);
    detector.tuneCentre = 7;
    detector.SetTuningEnabled(true);  // was on
    detector.SetTuningEnabled(false);
    EXPECT_EQ(detector.tuneCentre, 7);
    detector.SetTuningEnabled(true);
    EXPECT_EQ(detector.tuneCentre, seed);
}

TEST(RealTimeDetector, HandlerIsToldOncePerFrameAndMayBeMissing) {
    Listener listener;
    TRealTimeTS107 detector(44100, 45, 84);
    Play(detector, Audio(1323, 100));  // three frames
    EXPECT_EQ(detector.frameCountdown, 441);
    detector.handler = &listener;
    Play(detector, Audio(440, 100));
    EXPECT_EQ(listener.frames, 0);
    Play(detector, Audio(3088, 100));  // 7 frames and the sample that was missing
    EXPECT_EQ(listener.frames, 8);
}

// The control word is the host's: the handler and the code after Process must find rounding, sticky flags and
// denormals as the host left them, and the host's rounding must not reach the analysis.
TEST(RealTimeDetector, ArithmeticOfHostAndDetectorDoNotMeet) {
    const Audio audio = Music(44100, 0.4, 30);
    TRealTimeTS107 usual(44100, 45, 84), odd(44100, 45, 84);
    Play(usual, audio);
    ASSERT_NE(usual.tune,
              0);  // the tables were rebuilt on the way, and that by the detector's arithmetic too

    Listener listener;
    odd.handler = &listener;
    {
        const RoundingUpward host;
        std::feclearexcept(FE_ALL_EXCEPT);
        Play(odd, audio);
        EXPECT_EQ(std::fegetround(), FE_UPWARD);
        EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);
        EXPECT_TRUE(DenormalsLive());
    }
    EXPECT_EQ(listener.frames, 40);
    EXPECT_EQ(listener.foreign, 0);
    EXPECT_EQ(Difference(usual, odd), "");
}
