// Peaks, hysteresis, threshold, mono rule and separation, frame by frame on spectra set by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <map>
#include <string>

#include "engine/real_time_detector.h"
#include "tests/engine/detector_state.h"

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

// Neighbours whose sum equals 0.8696 of the band leave it no peak: the test is strict.
TEST_F(Frames, APeakStandsAboveBothNeighboursByTheirSum) {
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

TEST_F(Frames, ALevelEqualToTheThresholdCounts) {
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
TEST_F(Frames, ADipInMonoModeBeginsTheNoteAgain) {
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
