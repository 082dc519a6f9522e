// Peaks, thresholds, hysteresis, equalizer, mono rule and tuning, frame by frame on spectra set by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "engine/real_time_detector.h"
#include "tests/engine/detector_state.h"
#include "tests/engine/spectrum.h"

namespace {

struct Decision : testing::Test {
    Decision() { detector.SetTuningEnabled(false); }

    // One frame per letter: 'p' a peak on `band`, '-' silence. Returns noteOn after each, '1' or '0'.
    std::string Flags(const std::string& frames, int band = 45) {
        std::string flags;
        for (const char frame : frames) {
            Frame(detector, frame == 'p' ? Spectrum{{band, 1.0F}} : Spectrum{});
            flags += detector.noteOn[band] ? '1' : '0';
        }
        return flags;
    }
    TRealTimeTS107 detector{44100, 45, 84};
};

}  // namespace

TEST_F(Decision, ThreePeaksBeginANoteAndThreeGapsEndIt) {
    EXPECT_EQ(Flags("ppp---"), "001110");
    EXPECT_EQ(Flags("pp-ppp-"), "0000011");
    EXPECT_EQ(Flags("-p--p---"), "11111110");  // on from above; two gaps at most, then three
    EXPECT_EQ(Flags("p-p-pp-pp-"), "0000000000");
}

TEST_F(Decision, EdgeBandsAreNeverPeaks) {
    for (int frame = 0; frame < 5; ++frame) {
        Frame(detector, {{0, 1.0F}, {83, 1.0F}});
        for (const int edge : {0, 83}) EXPECT_FALSE(detector.peakNow[edge] || detector.noteOn[edge]);
    }
    EXPECT_EQ(Flags("ppp", 1), "001");
    EXPECT_EQ(Flags("ppp", 82), "001");
}

// Neighbours whose sum equals 0.8696 of the band leave it no peak: the test is strict.
TEST_F(Decision, APeakStandsAboveBothNeighboursByTheirSum) {
    const float limit = detector.peakRatio;
    Frame(detector, {{39, limit / 2}, {40, 1.0F}, {41, limit / 2}});
    EXPECT_FALSE(detector.peakNow[40]);
    Frame(detector, {{39, limit / 2}, {40, 1.0F}, {41, limit / 2 * 0.999F}});
    EXPECT_TRUE(detector.peakNow[40]);

    detector.peakSlack = 1;
    detector.SetBandwidth(0.02F);  // the sum may now reach twice the peak
    EXPECT_EQ(detector.peakRatio, 2);
    Frame(detector, {{40, 1.0F}, {41, 1.0F}});
    EXPECT_TRUE(detector.peakNow[40]);  // of equals only the lower
    EXPECT_FALSE(detector.peakNow[41]);
}

TEST_F(Decision, ALevelEqualToTheThresholdCounts) {
    detector.SetRelativeThreshold(0);
    Frame(detector, {{45, 1.0F}});
    const float level = detector.separated[45];
    detector.floorPower = level;
    Frame(detector, {{45, 1.0F}});
    EXPECT_EQ(detector.threshold, level);
    EXPECT_TRUE(detector.peakNow[45]);
    detector.floorPower = std::nextafter(level, 1.0F);
    Frame(detector, {{45, 1.0F}});
    EXPECT_FALSE(detector.peakNow[45]);
}

TEST_F(Decision, TheThresholdIsTheHigherOfFloorAndShareOfTheStrongest) {
    detector.SetFloorDb(-30);
    EXPECT_FLOAT_EQ(detector.floorPower, std::exp(-30 * 0.2302609F));  // 0.99993e-3: not quite ln 10 / 10
    EXPECT_EQ(detector.floorAmp, std::sqrt(detector.floorPower));
    detector.SetRelativeThreshold(0.5F);
    Frame(detector, {{45, 4.0F}, {80, 1.1F}});  // no partials in the top range: level = energy
    EXPECT_FLOAT_EQ(detector.threshold, 4 * 0.25F);
    EXPECT_EQ(detector.peakLevel, 2);
    EXPECT_TRUE(detector.peakNow[80]);
    // Its level is 0.0452 x 4: what counts as strongest is the amplitude before the separation.
    EXPECT_FALSE(detector.peakNow[45]);
    Frame(detector, {});
    EXPECT_EQ(detector.threshold, detector.floorPower);
    EXPECT_EQ(detector.peakLevel, detector.floorAmp);
    detector.SetFloorDb(-1000);
    EXPECT_EQ(detector.floorPower, 0);
}

TEST_F(Decision, AGainOfNothingEndsTheNoteAndTakesTheBandOutOfTheStrongest) {
    detector.SetEqualizerEnabled(true);
    detector.SetFloorDb(-35);
    ASSERT_EQ(Flags("ppp", 80), "001");
    detector.SetBandGain(80, 0);
    EXPECT_EQ(Flags("ppp", 80), "110");
    EXPECT_EQ(detector.separated[80], 0);
    EXPECT_EQ(detector.threshold, detector.floorPower);
    EXPECT_EQ(detector.energy[80], 1);  // the gain acts on the decision alone
}

TEST_F(Decision, AGainAboveOneLiftsABandAgainstTheFloorAndNotAgainstItself) {
    detector.SetEqualizerEnabled(true);
    detector.SetRelativeThreshold(0.5F);
    const Spectrum two = {{75, 1.0F}, {80, 0.3F}};
    Frame(detector, two);
    EXPECT_TRUE(detector.peakNow[75] && detector.peakNow[80]);
    detector.SetBandGain(75, 2);
    Frame(detector, two);
    EXPECT_EQ(detector.separated[75], 4);  // gain squared
    EXPECT_EQ(detector.threshold, 1);      // (2 x 1)^2 x 0.5^2
    EXPECT_TRUE(detector.peakNow[75]);
    EXPECT_FALSE(detector.peakNow[80]);

    detector.SetFloorDb(3);  // a power of 2
    Frame(detector, two);
    EXPECT_TRUE(detector.peakNow[75]);
    detector.SetBandGain(75, 1);
    Frame(detector, two);
    EXPECT_FALSE(detector.peakNow[75]);
    // Neither a peak nor on: the level stays unweighted.
    detector.SetBandGain(76, 2);
    Frame(detector, {{75, 1.0F}, {76, 0.5F}});
    EXPECT_EQ(detector.separated[76], 0.5F);
}

TEST_F(Decision, InMonoModeTheLowestNoteWinsAndTheNextTakesOverAtOnce) {
    detector.SetMonoEnabled(true);
    detector.SetRelativeThreshold(0);
    for (int frame = 0; frame < 6; ++frame) {
        Frame(detector, {{30, 1.0F}, {50, 1.0F}});
        EXPECT_EQ(detector.noteOn[30], frame >= 2);
        EXPECT_FALSE(detector.noteOn[50]);
    }
    for (int frame = 0; frame < 3; ++frame) {
        EXPECT_FALSE(detector.noteOn[50]);
        Frame(detector, {{50, 1.0F}});
    }
    EXPECT_FALSE(detector.noteOn[30]);
    EXPECT_TRUE(detector.noteOn[50]);
}

// At band 45 the dip must pass (2 - 2 e0) / (2 + 2 e0) = 0.1063, that is e0 = 0.808 between two frames of 1.
TEST_F(Decision, ADipInMonoModeBeginsTheNoteAgain) {
    const auto play = [this](float power) {
        Frame(detector, {{45, power}});
        return detector.noteOn[45];
    };
    for (const bool mono : {true, false}) {
        detector.SetMonoEnabled(mono);
        Flags("ppppp");
        EXPECT_TRUE(play(0.82F) && play(1));  // too shallow
        EXPECT_TRUE(play(0.79F));
        EXPECT_EQ(play(1), !mono);
        EXPECT_TRUE(play(1));  // the three peaks still stand
    }
    // Switched on at the valley, the history is empty, and nothing lies above e0 before it.
    EXPECT_TRUE(play(0.5F));
    detector.SetMonoEnabled(true);
    EXPECT_TRUE(play(0.4F) && play(1));
}

TEST_F(Decision, TuningMovesByAFiftiethOfTheLeanAndOnlyBeyondAHundredth) {
    const auto lean = [](float left, float right, float tune) {
        TRealTimeTS107 leaning(44100, 45, 84);
        leaning.SetBandwidthAndTune(0.02F, tune);
        leaning.tuneLeft = leaning.tuneCentre = leaning.tuneRight = 0;  // only this frame counts
        Frame(leaning, {{44, left}, {45, 1.0F}, {46, right}});
        TRealTimeTS107 rebuilt(44100, 45, 84);
        rebuilt.SetBandwidthAndTune(0.02F, leaning.tune);
        EXPECT_EQ(Difference(SettingsOf(leaning), SettingsOf(rebuilt)), "");  // the tables follow at once
        return leaning.tune;
    };
    const float hundredth = 0.01F * 0.01F;  // its root is 0.01 again
    EXPECT_EQ(lean(0, hundredth, 0.1F), 0.1F);
    EXPECT_EQ(lean(hundredth, 0, 0.1F), 0.1F);
    EXPECT_FLOAT_EQ(lean(0, 0.0004F, 0.1F), 0.1F + 0.02F * 0.02F);
    EXPECT_FLOAT_EQ(lean(0.0004F, 0, 0.1F), 0.1F - 0.02F * 0.02F);
}

TEST_F(Decision, TuningWrapsAtThreeQuartersOfASemitone) {
    detector.SetTuningEnabled(true);
    for (const float side : {1.0F, -1.0F}) {
        detector.SetBandwidthAndTune(0.02F, side * 0.74F);
        detector.tuneCentre = 0;
        detector.tuneLeft = side < 0 ? 1 / detector.frameDecay : 0;  // sums of 1 after this frame's decay
        detector.tuneRight = side > 0 ? 1 / detector.frameDecay : 0;
        Frame(detector, {{45, 1.0F}});
        EXPECT_NEAR(detector.tune, side * -0.24, 1e-6);
    }
}
