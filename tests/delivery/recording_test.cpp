// The recorder and its recording among several threads, and the capacity that is kept ahead.
#include "delivery/rt_recording.h"
#include "tests/delivery/fakes.h"
#include "tests/support/watch.h"

namespace {

using Events = std::vector<TRecordEvent>;

// 100 notes a second: each frame one band comes on and another goes off.
void PlayScale(FakeDetector& detector, TNoteRecorder& recorder, int frame) {
    detector.Set((frame + 83) % 84, false);
    detector.Set(frame % 84, true);
    detector.level[frame % 84] = static_cast<float>(frame % 1000);
    recorder.OnFrame();
}

class Recording : public testing::Test, protected Bands {
protected:
    Recording() {
        detector.delay = 0;
        recorder.AddOutput(recording);
    }
    TRTRecording* const recording = new TRTRecording;  // the recorder's, once attached
};

// While the recorder is active its lock may be held for a whole frame, and a setting must not wait for that;
// while it is not, Start and Stop take none. Another thread than this one would wait for ever.
TEST_F(Recording, ChangesWhileActiveAndStartsWhileInactiveTakeNoLock) {
    recorder.Lock();
    std::async(std::launch::async, [&] {
        recorder.ChangeVelocity(1);
        recorder.ChangeTranspose(1);
        recorder.ChangeChannel(1);
        recorder.ChangeMapping(2, 2, 2);
        recorder.SetVelocity(3);
    }).get();
    EXPECT_EQ(recorder.velocity, 3);
    recorder.Deactivate();
    for (const bool starts : {true, false}) {
        std::async(std::launch::async, [&] { starts ? recording->Start() : recording->Stop(); }).get();
        EXPECT_EQ(recording->running, starts);
    }
    recorder.Unlock();
}

TEST_F(Recording, AnHourLosesNothingAllocatesNothingAndTakesMemoryByItsEvents) {
    recording->Prepare();
    recording->Start();
    constexpr int hour = 360000;  // frames of 10 ms
    std::uint64_t toppedUp = 0;
    const std::uint64_t before = Allocations::Requested();
    for (int frame = 0; frame < hour; ++frame) {
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
    EXPECT_EQ(take.size(), 2U * (hour - 1) + 1);  // no length yet for the last, and the program
    EXPECT_EQ(take.capacity(), take.size());
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
        const Events whole = recording->GetTake();
        change.join();
        EXPECT_EQ(recording->GetTake().size(), whole.size());
        recording->Clear();
        ASSERT_EQ(whole.size(), 2U * (frames - 1) + 1);  // no length yet for the last, and the program
        recording->Start();
    }
}

}  // namespace
