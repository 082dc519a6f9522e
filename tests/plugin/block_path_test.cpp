// The road of a block: what the host hears, what the detector gets, and what the host may do with pointers.
#include <limits>
#include <random>

#include "tests/plugin/plugin_test.h"

namespace {

// The three ways in.
enum Door { accumulating, replacing, doubleReplacing };

class BlockPath : public PluginTest {
protected:
    template <typename Sample>
    void Feed(Door door, Sample* in, Sample* out, std::int32_t frames) {
        AEffect* const effect = plug->effect;
        if constexpr (std::is_same_v<Sample, double>)
            effect->processDoubleReplacing(effect, &in, &out, frames);
        else
            (door == accumulating ? effect->process : effect->processReplacing)(effect, &in, &out, frames);
    }
    std::vector<short> Delivered() const { return Object().samples; }
};

// Halfway between two integers no rounding of the product matters, so k is what every door must make of it.
TEST_F(BlockPath, TheDetectorGetsTheSameBlockThroughEachDoor) {
    std::vector<short> expected;
    std::vector<float> floats;
    std::vector<double> doubles;
    for (int k = -32768; k <= 32767; ++k) {
        const double scaled = k + (k > 0 ? 0.5 : k < 0 ? -0.5 : 0.0);
        expected.push_back(static_cast<short>(k));
        floats.push_back(static_cast<float>(scaled / 30000));
        doubles.push_back(scaled / 30000);
    }
    std::vector<float> out(floats.size(), 1.0F);
    const auto count = static_cast<std::int32_t>(floats.size());
    Feed(replacing, floats.data(), out.data(), count);
    EXPECT_EQ(Delivered(), expected);
    EXPECT_EQ(out, floats);
    Feed(accumulating, floats.data(), out.data(), count);
    EXPECT_EQ(Delivered(), expected);
    for (std::size_t i = 0; i < out.size(); ++i) ASSERT_EQ(out[i], floats[i] + floats[i]);
    // On the integers themselves the precision of a door may decide; both float doors are one.
    std::vector<float> steps = floats;
    for (int k = -32768; k <= 32767; ++k)
        steps[static_cast<std::size_t>(k + 32768)] = static_cast<float>(k) / 30000;
    Feed(replacing, steps.data(), out.data(), count);
    const std::vector<short> delivered = Delivered();
    Feed(accumulating, steps.data(), out.data(), count);
    EXPECT_EQ(Delivered(), delivered);
    std::vector<double> doubleOut(doubles.size());
    Feed(doubleReplacing, doubles.data(), doubleOut.data(), count);
    EXPECT_EQ(Delivered(), expected);
    EXPECT_EQ(doubleOut, doubles);
}

TEST_F(BlockPath, AudioPassesBitForBitWhateverItIs) {
    using Limits = std::numeric_limits<float>;
    std::vector<float> in = {Limits::quiet_NaN(),
                             Limits::infinity(),
                             -Limits::infinity(),
                             Limits::max(),
                             Limits::denorm_min(),
                             -0.0F,
                             1e10F,
                             1.0923F,
                             -32768.0F / 30000};
    const std::uint32_t payload = 0x7FC01234;
    std::memcpy(in.data(), &payload, sizeof payload);
    std::vector<float> out(in.size());
    Feed(replacing, in.data(), out.data(), static_cast<std::int32_t>(in.size()));
    EXPECT_EQ(std::memcmp(in.data(), out.data(), in.size() * sizeof(float)), 0);
    const std::vector<double> wide(in.begin() + 1, in.end());
    std::vector<double> from = wide, to(wide.size());
    Feed(doubleReplacing, from.data(), to.data(), static_cast<std::int32_t>(wide.size()));
    EXPECT_EQ(to, wide);
    // Denormals are flushed for the detector only, never in the sum that the host hears.
    float small = 1e-40F, sum = 2e-40F;
    Feed(accumulating, &small, &sum, 1);
    EXPECT_EQ(sum, 1e-40F + 2e-40F);
}

// Input and output may lie anywhere to each other: the result is as if the input were read whole first.
template <typename Sample, typename Feed>
void CheckOverlaps(Feed feed, Door door) {
    constexpr std::size_t frames = 131, size = frames * sizeof(Sample);
    constexpr std::size_t guard = 304, inAt = guard + size;  // bytes; a sample's own alignment
    std::minstd_rand random(1);
    for (int offset = -static_cast<int>(size) - 1; offset <= static_cast<int>(size) + 1; ++offset) {
        std::vector<unsigned char> memory(3 * size + 2 * guard);
        // Where samples are added they must be numbers, however they are cut: bytes below 40 hex see to it.
        for (unsigned char& byte : memory)
            byte = static_cast<unsigned char>(random() & (door == accumulating ? 0x3F : 0xFF));
        const auto outAt = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(inAt) + offset);
        std::vector<unsigned char> expected = memory;
        for (std::size_t i = 0; i < frames; ++i) {
            Sample in, out;
            std::memcpy(&in, memory.data() + inAt + i * sizeof in, sizeof in);
            std::memcpy(&out, memory.data() + outAt + i * sizeof out, sizeof out);
            if (door == accumulating) in += out;
            std::memcpy(expected.data() + outAt + i * sizeof in, &in, sizeof in);
        }
        feed(reinterpret_cast<Sample*>(memory.data() + inAt),
             reinterpret_cast<Sample*>(memory.data() + outAt), static_cast<std::int32_t>(frames));
        ASSERT_EQ(memory, expected) << "offset " << offset;  // nothing outside has changed either
    }
}

TEST_F(BlockPath, ReplacingTakesOverlapsAtAnyByte) {
    CheckOverlaps<float>([&](auto... args) { Feed(replacing, args...); }, replacing);
    CheckOverlaps<double>([&](auto... args) { Feed(doubleReplacing, args...); }, doubleReplacing);
}

TEST_F(BlockPath, AccumulatingTakesOverlapsAtAnyByte) {
    CheckOverlaps<float>([&](auto... args) { Feed(accumulating, args...); }, accumulating);
}

TEST_F(BlockPath, ANullInputIsSilenceAndANullOutputIsNotWritten) {
    float in[4] = {1, 2, 3, 4}, out[4] = {5, 6, 7, 8};
    Feed<float>(accumulating, nullptr, out, 4);
    EXPECT_THAT(out, testing::ElementsAre(5, 6, 7, 8));
    Feed<float>(replacing, nullptr, out, 4);
    EXPECT_THAT(out, testing::Each(0.0F));
    EXPECT_EQ(Object().silentSamples, 8U);
    Feed<float>(replacing, in, nullptr, 4);
    EXPECT_EQ(Delivered(), (std::vector<short>{30000, static_cast<short>(60000), static_cast<short>(90000),
                                               static_cast<short>(120000)}));
    EXPECT_EQ(Object().silentSamples, 0U);
    AEffect* const effect = plug->effect;
    float* from = in;
    float* to = out;
    effect->process(effect, nullptr, nullptr, 4);
    effect->processReplacing(effect, nullptr, &to, 4);
    effect->processReplacing(effect, &from, nullptr, 4);
    effect->processDoubleReplacing(effect, nullptr, nullptr, 4);
    Feed<double>(doubleReplacing, nullptr, nullptr, 4);
    EXPECT_EQ(Object().totalSamples, 8U * 4);
}

TEST_F(BlockPath, NoLengthOrLessTouchesNothingAndCountsAsSilent) {
    Play(Sines({69}, 0.1));
    const std::uint64_t total = Object().totalSamples;
    float in = 1, out = 2;
    double wideIn = 1, wideOut = 2;
    for (const std::int32_t frames : {0, -1, -50000, std::numeric_limits<std::int32_t>::min()}) {
        Feed(replacing, &in, &out, frames);
        Feed(accumulating, &in, &out, frames);
        Feed(doubleReplacing, &wideIn, &wideOut, frames);
    }
    EXPECT_EQ(out, 2.0F);
    EXPECT_EQ(wideOut, 2.0);
    EXPECT_EQ(Object().totalSamples, total);
    EXPECT_TRUE(Object().stopped);
}

TEST_F(BlockPath, BlocksOfAnySizeFollowEachOtherUnannounced) {
    plug->Call(effSetBlockSize, 0, 64);
    std::uint64_t total = 0;
    for (const std::size_t size : {1U, 64U, 3U, 1U << 20, 7U, 4096U}) {
        EXPECT_TRUE(Play(std::vector<float>(size, 0.25F), static_cast<int>(size)));
        EXPECT_EQ(Delivered(), std::vector<short>(size, 7500));
        EXPECT_EQ(Object().totalSamples, total += size);
    }
}

TEST_F(BlockPath, OddSampleRatesPassAudioAndLeaveNothingBehind) {
    const std::vector<float> tone = Sines({69, 76}, 0.3);
    host.events.clear();
    Play(tone);
    const std::vector<FakeHost::Event> fresh = host.TakenEvents();
    EXPECT_EQ(Sounding(fresh), 2);
    Play(Silence(64));
    for (const double rate : {-1.0, 0.0, 0.5, 9.0, 99.0, 99.9, 100.0, 101.0, 1234.5678, 768000.0, 1234567.8,
                              2147483648.0, 1e30, std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        plug->Call(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
        EXPECT_TRUE(Play(tone, 1000)) << rate;
        Play(Silence(64));
    }
    plug->Call(effSetSampleRate, 0, 0, nullptr, 44100);
    host.TakenEvents();
    const std::int64_t begin = host.clock;
    Play(tone);
    EXPECT_EQ(host.events, Later(fresh, begin));
}

TEST_F(BlockPath, TheDetectorRunsAtTheHostsRateFromTheStart) {
    host.sampleRate = 48000;
    const Plug other(OpenPlugin(FakeHost::Callback));
    const auto& object = dynamic_cast<CORVA_vst&>(*static_cast<AudioEffect*>(other.effect->object));
    EXPECT_EQ(object.detector.sampleRate, 48000);
    EXPECT_EQ(object.noteRecorder.GetSampleRate(), 48000U);
    EXPECT_EQ(object.noteRecorder.GetFrameLength(), 480);
}

// Chords with partials over a constant that keeps every sample positive, since a block that adds up to zero
// resets detection: at block length 1 that would be each zero sample.
std::vector<float> MusicWithoutZeros() {
    std::vector<float> music;
    const std::vector<std::vector<int>> chords = {{57, 60, 64}, {62, 65, 69}, {55, 59, 74}, {60, 67, 72}};
    for (const std::vector<int>& chord : chords) {
        const std::vector<float> part = Sines(chord, 0.35), octave = Sines({chord[0] + 12}, 0.35);
        for (std::size_t i = 0; i < part.size(); ++i) {
            const double fade = std::exp(-4.0 * static_cast<double>(i) / static_cast<double>(part.size()));
            music.push_back(static_cast<float>(0.52 + 0.6 * fade * (part[i] + 0.4 * octave[i])));
        }
    }
    return music;
}

TEST_F(BlockPath, TheEventsDoNotDependOnHowTheHostCutsTheAudio) {
    const std::vector<float> music = MusicWithoutZeros();
    EXPECT_GE(*std::min_element(music.begin(), music.end()), 1.0F / 30000);
    std::vector<FakeHost::Event> reference;
    for (const int block : {static_cast<int>(music.size()), 1, 2, 7, 64, 441, 512, 1000, 4096, 20011}) {
        Plug fresh(OpenPlugin(FakeHost::Callback));
        host.clock = 0;
        host.events.clear();
        EXPECT_TRUE(fresh.Play(host, music, block));
        if (reference.empty()) reference = host.events;
        EXPECT_EQ(host.events, reference) << "blocks of " << block;
    }
    EXPECT_GE(reference.size(), 12U);  // at the least the four chords' own notes
}

}  // namespace
