// A host's other threads beside its audio thread. Whatever they do, the audio passes, and nothing of it
// stays.
#include <atomic>
#include <thread>

#include "tests/plugin/plugin_test.h"

namespace {

class Threads : public PluginTest {
protected:
    // Audio runs while `work` does, and until it has run for a while.
    template <typename Work>
    void AudioBeside(Work work) {
        host.keepsEvents = false;
        std::atomic<bool> done{false};
        bool passes = true;
        std::thread audio([&] {
            for (int block = 0; block < 100 || !done; ++block) passes &= plug->Play(host, tone, 64);
        });
        work();
        done = true;
        audio.join();
        EXPECT_TRUE(passes);
        host.keepsEvents = true;
    }

    const std::vector<float> tone = Sines({69, 76}, 0.02), longTone = Sines({69, 76}, 0.3);
};

TEST_F(Threads, SuspendsRatesAndParametersLeaveADetectorLikeAFreshOne) {
    AudioBeside([&] {
        AEffect* const effect = plug->effect;
        for (int i = 0; i < 200; ++i) {
            plug->Call(effMainsChanged, 0, i % 3 == 0 ? 0 : 1);
            if (i % 20 == 0) plug->Call(effSetSampleRate, 0, 0, nullptr, i % 40 == 0 ? 48000.0F : 22050.0F);
            for (const std::int32_t index : {0, 1, 2, 3 + i % 84})
                effect->setParameter(effect, index, static_cast<float>(i % 100) / 100.0F);
        }
        plug->Call(effSetSampleRate, 0, 0, nullptr, 44100);
        for (std::int32_t bar = 3; bar <= 86; ++bar) effect->setParameter(effect, bar, 1.0F);
        effect->setParameter(effect, 0, 0.87F);
        effect->setParameter(effect, 1, 0.875F);
        effect->setParameter(effect, 2, 0.79F);
    });
    Plug fresh(OpenPlugin(FakeHost::Callback));
    host.TakenEvents();
    host.clock = 0;
    fresh.Play(host, longTone, 64);
    const std::vector<FakeHost::Event> expected = host.TakenEvents();
    EXPECT_EQ(Sounding(expected), 2);
    Play(Silence(64), 64);
    host.TakenEvents();
    const std::int64_t begin = host.clock = static_cast<std::int64_t>(Object().totalSamples.load());
    Play(longTone, 64);
    EXPECT_EQ(host.TakenEvents(), Later(expected, begin));
}

}  // namespace
