// Blocks of audio of any length, at any address, with any content: the audio passes bit for bit, nothing
// beside the block is touched, and the detector hears what was handed over.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "module/plugin_entry.h"
#include "plugin/gui_plugin.h"
#include "tests/support/host.h"
#include "tests/support/music.h"
#include "tests/support/trial.h"

namespace {

// The 16-bit sample that a host's sample stands for: times 30000, cut towards zero, the low 16 bits kept; 0
// for NaN and for what 32 bits do not hold.
template <typename Sample>
short Converted(Sample value) {
    const Sample scaled = value * Sample(30000);
    if (!(scaled > Sample(-2147483648.0) && scaled < Sample(2147483648.0))) return 0;
    return static_cast<short>(static_cast<std::uint16_t>(static_cast<std::int32_t>(scaled)));
}

// Any bits; where samples are added, audio, since a sum of two NaNs may keep the payload of either.
template <typename Sample>
Sample SomeSample(Trial& trial, Way way) {
    const std::uint64_t bits = trial.random();
    Sample value;
    std::memcpy(&value, &bits, sizeof value);
    return way == Way::accumulating ? static_cast<Sample>(trial.Within(-1, 1)) : value;
}

void Process(Host& host, Way way, float* in, float* out, std::int32_t frames) {
    host.Process(way, in, out, frames);
}
void Process(Host& host, Way, double* in, double* out, std::int32_t frames) {
    host.Process(in, out, frames);
}

// Input and output at any bytes of one buffer, apart, askew or one over the other.
template <typename Sample>
void PlayAnywhere(Trial& trial, Way way) {
    constexpr std::size_t moat = 4096;
    const std::size_t frames = trial.OneIn(20) ? 1 + trial.Below(70000) : trial.Below(100);
    const std::size_t size = frames * sizeof(Sample);
    const std::size_t in = trial.OneIn(2) ? trial.Below(8) : sizeof(Sample) * trial.Below(2 * frames + 1);
    const std::size_t out =
        trial.OneIn(2) ? size + trial.Below(8) : sizeof(Sample) * trial.Below(2 * frames + 1);
    std::vector<unsigned char> memory(2 * moat + 3 * size + 8);
    for (std::size_t at = 0; at + sizeof(Sample) <= memory.size(); at += sizeof(Sample)) {
        const auto sample = SomeSample<Sample>(trial, way);
        std::memcpy(&memory[at], &sample, sizeof sample);
    }
    unsigned char* const buffer = memory.data() + moat;
    // Where the two lie askew, samples are read across others, which may be NaN.
    for (std::size_t i = 0; way == Way::accumulating && i < 2 * frames; ++i) {
        const auto sample = SomeSample<Sample>(trial, way);
        std::memcpy(buffer + (i < frames ? in + i * sizeof sample : out + (i - frames) * sizeof sample),
                    &sample, sizeof sample);
    }
    std::vector<unsigned char> expected = memory;  // had the input been read first
    std::vector<short> heard;
    for (std::size_t i = 0; i < frames; ++i) {
        Sample sample, before;
        std::memcpy(&sample, buffer + in + i * sizeof sample, sizeof sample);
        heard.push_back(Converted(sample));
        std::memcpy(&before, buffer + out + i * sizeof sample, sizeof sample);
        if (way == Way::accumulating) sample += before;
        std::memcpy(&expected[moat + out + i * sizeof sample], &sample, sizeof sample);
    }
    Host host;
    ASSERT_TRUE(host.Open(OpenPlugin));
    Process(host, way, reinterpret_cast<Sample*>(buffer + in), reinterpret_cast<Sample*>(buffer + out),
            static_cast<std::int32_t>(frames));
    ASSERT_TRUE(memory == expected) << frames << " frames, input at " << in << ", output at " << out;
    ASSERT_EQ(host.Object<CORVAguivst>().samples, heard);
}

TEST(Blocks, AnyLengthAtAnyAddressPassesAndNothingElseIsTouched) {
    RunTrials({6000, 500}, [](Trial& trial) {
        const Way way = ways[trial.number % 3];
        way == Way::doubleReplacing ? PlayAnywhere<double>(trial, way) : PlayAnywhere<float>(trial, way);
    });
}

TEST(Blocks, MissingPointersAndNegativeLengthsAreSilence) {
    InChild([](Trial&) {
        for (const std::int32_t frames : {0, -1, INT32_MIN, 64}) {
            Host host;
            ASSERT_TRUE(host.Open(OpenPlugin));
            ASSERT_TRUE(host.Play(Tones({69}, 0.3)));
            ASSERT_FALSE(host.Object<CORVAguivst>().stopped);
            float out[64] = {1};
            host.Process(Way::replacing, nullptr, frames > 0 ? out : nullptr, frames);
            EXPECT_TRUE(host.Object<CORVAguivst>().stopped);
            EXPECT_EQ(out[0], frames > 0 ? 0.0F : 1.0F);
            host.effect->process(host.effect, nullptr, nullptr, frames);
            host.effect->processDoubleReplacing(host.effect, nullptr, nullptr, frames);
            EXPECT_EQ(host.Object<CORVAguivst>().totalSamples,
                      static_cast<std::uint64_t>(host.clock + (frames > 0 ? 2 * frames : 0)));
        }
    });
}

std::vector<Host::Event> EventsOf(const Audio& audio, Trial* cut) {
    Host host(48000);
    EXPECT_TRUE(host.Open(OpenPlugin));
    for (std::size_t at = 0; at < audio.size();) {
        const std::size_t most = cut != nullptr ? std::size_t{1} << cut->Below(16) : audio.size();
        const std::size_t length = std::min(cut != nullptr ? 1 + cut->Below(most) : most, audio.size() - at);
        const auto from = audio.begin() + static_cast<std::ptrdiff_t>(at);
        EXPECT_TRUE(host.Play({from, from + static_cast<std::ptrdiff_t>(length)}, length,
                              cut != nullptr ? ways[cut->Below(3)] : Way::replacing));
        at += length;
    }
    return host.TakenEvents();
}

TEST(Blocks, HowTheHostCutsTheAudioChangesNoNote) {
    RunTrials({40, 10}, [](Trial& trial) {
        // Half a step off the steps of k / 30000, where no rounding reaches a whole number, so that single
        // and double precision cut to the same k. A constant below it keeps each cut from summing to zero.
        Audio audio = RandomMusic(trial.random, 48000, 2);
        for (float& sample : audio)
            sample = (static_cast<float>(3 + std::floor(15000 * (sample + 0.9F))) + 0.5F) / 30000;
        const auto whole = EventsOf(audio, nullptr);
        ASSERT_GT(whole.size(), 5U);
        for (int i = 0; i < 5; ++i) ASSERT_EQ(EventsOf(audio, &trial), whole);
    });
}

template <typename Sample>
Sample SignalAt(Trial& trial, std::uint64_t kind, std::size_t i) {
    using Limits = std::numeric_limits<Sample>;
    const Sample sign = i % 2 == 0 ? Sample(1) : Sample(-1);
    const Sample signals[] = {Limits::quiet_NaN(),
                              Limits::signaling_NaN(),
                              Limits::infinity(),
                              sign * Limits::infinity(),
                              Limits::max(),
                              Limits::lowest(),
                              Sample(1e10),
                              Sample(1.0923),
                              sign * Sample(1.0923),
                              Limits::denorm_min(),  // 1.0923: wraps
                              Limits::min() * static_cast<Sample>(trial.Within(-1, 1)),
                              Sample(1),
                              sign,
                              i / 54 % 2 == 0 ? Sample(1) : Sample(-1),
                              SomeSample<Sample>(trial, Way::replacing)};
    return signals[kind % std::size(signals)];
}

template <typename Sample>
void PlaySignal(Trial& trial, Way way) {
    Host host(48000), fresh(48000);
    ASSERT_TRUE(host.Open(OpenPlugin) && fresh.Open(OpenPlugin));
    std::vector<Sample> in(512), out(512);
    for (std::size_t at = 0; at < 48000; at += in.size()) {
        for (std::size_t i = 0; i < in.size(); ++i) in[i] = SignalAt<Sample>(trial, trial.number / 3, at + i);
        std::fill(out.begin(), out.end(), Sample(0));
        Process(host, way, in.data(), out.data(), 512);
        const bool same = std::memcmp(in.data(), out.data(), in.size() * sizeof(Sample)) == 0;
        ASSERT_TRUE(same || way == Way::accumulating);
    }
    const TRealTimeTS107& detector = host.Object<CORVAguivst>().detector;
    for (std::int32_t band = 0; band < detector.numBands; ++band)
        ASSERT_TRUE(std::isfinite(detector.energy[band] + detector.stateA[band] + detector.stateB[band]));
    // After a block of silence all is as in a fresh instance, whose first start sends the program besides.
    fresh.Play(Tones({69}, 0.1, 48000));
    for (Host* const each : {&host, &fresh}) each->Play(Silence(512)), each->TakenEvents();
    const std::int64_t later = host.clock - fresh.clock;
    for (Host* const each : {&host, &fresh}) each->Play(Tones({57, 64, 73}, 1, 48000));
    ASSERT_GE(fresh.events.size(), 3U);
    ASSERT_EQ(host.events, Later(fresh.events, later));
}

TEST(Blocks, NoSignalSticks) {
    RunTrials({45, 5, 60, true}, [](Trial& trial) {
        const Way way = ways[trial.number % 3];
        way == Way::doubleReplacing ? PlaySignal<double>(trial, way) : PlaySignal<float>(trial, way);
    });
}

TEST(Blocks, ARateThatIsNoneMakesNoNoteAndTheUsualOneBringsThemBack) {
    InChild([](Trial&) {
        using Limits = std::numeric_limits<float>;
        for (const float rate : {-1.0F, 0.0F, 9.0F, 19.0F, 99.9F, 2147483648.0F, 1e30F, Limits::quiet_NaN(),
                                 Limits::infinity(), -Limits::infinity()}) {
            Host host;
            ASSERT_TRUE(host.Open(OpenPlugin));
            host.Play(Tones({57, 64}, 0.3));
            const int notes = host.Sounding();
            EXPECT_EQ(notes, 2);
            host.Call(effMainsChanged);
            host.Call(effSetSampleRate, 0, 0, nullptr, rate);
            host.TakenEvents();
            EXPECT_TRUE(host.Play(Tones({57, 64}, 0.3), 100));
            EXPECT_EQ(host.Sounding(), 0) << rate;
            host.Call(effMainsChanged);
            host.Call(effSetSampleRate, 0, 0, nullptr, 44100);
            host.Play(Tones({57, 64}, 0.3));
            EXPECT_EQ(host.Sounding(), notes) << rate;
        }
    });
}

}  // namespace
