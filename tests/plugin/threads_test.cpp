// A host's other threads beside its audio thread. Whatever they do, the audio passes; the thread sanitizer
// says whether they met.
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
    // Nothing of the storm stays behind: after a silence a tone gives what it gives a fresh instance.
    void ExpectAsFresh() {
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

    const std::vector<float> tone = Sines({69, 76}, 0.02), longTone = Sines({69, 76}, 0.3);
};

TEST_F(Threads, SuspendsAndRatesMayComeAtAnyTime) {
    AudioBeside([&] {
        for (int i = 0; i < 200; ++i) {
            plug->Call(effMainsChanged, 0, i % 3 == 0 ? 0 : 1);
            if (i % 20 == 0) plug->Call(effSetSampleRate, 0, 0, nullptr, i % 40 == 0 ? 48000.0F : 22050.0F);
        }
        plug->Call(effSetSampleRate, 0, 0, nullptr, 44100);
    });
    ExpectAsFresh();
}

TEST_F(Threads, ParametersAndTextsMayComeAtAnyTime) {
    AudioBeside([&] {
        char name[] = "Flute";
        for (int i = 0; i < 2000; ++i) {
            plug->effect->setParameter(plug->effect, i % 3, static_cast<float>(i % 100) / 100.0F);
            plug->effect->setParameter(plug->effect, 3 + i % 84, 0.5F);
            plug->effect->getParameter(plug->effect, i % 96);
            plug->Text(effGetParamDisplay, i % 96);
            plug->Call(effSetProgramName, 0, 0, name);
            plug->Text(effGetProgramName);
            plug->Call(effCanDo, 0, 0, name);
        }
        for (std::int32_t i = 3; i <= 86; ++i) plug->effect->setParameter(plug->effect, i, 1.0F);
        plug->effect->setParameter(plug->effect, 0, 0.87F);
        plug->effect->setParameter(plug->effect, 1, 0.875F);
        plug->effect->setParameter(plug->effect, 2, 0.79F);
    });
    ExpectAsFresh();
}

}  // namespace
