// What a stop leaves behind, and what goes on through it.
#include <atomic>
#include <new>
#include <thread>

#include "delivery/rt_recording.h"
#include "plugin/gui_plugin.h"
#include "tests/plugin/plugin_test.h"

namespace {

// Memory runs out in the next `left` frames.
class Failing : public TNoteOut {
public:
    void NoteOn(std::int32_t) override {}
    void NoteOff(std::int32_t) override {}
    void Update() override {
        if (left > 0 && left-- > 0) throw std::bad_alloc();
    }
    int left = 0;
};

class Stops : public PluginTest {
protected:
    CORVAguivst& Gui() const { return dynamic_cast<CORVAguivst&>(Object()); }
    std::vector<unsigned char> Levels() const {
        std::vector<unsigned char> levels;
        Gui().buildLevels(levels);
        return levels;
    }
    bool RecordingRuns() const {
        bool runs = false;
        Gui().noteRecorder.outputs.ForEach([&](const TNoteOut& output) {
            if (dynamic_cast<const TRTRecording*>(&output) != nullptr) runs = output.running;
        });
        return runs;
    }
    const std::vector<float> tone = Sines({69, 76}, 0.3);
};

TEST_F(Stops, ThePictureIsDarkAfterASilentBlockAndAfterASuspend) {
    for (const bool suspends : {false, true}) {
        Play(tone);
        EXPECT_EQ(Levels()[45], 255);
        suspends ? static_cast<void>(plug->Call(effMainsChanged)) : static_cast<void>(Play(Silence(64)));
        EXPECT_THAT(Levels(), testing::Each(0)) << suspends;
    }
}

// A block that begins after a suspend starts all outputs again, however the two lay before.
TEST_F(Stops, ARecordingTakesNotesAgainAfterASuspendBesideBlocks) {
    host.keepsEvents = false;
    Gui().startRecording();
    const std::vector<float> block = {0.1F};
    std::atomic<int> blocks{0};
    std::atomic<bool> done{false};
    std::thread audio([&] {
        for (; !done; ++blocks) Play(block);
    });
    const auto awaitBlocks = [&](int more) {
        for (const int target = blocks + more; blocks < target;) std::this_thread::yield();
    };
    int dead = 0;
    for (int round = 0; round < 200; ++round) {
        awaitBlocks(1);
        plug->Call(effMainsChanged);
        awaitBlocks(2);  // of which the second began after it
        dead += RecordingRuns() ? 0 : 1;
    }
    done = true;
    audio.join();
    EXPECT_EQ(dead, 0);
}

TEST_F(Stops, FramesInWhichMemoryRunsOutLeaveLaterNotesWhereTheyBelong) {
    auto* const failing = new Failing;  // the recorder's, once attached
    Object().noteRecorder.AddOutput(failing);
    host.TakenEvents();
    Play(tone);
    const std::vector<FakeHost::Event> first = host.TakenEvents();
    ASSERT_EQ(Sounding(first), 2);
    Play(Silence(64));
    host.TakenEvents();
    const std::int64_t begin = host.clock;
    failing->left = 3;  // the first note comes in the fourth frame at the earliest
    Play(tone);
    EXPECT_EQ(host.TakenEvents(), Later(first, begin));
}

}  // namespace
