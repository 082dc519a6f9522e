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
