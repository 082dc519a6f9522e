// The tracks of a band, the flushes, and the capacity that is kept ahead.
#include <thread>

#include "delivery/rt_recording.h"
#include "tests/delivery/fakes.h"
#include "tests/support/watch.h"

namespace {

using Events = std::vector<TRecordEvent>;
using Spans = std::vector<std::pair<std::int64_t, std::int64_t>>;  // samples of the take

// Begin and end of each note, which must be a note on followed by its own note off.
Spans NotesOf(Events events) {
    std::erase_if(events, [](const TRecordEvent& event) { return (event.message & 0xF0) == 0xC0; });
    EXPECT_EQ(events.size() % 2, 0U);
    Spans notes;
    for (std::size_t i = 0; i + 1 < events.size() && !testing::Test::HasFailure(); i += 2) {
        const TRecordEvent &on = events[i], &off = events[i + 1];
        EXPECT_EQ(on.message & 0xF0, 0x90U);
        EXPECT_EQ(off.message, (on.message & 0xFFFF) - 0x10);  // same note and channel, velocity 0
        EXPECT_EQ(off.level, on.level);
        notes.emplace_back(on.time, off.time);
    }
    return notes;
}

// 100 notes a second: each frame one band comes on and another goes off.
void PlayScale(FakeDetector& detector, TNoteRecorder& recorder, int frame) {
    detector.Set((frame + 83) % 84, false);
    detector.Set(frame % 84, true);
    detector.level[frame % 84] = static_cast<float>(frame % 1000);
    recorder.OnFrame();
}

class Recording : public RecorderTest {
protected:
    static constexpr std::int64_t origin = 1000;  // of most takes, on the recorder's clock

    Recording() {
        detector.delay = 0;
        recorder.AddOutput(recording);
    }
    void StartAt(std::int64_t time) {
        recorder.SetTime(time);
        recording->Start();
    }

    TRTRecording* const recording = new TRTRecording;  // the recorder's, once attached
};

TEST_F(Recording, TheLoudestNoteHasTheSettingItselfAndAllHaveWhereLevelsDoNotCount) {
    for (int level = 1; level < 1000; ++level) {
        detector.level[45] = static_cast<float>(level);
        detector.level[50] = 1e6F;
        recorder.dynamicVelocity = level % 2 == 0;
        recording->Start();
        level % 2 == 0 ? Frame({45}) : Frame({45, 50});
        Frame({});
        recording->Stop();
        ASSERT_EQ(std::exchange(recording->take, {})[1].message, 0x644590U) << level;
    }
}

TEST_F(Recording, TheOriginOutlastsAStopButNotAClear) {
    StartAt(origin);
    recording->NoteOn(45);
    recorder.SetTime(origin + 10);
    recording->NoteOff(45);
    recorder.SetTime(origin + 20);
    recording->NoteOn(45);  // one note is finished, but has not reached the take
    recording->Clear();
    EXPECT_EQ(recording->origin, 0);
    EXPECT_EQ(recording->pending.size(), 2U);
    recording->Stop(), recording->Clear();
    for (const std::int64_t start : {0, 5000, 8000}) {  // 0 counts as not begun, although the take has begun
        StartAt(start);
        recording->Stop();
    }
    recording->AppendToTake(0x03);  // runs or not
    std::vector<std::pair<std::int64_t, std::uint32_t>> take;
    for (const TRecordEvent& event : recording->GetTake()) take.emplace_back(event.time, event.message);
    EXPECT_EQ(take, (decltype(take){{0, 0xC0}, {0, 0xC0}, {3000, 0xC0}, {3000, 0x03}}));
}

TEST_F(Recording, AnHourLosesNothingAllocatesNothingAndTakesMemoryByItsEvents) {
    recording->Prepare();
    constexpr int hour = 360000, runs = 3;  // frames of 10 ms
    std::uint64_t toppedUp = 0;
    const std::uint64_t before = Allocations::Requested();
    for (int frame = 0; frame < hour; ++frame) {
        if (frame % (hour / runs) == 0) {  // as if silence had stopped the outputs
            recording->Stop();
            recording->Start();
        }
        PlayScale(detector, recorder, frame);
        if (frame <= 30000 || frame % 5 != 0)
            continue;  // the first events must do with the capacity prepared
        const std::uint64_t begin = Allocations::Requested();
        recording->TopUp();  // idle calls, 50 ms apart
        toppedUp += Allocations::Requested() - begin;
    }
    recording->Stop();
    EXPECT_EQ(Allocations::Requested() - before, toppedUp);
    const Events& take = recording->GetTake();
    EXPECT_EQ(take.size(), 2U * (hour - 1) + runs);  // no length yet for the last, and the programs
    EXPECT_LE(take.capacity(), (take.size() + TRTRecording::preparedRoom) * 3 / 2);
}

TEST_F(Recording, ToppingUpBesideFramesLosesNoEvent) {
    recording->Start();
    auto* const plain = new TRTRecording;
    recorder.AddOutput(plain);
    plain->Start();
    std::atomic<int> frames{0}, times{0};  // at least so many of both, side by side
    const auto goOn = [&] { return frames < 100000 || times < 100; };
    std::thread audio([&] {
        while (goOn()) PlayScale(detector, recorder, frames++);
    });
    for (; goOn(); ++times) recording->TopUp();
    audio.join();
    recording->Stop(), plain->Stop();
    EXPECT_GE(NotesOf(plain->GetTake()).size(), 99999U);  // the last has no length yet
    EXPECT_EQ(NotesOf(recording->GetTake()), NotesOf(plain->GetTake()));
}

// Who returns from Stop may read the take, even if another thread's flush was still moving notes into it.
TEST_F(Recording, AfterAStopTheTakeIsWholeAlthoughAnotherFlushWasUnderWay) {
    constexpr int frames = 12000;
    recording->Start();
    for (int round = 0; round < 8; ++round) {
        for (int i = 0; i < frames; ++i) PlayScale(detector, recorder, round * frames + i);
        std::atomic<bool> begun{false};
        std::thread change([&] {
            begun = true;
            recorder.AllNotesOff();
        });
        while (!begun) std::this_thread::yield();
        recording->Stop();
        const Events whole = std::exchange(recording->take, {});
        change.join();
        EXPECT_TRUE(recording->take.empty());
        ASSERT_EQ(NotesOf(whole).size(), frames - 1U);  // the last has no length yet; its band goes on
        recording->Start();
    }
}

}  // namespace
