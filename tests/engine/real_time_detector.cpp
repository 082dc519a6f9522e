// What the detector owes its host: levels and a grid as told, delays, frames, and the processor's control
// word.
#include "engine/real_time_detector.h"

#include <gtest/gtest.h>

#include <cfenv>

#include "tests/engine/detector_state.h"
#include "tests/engine/signals.h"

namespace {

class FrameCounter : public INoteHandler {
public:
    void Attach(INoteDetector*) override {}
    void OnFrame() override { ++frames; }
    int frames = 0;
};

}  // namespace

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

TEST(RealTimeDetector, HandlerIsToldOncePerFrameAndMayBeMissing) {
    FrameCounter counter;
    TRealTimeTS107 detector(44100, 45, 84);
    Play(detector, Audio(1323, 100));  // three frames
    detector.handler = &counter;
    Play(detector, Audio(440, 100));
    EXPECT_EQ(counter.frames, 0);
    Play(detector, Audio(3088, 100));  // 7 frames and the sample that was missing
    EXPECT_EQ(counter.frames, 8);
}

TEST(RealTimeDetector, TheHostsRoundingDoesNotReachTheAnalysis) {
    const Audio audio = Music(44100, 0.4, 30);
    TRealTimeTS107 usual(44100, 45, 84);
    usual.SetBandGain(45, 0.7F);
    Play(usual, audio);
    ASSERT_NE(usual.tune, 0);  // the tables were rebuilt on the way, and that by the same arithmetic
    std::fesetround(FE_UPWARD);
    TRealTimeTS107 odd(44100, 45, 84);
    odd.SetBandGain(45, 0.7F);
    Play(odd, audio);
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(Difference(usual, odd), "");
}

// A sine of amplitude a on a band's centre reads 4 (a / 32767)^2, at every rate.
TEST(RealTimeDetector, ASteadySineReadsFourTimesItsSquaredAmplitude) {
    for (const int rate : {22050, 44100, 96000}) {
        TRealTimeTS107 detector(rate, 45, 84);
        detector.SetTuningEnabled(false);
        Play(detector, Sine(440, 32767, rate, 0.5));
        EXPECT_NEAR(detector.energy[45], 4.0, 0.05) << rate;
        for (const int next : {44, 46}) EXPECT_NEAR(detector.energy[next], 0.43, 0.02) << rate;
        for (const int far : {43, 47}) EXPECT_NEAR(detector.energy[far], 0.12, 0.015) << rate;
    }
    TRealTimeTS107 half(44100, 45, 84);
    half.SetTuningEnabled(false);
    Play(half, Sine(BandFrequency(30), 32767 / 2.0, 44100, 1.0));
    EXPECT_NEAR(half.energy[30], 1.0, 0.02);
    EXPECT_TRUE(half.noteOn[30]);
}

// The grid follows a tone that lies beside it: 30 cents sharp, and `tune` rises towards 0.3.
TEST(RealTimeDetector, TheGridFollowsATone) {
    TRealTimeTS107 sharp(44100, 45, 84), flat(44100, 45, 84);
    Play(sharp, Sine(BandFrequency(45.3), 20000, 44100, 2.5));
    Play(flat, Sine(BandFrequency(44.7), 20000, 44100, 2.5));
    EXPECT_NEAR(sharp.tune, 0.3, 0.05);
    EXPECT_NEAR(flat.tune, -0.3, 0.05);
}
