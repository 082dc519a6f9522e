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

TEST_F(DetectionLife, ASilentBlockStopsWhatASignalStarted) {
    EXPECT_TRUE(Object().stopped);
    Play(tone);
    EXPECT_FALSE(Object().stopped);
    EXPECT_EQ(Sounding(host.TakenEvents()), 2);
    Play(Silence(64), 64);
    EXPECT_TRUE(Object().stopped);
    EXPECT_EQ(Sounding(host.events), -2);
    EXPECT_EQ(host.TakenEvents().size(), 2U);  // note by note, and no other message
    EXPECT_FALSE(Object().vstMidiOut->running);
    Play(Silence(1000), 100);  // more of it does no more than count
    EXPECT_TRUE(host.events.empty());
    EXPECT_EQ(Object().silentSamples, 1064U);
    EXPECT_EQ(Object().totalSamples, tone.size() + 1064);
    Play(tone);
    EXPECT_EQ(Object().silentSamples, 0U);
}

TEST_F(DetectionLife, TheRecordersClockCatchesUpInSilence) {
    Play(tone);
    Play(Silence(5000), 700);
    // The clock is set at a block's begin; one without length shows where the last one ended.
    plug->effect->processReplacing(plug->effect, nullptr, nullptr, 0);
    EXPECT_EQ(Object().noteRecorder.GetTime(), static_cast<std::int64_t>(Object().totalSamples.load()));
}

// The recorder took its frame of 441 samples at the first rate. At twice the rate frames come half as often,
// and its clock would lag by half; each block catches up what is more than a frame.
TEST_F(DetectionLife, TheRecordersClockKeepsUpWithAHigherRate) {
    plug->Call(effSetSampleRate, 0, 0, nullptr, 88200);
    Play(Sines({69}, 1.0, 88200), 512);
    const auto total = static_cast<std::int64_t>(Object().totalSamples.load());
    EXPECT_LE(total - Object().noteRecorder.GetTime(), 441 + 512);
}

// The detector forgets at a silent block, so a tone after any silence is the first tone once more, later.
TEST_F(DetectionLife, NotesAfterASilenceAreDatedAsNotesAtTheBegin) {
    Play(tone);
    const std::vector<FakeHost::Event> first = host.TakenEvents();
    ASSERT_EQ(Sounding(first), 2);
    for (const int silence : {1, 440, 44101, 150000}) {
        Play(Silence(static_cast<std::size_t>(silence)), 997);
        host.TakenEvents();
        const std::int64_t begin = host.clock;
        Play(tone);
        EXPECT_EQ(host.TakenEvents(), Later(first, begin)) << "after " << silence;
    }
}

TEST_F(DetectionLife, ABlockThatCancelsOutIsSilentThoughItIsNot) {
    Play(tone);
    EXPECT_TRUE(Play({0.5F, -0.25F, -0.25F}));
    EXPECT_EQ(Object().silentSamples, 3U);
    EXPECT_TRUE(Object().stopped);
    EXPECT_EQ(Sounding(host.events), 0);
    Play({0.5F, -0.25F, -0.2499F});  // 15000 - 7500 - 7497
    EXPECT_FALSE(Object().stopped);
}

TEST_F(DetectionLife, SuspendEndsTheNotesAndTheNextBlockStartsAgain) {
    Play(tone);
    const std::vector<FakeHost::Event> first = host.TakenEvents();
    plug->Call(effMainsChanged, 0, 0);
    EXPECT_TRUE(Object().stopped);
    EXPECT_EQ(Sounding(host.TakenEvents()), -2);
    plug->Call(effMainsChanged, 0, 0);  // at rest already
    EXPECT_TRUE(host.events.empty());
    plug->Call(effMainsChanged, 0, 1);  // resume alone starts nothing
    EXPECT_TRUE(Object().stopped);
    const std::int64_t begin = host.clock;
    Play(tone);
    EXPECT_EQ(host.TakenEvents(), Later(first, begin));
    for (int i = 0; i < 3; ++i) plug->Call(effMainsChanged, 0, i % 2);  // suspend, resume, suspend
    Play(tone);  // processing while suspended is processing
    EXPECT_EQ(Sounding(host.events), 0);
}

// The counter is set forward, since a day of audio would take its time. The notes begin before the edge and
// are heard behind it.
TEST_F(DetectionLife, DatesStayRightPastTheEdgesOf32BitClocks) {
    Play(tone);
    const std::vector<FakeHost::Event> first = host.TakenEvents();
    for (const int bit : {31, 32, 33}) {
        Play(Silence(64));
        host.TakenEvents();
        const std::int64_t begin = host.clock = (std::int64_t{1} << bit) - 1000;
        Object().totalSamples = static_cast<std::uint64_t>(begin);
        Play(tone);
        EXPECT_EQ(host.TakenEvents(), Later(first, begin)) << "2^" << bit;
    }
}

// Hosts call back from inside an event: every call must be survived there, and nothing of it may stay behind.
TEST_F(DetectionLife, AHostMayCallBackFromInsideAnEvent) {
    Play(tone);
    const std::vector<FakeHost::Event> first = host.TakenEvents();
    float sample = 0.5F;
    float* block = &sample;
    AEffect* const effect = plug->effect;
    const std::function<void()> calls[] = {
        [&] { plug->Call(effMainsChanged, 0, 0); },
        [&] { plug->Call(effMainsChanged, 0, 1); },
        [&] { plug->Call(effSetSampleRate, 0, 0, nullptr, 96000); },
        [&] { plug->Call(effSetSampleRate, 0, 0, nullptr, 8000); },
        [&] { plug->Call(effSetSampleRate, 0, 0, nullptr, 1); },
        [&] { effect->processReplacing(effect, &block, &block, 1); },
        [&] { effect->setParameter(effect, 2, 0.5F); },
        [&] { effect->setParameter(effect, 0, 0.1F); },
    };
    for (const std::function<void()>& call : calls) {
        Play(Silence(64));
        host.atNextEvent = call;
        Play(tone);
        EXPECT_FALSE(host.atNextEvent);  // it was called
        plug->Call(effSetSampleRate, 0, 0, nullptr, 44100);
        effect->setParameter(effect, 0, 0.87F);
        effect->setParameter(effect, 2, 0.79F);
        Play(Silence(64));
        host.TakenEvents();
        const auto begin = static_cast<std::int64_t>(Object().totalSamples.load());
        host.clock = begin;
        Play(tone);
        EXPECT_EQ(host.TakenEvents(), Later(first, begin));
    }
}

}  // namespace
