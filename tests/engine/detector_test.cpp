// What theory says of the detector: frames on spectra set by hand, delays, levels and the grid.
#include <gtest/gtest.h>

#include <cfenv>
#include <initializer_list>
#include <map>
#include <string>

#include "engine/real_time_detector.h"
#include "tests/engine/detector_state.h"
#include "tests/engine/signals.h"

namespace {

using Spectrum = std::map<int, float>;  // powers by band; 0 on all others

void Frame(TRealTimeTS107& detector, const Spectrum& spectrum) {
    for (int band = 0; band < detector.numBands; ++band) detector.energy[band] = 0;
    for (const auto& [band, power] : spectrum) detector.energy[band] = power;
    RunFrame(detector);
}

struct Frames : testing::Test {
    Frames() { detector.SetTuningEnabled(false); }

    // One frame per letter: 'p' a peak on `band`, '-' silence. Returns noteOn after each, '1' or '0'.
    std::string Flags(const std::string& frames, int band = 45) {
        std::string flags;
        for (const char frame : frames) {
            Frame(detector, frame == 'p' ? Spectrum{{band, 1.0F}} : Spectrum{});
            flags += detector.noteOn[band] ? '1' : '0';
        }
        return flags;
    }
    // Checks that all other bands hold 0.
    void ExpectNothingBut(std::initializer_list<int> bands) {
        for (const int band : bands) detector.separated[band] = 0;
        for (int band = 0; band < detector.numBands; ++band) EXPECT_EQ(detector.separated[band], 0) << band;
    }
    TRealTimeTS107 detector{44100, 45, 84};
};

// Powers of the default template's partials: 0.75^2, 0.5^2, 0.25^2.
constexpr float A = 0.5625F, B = 0.25F, C = 0.0625F;

Spectrum NoteOn(int band) {
    return {{band, 1.0F}, {band + 12, A}, {band + 19, B}, {band + 24, C}};
}

}  // namespace

TEST_F(Frames, ThreePeaksBeginANoteAndThreeGapsEndIt) {
    EXPECT_EQ(Flags("ppp---"), "001110");
    EXPECT_EQ(Flags("pp-ppp-"), "0000011");
    EXPECT_EQ(Flags("-p--p---"), "11111110");  // on from above; two gaps at most, then three
    EXPECT_EQ(Flags("p-p-pp-pp-"), "0000000000");
}

TEST_F(Frames, ANoteTakesItsPartialsWithIt) {
    Frame(detector, NoteOn(30));
    EXPECT_FLOAT_EQ(detector.levelCap[30], 1);
    EXPECT_NEAR(detector.separated[30], 0.78, 0.005);
    ExpectNothingBut({30});
}

// Two notes a fifth apart share band 49: the third partial of 30 and the second of 37.
TEST_F(Frames, TwoNotesThatShareAPartialBothStand) {
    Spectrum both = NoteOn(30);
    for (const auto& [band, power] : NoteOn(37)) both[band] += power;
    Frame(detector, both);
    EXPECT_NEAR(detector.separated[30], 0.76, 0.005);
    EXPECT_NEAR(detector.separated[37], 0.73, 0.005);
    ExpectNothingBut({30, 37});
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

TEST(RealTimeDetector, TheHandlerIsCalledOncePerFrameAndMayBeMissing) {
    struct : INoteHandler {
        void Attach(INoteDetector*) override {}
        void OnFrame() override { ++frames; }
        int frames = 0;
    } counter;
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
