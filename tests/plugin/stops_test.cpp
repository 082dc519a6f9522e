// What a stop leaves behind, and what goes on through it.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <thread>

#include "delivery/rt_recording.h"
#include "module/plugin_entry.h"
#include "plugin/gui_plugin.h"
#include "tests/support/host.h"
#include "tests/support/music.h"

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

class Stops : public testing::Test {
protected:
    Stops() { host.Open(OpenPlugin); }
    CORVAguivst& Gui() const { return host.Object<CORVAguivst>(); }
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
    bool Play(const Audio& audio) { return host.Play(audio); }

    Host host;
    const Audio tone = Tones({69, 76}, 0.3);
};

TEST_F(Stops, ThePictureIsDarkAfterASilentBlockAndAfterASuspend) {
    for (const bool suspends : {false, true}) {
        Play(tone);
        EXPECT_EQ(Levels()[45], 255);
        suspends ? static_cast<void>(host.Call(effMainsChanged)) : static_cast<void>(Play(Silence(64)));
        const std::vector<unsigned char> levels = Levels();
        EXPECT_EQ(std::count(levels.begin(), levels.end(), 0), std::ssize(levels)) << suspends;
    }
}

// A block that begins after a suspend starts all outputs again, however the two lay before.
TEST_F(Stops, ARecordingTakesNotesAgainAfterASuspendBesideBlocks) {
    host.keepsEvents = false;
    Gui().startRecording();
    const Audio block = {0.1F};
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
        host.Call(effMainsChanged);
        awaitBlocks(2);  // of which the second began after it
        dead += RecordingRuns() ? 0 : 1;
    }
    done = true;
    audio.join();
    EXPECT_EQ(dead, 0);
}

TEST_F(Stops, FramesInWhichMemoryRunsOutLeaveLaterNotesWhereTheyBelong) {
    auto* const failing = new Failing;  // the recorder's, once attached
    Gui().noteRecorder.AddOutput(failing);
    host.TakenEvents();
    Play(tone);
    const std::vector<Host::Event> first = host.TakenEvents();
    ASSERT_EQ(first.size(), 2U);  // both notes begin
    Play(Silence(64));
    host.TakenEvents();
    const std::int64_t begin = host.clock;
    failing->left = 3;  // the first note comes in the fourth frame at the earliest
    Play(tone);
    EXPECT_EQ(host.TakenEvents(), Later(first, begin));
}

}  // namespace
