// Blocks of audio of any length, at any address, with any content: the audio passes bit for bit, nothing
// beside the block is touched, and neither cut nor signal changes the notes.
#include "tests/support/linked_host.h"
#include "tests/support/music.h"
#include "tests/support/trial.h"

namespace {

// Input and output at any bytes of one buffer, apart, askew or one over the other. What is added are small
// numbers, since a sum of two NaNs may keep the payload of either.
template <typename Sample>
void PlayAnywhere(Trial& trial, Way way) {
    constexpr std::size_t moat = 4096;
    const std::size_t frames = trial.OneIn(20) ? 1 + trial.Below(70000) : trial.Below(100);
    const std::size_t size = frames * sizeof(Sample), span = 2 * frames + 1;
    const std::size_t in = trial.OneIn(2) ? trial.Below(8) : sizeof(Sample) * trial.Below(span);
    const std::size_t out = trial.OneIn(2) ? size + trial.Below(8) : sizeof(Sample) * trial.Below(span);
    std::vector<unsigned char> memory(2 * moat + 3 * size + 8);
    for (unsigned char& byte : memory)
        byte = static_cast<unsigned char>(way == Way::accumulating ? trial.Below(2) : trial.random());
    std::vector<unsigned char> expected = memory;  // had the input been read first
    for (std::size_t i = 0; i < frames; ++i) {
        Sample sample, before;
        std::memcpy(&sample, &memory[moat + in + i * sizeof sample], sizeof sample);
        std::memcpy(&before, &memory[moat + out + i * sizeof sample], sizeof sample);
        if (way == Way::accumulating) sample += before;
        std::memcpy(&expected[moat + out + i * sizeof sample], &sample, sizeof sample);
    }
    LinkedHost host;
    host.Process(way, reinterpret_cast<Sample*>(&memory[moat + in]),
                 reinterpret_cast<Sample*>(&memory[moat + out]), static_cast<std::int32_t>(frames));
    ASSERT_TRUE(memory == expected) << frames << " frames, input at " << in << ", output at " << out;
}

TEST(Blocks, AnyLengthAtAnyAddressPassesAndNothingElseIsTouched) {
    RunTrials({2000, 500}, [](Trial& trial) {
        const Way way = ways[trial.number % 3];
        way == Way::doubleReplacing ? PlayAnywhere<double>(trial, way) : PlayAnywhere<float>(trial, way);
    });
}

TEST(Blocks, HowTheHostCutsTheAudioChangesNoNote) {
    RunTrials({40, 10}, [](Trial& trial) {
        // A constant, half of a 16-bit step off a whole one, keeps each cut from summing to zero.
        Audio audio = RandomMusic(trial.random, 48000, 2);
        for (float& sample : audio) sample = (std::floor(15000 * (sample + 0.9F)) + 3.5F) / 30000;
        LinkedHost whole(48000), cut(48000);
        whole.Play(audio, audio.size());
        for (std::size_t at = 0, length = 0; at < audio.size(); at += length) {
            length = std::min<std::size_t>(1 + trial.Below(1ULL << trial.Below(16)), audio.size() - at);
            const auto from = audio.begin() + static_cast<std::ptrdiff_t>(at);
            cut.Play({from, from + static_cast<std::ptrdiff_t>(length)}, length, ways[trial.Below(3)]);
        }
        ASSERT_GT(whole.events.size(), 5U);
        ASSERT_EQ(cut.events, whole.events);
    });
}

TEST(Blocks, NoSignalSticks) {
    RunTrials({11, 1, 60, true}, [](Trial& trial) {
        using Limits = std::numeric_limits<float>;
        LinkedHost host(48000), fresh(48000);
        Audio audio(48000);
        for (std::size_t i = 0; i < audio.size(); ++i) {
            const float sign = i % 2 == 0 ? 1.0F : -1.0F, square = i / 54 % 2 == 0 ? 1.0F : -1.0F;
            const float small = Limits::min() * static_cast<float>(trial.Within(-1, 1));
            constexpr float nan = Limits::quiet_NaN(), infinite = Limits::infinity(),
                            least = Limits::lowest(), tiny = Limits::denorm_min(), wraps = 1.0923F;
            const float signals[] = {nan,  infinite, least, 1e10F, wraps, sign * wraps,
                                     tiny, small,    1,     sign,  square};
            audio[i] = signals[trial.number];
        }
        ASSERT_TRUE(host.Play(audio));
        const TRealTimeTS107& detector = host.plugin.detector;
        for (std::int32_t band = 0; band < detector.numBands; ++band)
            ASSERT_TRUE(std::isfinite(detector.energy[band] + detector.stateA[band] + detector.stateB[band]));
        // After a block of silence all is as in a fresh instance, whose first start sends the program.
        fresh.Play(Tones({69}, 0.1, 48000));
        for (Host* const each : {&host, &fresh}) each->Play(Silence(512)), each->TakenEvents();
        const std::int64_t later = host.clock - fresh.clock;
        for (Host* const each : {&host, &fresh}) each->Play(Tones({57, 64, 73}, 1, 48000));
        ASSERT_GE(fresh.events.size(), 3U);
        ASSERT_EQ(host.events, Later(fresh.events, later));
    });
}

}  // namespace
