// The separation of notes from the partials of lower notes, on spectra set by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

#include "engine/real_time_detector.h"
#include "tests/engine/spectrum.h"

namespace {

// Powers of the default template's partials: 0.75^2, 0.5^2, 0.25^2.
constexpr float A = 0.5625F, B = 0.25F, C = 0.0625F;
constexpr float D4 = 1 / (1 + A * A + B * B + C * C);  // 0.72316

Spectrum NoteOn(int band) {
    return {{band, 1.0F}, {band + 12, A}, {band + 19, B}, {band + 24, C}};
}

struct Separation : testing::Test {
    // Checks that all other bands hold 0.
    void ExpectNothingBut(std::initializer_list<int> bands) {
        for (const int band : bands) detector.separated[band] = 0;
        for (int band = 0; band < detector.numBands; ++band) EXPECT_EQ(detector.separated[band], 0) << band;
    }
    TRealTimeTS107 detector{44100, 45, 84};
};

}  // namespace

// Its second partial's shortfall of H2 leaves 1 - 0.75 of the amplitude, and the fit D4 of that power.
TEST_F(Separation, ALoneSineLosesTheAmplitudeItsPartialsDoNotSupport) {
    Frame(detector, {{40, 2.0F}});
    EXPECT_FLOAT_EQ(detector.amplitude[40], std::sqrt(2.0F));
    EXPECT_FLOAT_EQ(detector.levelCap[40], 2.0F / 16);
    EXPECT_NEAR(detector.separated[40], 2 * 0.0452, 1e-4);
    EXPECT_NEAR(detector.separated[40], 2 * D4 / 16, 1e-6);
    ExpectNothingBut({40});
}

// A missing second, third or fourth partial costs 0.75, 0.5 or 0.25 of the amplitude, and only where it lies
// within the spectrum.
TEST_F(Separation, RangesEndWhereAPartialLeavesTheSpectrum) {
    const auto capOf = [this](int band, std::initializer_list<int> partials) {
        Spectrum spectrum{{band, 1.0F}};
        for (const int partial : partials) spectrum[band + partial] = 1.0F;
        Frame(detector, spectrum);
        return detector.levelCap[band];
    };
    for (const int band : {0, 59, 60, 64, 65, 71}) EXPECT_FLOAT_EQ(capOf(band, {}), 1.0F / 16) << band;
    for (const int band : {72, 83}) EXPECT_EQ(capOf(band, {}), 1.0F) << band;
    for (const int band : {0, 59, 60, 64}) EXPECT_FLOAT_EQ(capOf(band, {12}), 1.0F / 4) << band;
    for (const int band : {65, 71}) EXPECT_EQ(capOf(band, {12}), 1.0F) << band;
    for (const int band : {0, 59}) EXPECT_FLOAT_EQ(capOf(band, {12, 19}), 9.0F / 16) << band;
    for (const int band : {60, 64}) EXPECT_EQ(capOf(band, {12, 19}), 1.0F) << band;
}

TEST_F(Separation, ANoteTakesItsPartialsWithIt) {
    Frame(detector, NoteOn(30));
    EXPECT_FLOAT_EQ(detector.levelCap[30], 1);
    EXPECT_NEAR(detector.separated[30], 0.78, 0.005);
    ExpectNothingBut({30});
}

// Two notes a fifth apart share band 49: the third partial of 30 and the second of 37.
TEST_F(Separation, TwoNotesThatShareAPartialBothStand) {
    Spectrum both = NoteOn(30);
    for (const auto& [band, power] : NoteOn(37)) both[band] += power;
    Frame(detector, both);
    EXPECT_NEAR(detector.separated[30], 0.76, 0.005);
    EXPECT_NEAR(detector.separated[37], 0.73, 0.005);
    ExpectNothingBut({30, 37});
}

TEST_F(Separation, TheRightHandSideIsFormedFromTheLimitedSpectrum) {
    Frame(detector, {{20, 1.0F}, {32, 1.0F}});
    ASSERT_FLOAT_EQ(detector.levelCap[20], 0.25F);    // its third partial is missing
    ASSERT_FLOAT_EQ(detector.levelCap[32], 0.0625F);  // all of its own are
    EXPECT_FLOAT_EQ(detector.rhs[20], D4 * (0.25F + A * 0.0625F));
    EXPECT_FLOAT_EQ(detector.rhs[8], D4 * (A * 0.25F + C * 0.0625F));  // 20 and 32 are its second and fourth
    EXPECT_FLOAT_EQ(detector.rhs[13], D4 * B * 0.0625F);               // 32 is its third
}

// A base of 0 counts as 1, so H2 = 750: a band must have a second partial of 749 times its own amplitude.
TEST_F(Separation, ATemplateWithoutBaseAllowsOnlyBandsWithHugePartials) {
    detector.SetHarmonics(0, 750, 500, 250);
    EXPECT_EQ(detector.harmonicBase, 0);
    EXPECT_EQ(detector.harmonicCoefficients[23], -749);
    Frame(detector, NoteOn(30));
    EXPECT_EQ(detector.levelCap[30], 0);
    for (int band = 0; band < 84; ++band) EXPECT_TRUE(std::isfinite(detector.separated[band])) << band;
    Frame(detector, {{30, 1.0F}, {42, 750.0F * 750}, {49, 500.0F * 500}, {54, 250.0F * 250}});
    EXPECT_FLOAT_EQ(detector.levelCap[30], 1);
}
