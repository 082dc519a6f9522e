// Peaks, hysteresis, threshold, mono rule and tuning, frame by frame on spectra set by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "engine/real_time_detector.h"
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
