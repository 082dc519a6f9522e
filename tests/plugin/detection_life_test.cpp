// When detection runs: signal starts it, silence and suspend stop it.
#include "tests/plugin/plugin_test.h"

namespace {

class DetectionLife : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        host.events.clear();
    }
    const std::vector<float> tone = Sines({69, 76}, 0.3);
};

// The detector forgets at either end, so a tone is the first tone once more, later.
TEST_F(DetectionLife, SignalStartsItAndASilentBlockOrASuspendEndsTheNotes) {
    EXPECT_TRUE(Object().stopped);
    Play(tone);
    EXPECT_FALSE(Object().stopped);
    const std::vector<FakeHost::Event> first = host.TakenEvents();
    EXPECT_EQ(Sounding(first), 2);
    for (const bool suspends : {false, true}) {
        if (suspends)
            plug->Call(effMainsChanged, 0, 0);
        else
            Play(Silence(64));
        EXPECT_TRUE(Object().stopped);
        EXPECT_EQ(Sounding(host.events), -2);
        EXPECT_EQ(host.TakenEvents().size(), 2U);  // note by note, and no other message
        plug->Call(effMainsChanged, 0, 1);         // resume alone starts nothing
        EXPECT_TRUE(Object().stopped);
        const std::int64_t begin = host.clock;
        Play(tone);
        EXPECT_EQ(host.TakenEvents(), Later(first, begin));
    }
}

TEST_F(DetectionLife, AHostMayChangeTheRateFromInsideAnEvent) {
    Play(tone);
    const std::vector<FakeHost::Event> first = host.TakenEvents();
    for (const float rate : {96000.0F, 8000.0F, 1.0F}) {
        Play(Silence(64));
        host.atNextEvent = [&] { plug->Call(effSetSampleRate, 0, 0, nullptr, rate); };
        Play(tone);
        EXPECT_FALSE(host.atNextEvent);  // it was called
        plug->Call(effSetSampleRate, 0, 0, nullptr, 44100);
        Play(Silence(64));
        host.TakenEvents();
        const std::int64_t begin = host.clock;
        Play(tone);
        EXPECT_EQ(host.TakenEvents(), Later(first, begin)) << "after " << rate;
    }
}

}  // namespace
