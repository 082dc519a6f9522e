// What theory says of the detector: delays and levels.
#include <gtest/gtest.h>

#include "engine/real_time_detector.h"
#include "tests/engine/signals.h"

TEST(RealTimeDetector, DelayIsThreeFramesAnd10MsPlusTheBandsOwn) {
    TRealTimeTS107 detector(44100, 45, 84);
    EXPECT_FLOAT_EQ(detector.GetBaseDelay(), 40);
    EXPECT_FLOAT_EQ(detector.GetBandDelay(83), 40);
    // Per band below the top: 1.11565 / 84 / 0.02 = 0.664077 ms.
    EXPECT_NEAR(detector.GetBandDelay(0), 40 + 83 * 0.664077, 1e-3);  // 95.1 ms
    detector.SetSampleRate(22050);                                    // frames of 220 samples, not 220.5
    EXPECT_FLOAT_EQ(detector.GetBaseDelay(), 220 * 1000.0F / 22050 * 3 + 10);
}

// A sine of amplitude a on a band's centre reads 4 (a / 32767)^2, at every rate, and less in its neighbours.
TEST(RealTimeDetector, ASteadySineReadsFourTimesItsSquaredAmplitude) {
    for (const int rate : {22050, 44100, 96000}) {
        TRealTimeTS107 detector(rate, 45, 84);
        detector.SetTuningEnabled(false);
        Play(detector, Shorts(Sine(440, 0.5, rate, 0.5)));
        EXPECT_NEAR(detector.energy[45], 1.0, 0.02) << rate;
        for (const int next : {44, 46}) EXPECT_NEAR(detector.energy[next], 0.107, 0.005) << rate;
        EXPECT_TRUE(detector.noteOn[45]);
    }
}
