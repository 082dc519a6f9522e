// The tables per rate, and what the resonators read for tones whose level is known.
#include <gtest/gtest.h>

#include <cmath>

#include "engine/real_time_detector.h"
#include "tests/engine/signals.h"

TEST(ResonatorTables, BlocksAndFramesFollowTheRate) {
    struct Row {
        std::int32_t rate, blockLength, frameLength;
        double blockDecay;
    };
    for (const Row& row :
         {Row{8000, 2, 80, 0.97561}, Row{22050, 5, 220, 0.97783}, Row{44100, 11, 441, 0.97566},
          Row{48000, 12, 480, 0.97561}, Row{96000, 24, 960, 0.97561}}) {
        const TRealTimeTS107 detector(row.rate, 45, 84);
        EXPECT_EQ(detector.blockLength, row.blockLength) << row.rate;
        EXPECT_EQ(detector.frameLength, row.frameLength) << row.rate;
        EXPECT_NEAR(detector.blockDecay, row.blockDecay, 6e-6) << row.rate;
        // 0.2 / (0.01 + 0.2) where a frame is 10 ms; 220 samples at 22050 Hz are 9.977 ms.
        EXPECT_NEAR(detector.frameDecay, row.rate == 22050 ? 0.952484 : 0.952381, 6e-6) << row.rate;
    }
}

TEST(ResonatorTables, FewerThan49BandsBecome49) {
    const TRealTimeTS107 detector(44100, 45, 10);
    EXPECT_EQ(detector.numBands, 49);
    EXPECT_EQ(detector.bandOn, detector.noteOn.Data());
    EXPECT_EQ(detector.bandLevel, detector.separated.Data());
}

TEST(ResonatorTables, LimitsOfThePeakAndDipTestsHaveTheirStatedSize) {
    const TRealTimeTS107 detector(44100, 45, 84);
    // e = 1 / sqrt((0.059463 / 0.02)^2 + 1) = 0.31879; v = (e + 1) / 2; 2 v^2 = 0.8696.
    EXPECT_NEAR(detector.peakRatio, 0.8696, 5e-5);
    EXPECT_NEAR(detector.dipScale[45], 0.1063, 5e-4);  // omega^2 x 441^2 x 0.000139117, omega = 0.06269
    EXPECT_NEAR(detector.dipScale[57] / detector.dipScale[45], 2, 1e-6);  // in proportion to frequency
}

// No run of samples up to 32767 overflows: the weights of a block, taken with the worst signs, reach at most
// 2^31 - 1, and miss it only by what each lost when it was cut to an integer (below 1 each).
TEST(ResonatorTables, WeightsFillTheAccumulatorsAndDoNotOverflowThem) {
    for (const int rate : {8000, 44100, 192000}) {
        const TRealTimeTS107 detector(rate, 45, 84);
        for (int band = 0; band < 84; ++band) {
            std::int64_t re = detector.tapZero[band], im = 0;
            for (int row = 0; row < detector.blockLength - 1; ++row) {
                re += std::abs(detector.tapsRe[row * detector.bandStride + band]);
                im += std::abs(detector.tapsIm[row * detector.bandStride + band]);
            }
            for (const std::int64_t sum : {re, im}) {
                EXPECT_LE(sum * 32767, 2147483647) << rate << " Hz, band " << band;
                EXPECT_GT((sum + detector.blockLength) * 32767, 2147483647) << rate << " Hz, band " << band;
            }
        }
    }
}

// A sine of amplitude a on a band's centre reads 4 (a / 32767)^2, at every rate.
TEST(ResonatorTables, ASteadySineReadsFourTimesItsSquaredAmplitude) {
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

TEST(ResonatorTables, SilenceIsNothingAtAll) {
    TRealTimeTS107 detector(44100, 45, 84);
    Play(detector, Audio(4410, 0));
    for (int band = 0; band < 84; ++band) {
        EXPECT_EQ(detector.energy[band] + detector.amplitude[band] + detector.separated[band], 0);
        EXPECT_EQ(detector.levelCap[band] + detector.rhs[band], 0);
        EXPECT_FALSE(detector.noteOn[band]);
    }
    EXPECT_EQ(detector.threshold, 0);  // the floor of -1000 dB is 0
    EXPECT_EQ(detector.tune, 0);
    EXPECT_EQ(detector.tuneCentre, detector.tuneSeed);
}

// The grid follows a tone that lies beside it: 30 cents sharp, and `tune` rises towards 0.3.
TEST(ResonatorTables, TheGridFollowsATone) {
    TRealTimeTS107 sharp(44100, 45, 84), flat(44100, 45, 84);
    Play(sharp, Sine(BandFrequency(45.3), 20000, 44100, 2.5));
    Play(flat, Sine(BandFrequency(44.7), 20000, 44100, 2.5));
    EXPECT_NEAR(sharp.tune, 0.3, 0.05);
    EXPECT_NEAR(flat.tune, -0.3, 0.05);
}
