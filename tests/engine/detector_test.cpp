// The detector against its plain restatement: the whole state, bit for bit.
#include "tests/engine/detector_state.h"
#include "tests/engine/plain_detector.h"
#include "tests/engine/signals.h"
#include "tests/support/test.h"

namespace {

struct Settings {
    std::int32_t bands;
    bool tuning, mono, equalizer;
};

template <typename Detector>
void Apply(const Settings& settings, Detector& detector) {
    detector.SetTuningEnabled(settings.tuning);
    detector.SetMonoEnabled(settings.mono);
    detector.SetEqualizerEnabled(settings.equalizer);
    detector.SetFloorDb(-35);
    detector.SetRelativeThreshold(0.13F);
    std::minstd_rand random(7);
    for (int band = 0; band < detector.numBands; ++band)
        detector.SetBandGain(band, static_cast<float>(random() % 9) / 4);  // 0 to 2, 0 among them
}

// Every rate with the inner loops of every instruction set that this machine has.
class SameAsPlain : public testing::TestWithParam<std::tuple<int, DetectorKernels>> {};

}  // namespace

// With tuning, mono, the fewest bands with all on, and 64 bands, which fill whole vectors.
TEST_P(SameAsPlain, WholeStateIsTheSameAtEachCutOfTheAudio) {
    const auto& [rate, kernels] = GetParam();
    const Pcm audio = Everything(rate);
    for (const Settings& settings : {Settings{84, false, false, true}, Settings{84, true, false, false},
                                     Settings{84, false, true, false}, Settings{49, true, true, true},
                                     Settings{64, false, false, false}}) {
        TRealTimeTS107 detector(rate, settings.bands - 39, settings.bands);
        detector.kernels = kernels;
        PlainDetector plain(rate, settings.bands - 39, settings.bands);
        Apply(settings, detector);
        Apply(settings, plain);
        detector.stepsByFrame = !settings.mono;
        std::minstd_rand random(1);
        int notesSeen = 0;
        for (std::size_t at = 0; at < audio.size();) {
            const std::size_t length =
                std::min<std::size_t>(1 + random() % Samples(rate, 0.03), audio.size() - at);
            const unsigned oddByte = random() % 2;  // which is ignored
            detector.Process(&audio[at], Bytes(length) + oddByte);
            plain.Process(&audio[at], Bytes(length) + oddByte);
            at += length;
            const bool looks = random() % 2 == 0;  // which steps the blocks that wait for their frame
            ASSERT_TRUE(!looks || StateOf(detector) == StateOf(plain))
                << settings.bands << " bands, sample " << at;
            for (int band = 0; band < detector.numBands; ++band) notesSeen += detector.noteOn[band] ? 1 : 0;
        }
        EXPECT_GT(notesSeen, 20);
        EXPECT_EQ(detector.tune != 0, settings.tuning);
        EXPECT_EQ(detector.energy[detector.numBands - 1], 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, SameAsPlain,
                         testing::Combine(testing::Values(8000, 11025, 16000, 22050, 32000, 44100, 48000,
                                                          88200, 96000, 176400, 192000),
                                          testing::ValuesIn(AllKernels())),
                         [](const auto& given) {
                             return std::to_string(std::get<0>(given.param)) + "_" +
                                    std::get<1>(given.param).name;
                         });

// Spectra that no sound makes: ties, zeros, partials stronger than their note, templates of any shape.
TEST(SameAsPlainByFrame, AnySpectrumAndTemplateGiveTheSameDecision) {
    static constexpr std::int32_t templates[][4] = {
        {1000, 750, 500, 250}, {0, 750, 500, 250}, {1000, -5, 1200, 300}, {4, 0, 0, 0}, {10, 9, 14, 20}};
    static constexpr float steps[] = {0, 0.01F, 0.5F, 0.9F, 1, 1, 1, 1, 1.1F, 2, 30};
    std::minstd_rand random(3);
    for (int run = 0; run < 200; ++run) {
        const std::int32_t wanted = run % 2 == 0 ? 84 : 39 + run % 90;  // 84: there are loops of its own
        TRealTimeTS107 detector(44100, 45, wanted);
        PlainDetector plain(44100, 45, wanted);
        const std::int32_t bands = plain.numBands;
        const auto& partials = templates[random() % 5];
        const float tune = 0.74F * static_cast<float>(static_cast<int>(random() % 3) - 1);
        const auto set = [&, switches = random()](auto& d) {
            Apply({bands, (switches & 1) != 0, (switches & 2) != 0, (switches & 4) != 0}, d);
            d.SetHarmonics(partials[0], partials[1], partials[2], partials[3]);
            d.retriggerEnabled = (switches & 0x40) != 0;
            d.peakSlack = (switches & 0x80) != 0 ? 0.5F : 1.0F;
            d.SetBandwidthAndTune(0.02F, tune);
            d.tuneLeft *= tune < 0 ? 9.0F : 1.0F;  // past the end of the grid in a few frames
            d.tuneRight *= tune > 0 ? 9.0F : 1.0F;
            d.SetFloorDb((switches & 0x400) != 0 ? -20.0F : -1000.0F);
        };
        set(detector), set(plain);
        for (std::int32_t band = 0; band < bands; ++band)
            plain.energy[band] = static_cast<float>(random() % 100) / 64;
        for (int frame = 0; frame < 30; ++frame) {
            for (std::int32_t band = 0; band < bands; ++band) {
                float& power = plain.energy[band];
                power = std::min(power * steps[random() % 11], 4.0F);
                if (random() % 40 == 0) power = static_cast<float>(random() % 5);
                detector.energy[band] = power;
            }
            for (auto* const clock : {&detector.blockCountdown, &plain.blockCountdown})
                *clock = plain.blockLength;  // so that a sample of silence is folded in and steps nothing
            detector.frameCountdown = plain.frameCountdown = 1;
            Play(detector, {0}), Play(plain, {0});
            ASSERT_TRUE(StateOf(detector) == StateOf(plain)) << "run " << run << ", frame " << frame;
            detector.harmonicsEnabled = plain.harmonicsEnabled = run % 8 != 0;  // from the second frame
        }
    }
}

// Setters in the middle of the sound, of the block and of the frame. The host's rounding makes no difference.
TEST(SameAsPlainOnTheWay, SettingsTakeHoldWithoutDisturbingTheAnalysis) {
    TRealTimeTS107 detector(44100, 45, 84);
    PlainDetector plain(44100, 45, 84);
    const Pcm audio = Music(44100, 0.103, -40);
    std::minstd_rand random(5);
    for (int step = 0; step < 200; ++step) {
        const auto change = [choice = random() % 6, on = random() % 2 == 0](auto& d) {
            switch (choice) {
                case 0: d.SetBandwidthAndTune(0.03F, 0.3F); break;
                case 1: d.SetHarmonics(on ? 1000 : 0, 750, 500, 250); break;
                case 2: d.Reset(); break;
                case 3: d.SetSampleRate(on ? 22050 : 99); break;  // below 100 Hz no frame ever comes
                case 4: d.SetBandGain(45, on ? 0.5F : 1.0F); break;
                default: d.SetTuningEnabled(on);
            }
        };
        std::fesetround(FE_UPWARD);
        change(detector), Play(detector, audio);
        std::fesetround(FE_TONEAREST);
        change(plain), Play(plain, audio);
        ASSERT_TRUE(StateOf(detector) == StateOf(plain)) << "step " << step;
    }
}

TEST(RealTimeDetector, DelayIsThreeFramesAnd10MsPlusTheBandsOwn) {
    TRealTimeTS107 detector(44100, 45, 84);
    EXPECT_FLOAT_EQ(detector.GetBaseDelay(), 40);
    EXPECT_FLOAT_EQ(detector.GetBandDelay(83), 40);
    // Per band below the top: 1.11565 / 84 / 0.02 = 0.664077 ms.
    EXPECT_NEAR(detector.GetBandDelay(0), 40 + 83 * 0.664077, 1e-3);  // 95.1 ms
    detector.SetSampleRate(22050);                                    // frames of 220 samples, not 220.5
    EXPECT_FLOAT_EQ(detector.GetBaseDelay(), 220 * 1000.0F / 22050 * 3 + 10);
}
