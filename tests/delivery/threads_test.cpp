// Two threads on one recorder. What the tests state holds in any build; the thread sanitizer says the rest.
#include <atomic>
#include <memory>
#include <thread>

#include "tests/delivery/fakes.h"

namespace {

// Judges each event on the spot: band 45 only, so note 69 plain or 74 transposed, by a velocity that was set.
class JudgingEffect : public IVSTMIDIEffect {
public:
    std::uint64_t GetTotalSamples() const override { return 0; }
    bool HostIsAbleton() const override { return false; }
    void SendEvents(VstEvents& events) override {
        const char* const data = reinterpret_cast<const VstMidiEvent*>(events.events[0])->midiData;
        const bool note = data[1] == 69 || data[1] == 74;
        const bool on = data[0] == '\x90' && (data[2] == 100 || data[2] == 40 || data[2] == 90);
        const bool off = data[0] == '\x80' && data[2] == 0;
        if (!note || !(on || off)) faults.fetch_add(1, std::memory_order_relaxed);
        count.fetch_add(1, std::memory_order_relaxed);
    }
    std::atomic<int> faults{0};
    std::atomic<int> count{0};
};

class Threads : public testing::Test {
protected:
    Threads() {
        recorder.Attach(&detector);
        recorder.Activate(0);
        recorder.sendProgramChange = false;
        auto* const out = new TVSTMIDIOut(&effect);
        recorder.AddOutput(out);
        out->Start();
    }
    // Frames in which band 45 goes on and off, for as long as `work` takes.
    template <typename Work>
    void FramesBeside(Work work) {
        std::atomic<bool> done{false};
        std::thread audio([&] {
            for (int frame = 0; frame < 1000 || !done; ++frame) {
                detector.Set(45, frame % 2 == 0);
                recorder.OnFrame();
            }
        });
        work();
        done = true;
        audio.join();
    }

    FakeDetector detector;
    JudgingEffect effect;
    TNoteRecorder recorder;
};

TEST_F(Threads, ChangesBesideFramesNeverMixTwoTablesInAWord) {
    FramesBeside([&] {
        for (int i = 0; i < 1000; ++i) {
            recorder.ChangeVelocity(i % 2 == 0 ? 40 : 90);
            recorder.ChangeTranspose(i % 3 == 0 ? 5 : 0);
        }
    });
    EXPECT_EQ(effect.faults, 0);
    EXPECT_GT(effect.count, 0);
}

// Counts without any protection of its own: only the recorder's lock keeps its two threads apart.
class CountingOut : public TmtNoteOut {
public:
    explicit CountingOut(long& counter) : count(counter) {}
    void NoteOn(std::int32_t) override { ++count; }
    void NoteOff(std::int32_t) override { ++count; }

private:
    long& count;
};

TEST_F(Threads, OutputsComeAndGoBesideFrames) {
    FramesBeside([&] {
        for (int i = 0; i < 300; ++i) {
            long count = 0;
            auto out = std::make_unique<CountingOut>(count);
            recorder.AddOutput(out.get());
            out->Start();
            out->Stop();
            recorder.RemoveOutput(out.get());
            while (!recorder.OutputsAreQuiet()) std::this_thread::yield();
            EXPECT_FALSE(out->running);
        }
    });
    EXPECT_EQ(effect.faults, 0);
}

}  // namespace
