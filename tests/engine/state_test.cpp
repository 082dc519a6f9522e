// The detector's whole state, bit for bit: the same with every set of inner loops that the machine has, and
// the same as ever, by digests that were taken while it agreed with a restatement written independently.
#include <gtest/gtest.h>

#include <deque>
#include <random>

#include "tests/engine/detector_state.h"
#include "tests/engine/signals.h"

namespace {

// One detector for each set of inner loops, the plain one first.
class Detectors {
public:
    Detectors(std::int32_t rate, std::int32_t reference, std::int32_t bands) {
        all.emplace_back(rate, reference, bands).kernels = PlainKernels();
        for (const DetectorKernels& kernels : AllKernels())
            all.emplace_back(rate, reference, bands).kernels = kernels;
    }
    template <typename Change>
    void Each(const Change& change) {
        for (TRealTimeTS107& detector : all) change(detector);
    }
    std::string AddTo(StateDigest& digest) const {  // what differs among them
        const DetectorState plain = StateOf(all[0]);
        digest.Add(plain);
        for (const TRealTimeTS107& detector : all)
            if (std::string found = Difference(plain, StateOf(detector)); !found.empty())
                return std::string(detector.kernels.name) + ": " + found;
        return {};
    }
    std::deque<TRealTimeTS107> all;
};

struct Settings {
    std::int32_t bands;
    bool tuning, mono, equalizer;
};

void Apply(const Settings& settings, TRealTimeTS107& detector) {
    detector.SetTuningEnabled(settings.tuning);
    detector.SetMonoEnabled(settings.mono);
    detector.SetEqualizerEnabled(settings.equalizer);
    detector.SetFloorDb(-35);
    detector.SetRelativeThreshold(0.13F);
    std::minstd_rand random(7);
    for (int band = 0; band < detector.numBands; ++band)
        detector.SetBandGain(band, static_cast<float>(random() % 9) / 4);  // 0 to 2, 0 among them
}

// What is flushed to zero differs in detail between architectures; scripts/check-aarch64 compares them.
void ExpectAsEver(const StateDigest& digest, std::uint64_t expected) {
#if defined(__SSE2__)
    EXPECT_EQ(digest.value, expected);
#else
    static_cast<void>(digest), static_cast<void>(expected);
#endif
}

class DetectorStates : public testing::TestWithParam<std::pair<int, std::uint64_t>> {};

}  // namespace

// Blocks of any length, compared after each: as in the plug-in, with tuning, mono, the fewest bands with all
// on, and 64 bands, which fill whole vectors, so that nothing lies behind them.
TEST_P(DetectorStates, AreAsEverAtEachCutOfTheAudio) {
    const auto& [rate, expected] = GetParam();
    const Pcm audio = Everything(rate);
    StateDigest digest;
    for (const Settings& settings : {Settings{84, false, false, true}, Settings{84, true, false, false},
                                     Settings{84, false, true, false}, Settings{49, true, true, true},
                                     Settings{64, false, false, false}}) {
        Detectors detectors(rate, settings.bands - 39, settings.bands);
        detectors.Each([&](auto& detector) { Apply(settings, detector); });
        std::minstd_rand random(1);
        for (std::size_t at = 0; at < audio.size();) {
            const std::size_t most = Samples(rate, random() % 8 == 0 ? 0.001 : 0.03);
            const std::size_t length = std::min<std::size_t>(1 + random() % most, audio.size() - at);
            const unsigned bytes = Bytes(length) + random() % 2;  // an odd one is ignored
            detectors.Each([&](auto& detector) { detector.Process(&audio[at], bytes); });
            at += length;
            ASSERT_EQ(detectors.AddTo(digest), "") << settings.bands << " bands, after sample " << at;
        }
        EXPECT_EQ(detectors.all[0].tune != 0, settings.tuning);
        EXPECT_EQ(detectors.all[0].energy[settings.bands - 1], 0);
    }
    ExpectAsEver(digest, expected);
}

constexpr std::pair<int, std::uint64_t> digests[] = {
    {8000, 6802596080390485367U},   {11025, 14099507860113624675U}, {16000, 1213216996284263639U},
    {22050, 2883745344232287992U},  {32000, 5456293292532830947U},  {44100, 13283697085303105031U},
    {48000, 9596005594629924751U},  {88200, 4246053646868183517U},  {96000, 2731090614911815692U},
    {176400, 2427201992440694625U}, {192000, 12297904284500269463U}};

INSTANTIATE_TEST_SUITE_P(Rates, DetectorStates, testing::ValuesIn(digests),
                         [](const auto& given) { return std::to_string(given.param.first); });

// Spectra that no sound makes: ties, zeros, partials stronger than their note, and templates of any shape.
TEST(DetectorFrames, AnySpectrumAndTemplateGiveTheDecisionsOfEver) {
    static constexpr std::int32_t templates[][4] = {
        {1000, 750, 500, 250}, {0, 750, 500, 250}, {1000, -5, 1200, 300}, {4, 0, 0, 0}, {10, 9, 14, 20}};
    static constexpr float tunes[] = {0, 0.74F, -0.74F, 0};
    static constexpr float steps[] = {0, 0.01F, 0.5F, 0.9F, 1, 1, 1, 1, 1.1F, 2, 30};
    std::minstd_rand random(3);
    StateDigest digest;
    for (int run = 0; run < 200; ++run) {
        // Half the time the number for which there are loops of its own. 49 at least are given.
        Detectors detectors(44100, 45, run % 2 == 0 ? 84 : 39 + static_cast<std::int32_t>(random() % 90));
        const auto& partials = templates[random() % 5];
        const auto switches = random();
        const float tune = tunes[switches >> 8 & 3];
        const std::int32_t bands = detectors.all[0].numBands;
        detectors.Each([&](auto& d) {
            Apply({bands, (switches & 1) != 0, (switches & 2) != 0, (switches & 4) != 0}, d);
            d.SetHarmonics(partials[0], partials[1], partials[2], partials[3]);
            d.retriggerEnabled = (switches & 0x40) != 0;
            d.peakSlack = (switches & 0x80) != 0 ? 0.5F : 1.0F;
            d.SetBandwidthAndTune(0.02F, tune);
            d.tuneLeft *= tune < 0 ? 9.0F : 1.0F;  // past the end of the grid in a few frames
            d.tuneRight *= tune > 0 ? 9.0F : 1.0F;
            d.SetFloorDb((switches & 0x400) != 0 ? -20.0F : -1000.0F);
        });
        std::vector<float> energy(static_cast<std::size_t>(bands));
        for (float& power : energy) power = static_cast<float>(random() % 100) / 64;
        for (int frame = 0; frame < 30; ++frame) {
            for (float& power : energy) {
                power = std::min(power * steps[random() % 11], 4.0F);
                if (random() % 40 == 0) power = static_cast<float>(random() % 5);
            }
            detectors.Each([&](auto& d) {
                std::copy(energy.begin(), energy.end(), &d.energy[0]);
                d.blockCountdown = d.blockLength;  // a sample of silence within a block steps nothing
                d.frameCountdown = 1;
                Play(d, {0});
                d.harmonicsEnabled = run % 8 != 0;  // from the second frame
            });
            ASSERT_EQ(detectors.AddTo(digest), "") << "run " << run << ", frame " << frame;
        }
    }
    ExpectAsEver(digest, 9830014457069672003U);
}

// Setters in the middle of the sound, of the block and of the frame.
TEST(DetectorSettings, TakeHoldOnTheWayWithoutDisturbingTheAnalysis) {
    Detectors detectors(44100, 45, 84);
    const Pcm audio = Music(44100, 0.103, -40);
    std::minstd_rand random(5);
    StateDigest digest;
    for (int step = 0; step < 200; ++step) {
        constexpr std::int32_t rates[] = {48000, 22050, 99, 30};  // below 100 Hz no frame ever comes
        const std::int32_t rate = rates[random() % 4];
        const auto choice = random() % 9;
        const bool on = random() % 2 == 0;
        detectors.Each([&](auto& d) {
            switch (choice) {
                case 0: d.SetBandwidthAndTune(0.03F, 0.3F); break;
                case 1: d.SetMonoEnabled(on); break;
                case 2: d.SetHarmonics(on ? 1000 : 0, 750, 500, 250); break;
                case 3: d.Reset(); break;
                case 4: d.SetSampleRate(rate); break;
                case 5: d.SetBandGain(45, on ? 0.5F : 1.0F); break;
                case 6: d.SetEqualizerEnabled(on); break;
                default: d.SetTuningEnabled(on);
            }
            Play(d, audio);
        });
        ASSERT_EQ(detectors.AddTo(digest), "") << "step " << step;
    }
    ExpectAsEver(digest, 846956684001355428U);
}
