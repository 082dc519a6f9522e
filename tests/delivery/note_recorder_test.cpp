#include "delivery/note_recorder.h"

#include <future>

#include "tests/delivery/fakes.h"

namespace {

using Recorder = RecorderTest;

TEST_F(Recorder, AnAttachedDetectorStartsAFreshClockWithAllItsBandsUpTo128) {
    FakeDetector noFlags, wide(150);
    noFlags.bandOn = nullptr;
    Add('a')->Start();
    for (FakeDetector* const other : {&noFlags, &wide}) {
        recorder.enabled[3] = false;
        recorder.Attach(other);
        recorder.Attach(nullptr);  // changes nothing
        for (int band = 0; band < 150; ++band) other->Set(band, true);
        recorder.OnFrame();
        const int bands = other == &wide ? 128 : 0;
        EXPECT_EQ(recorder.GetBandCount(), bands);
        EXPECT_EQ(Taken().size(), static_cast<std::size_t>(bands));
    }
    recorder.Attach(&wide);
    EXPECT_EQ(recorder.GetTime(), 0);
    wide.delay = 82.517F;  // ms; 3638.9997 samples, which in single precision, x 0.001 first, are 3639
    EXPECT_EQ(recorder.BandDelaySamples(0), 3639);
}

// Changes the list of outputs while it is being notified.
class Meddler : public FakeOut {
public:
    using FakeOut::FakeOut;
    void NoteOn(std::int32_t band) override {
        FakeOut::NoteOn(band);
        TNoteRecorder* const owner = recorder;
        for (TNoteOut* const out : std::exchange(removed, {})) owner->RemoveOutput(out);
        for (TNoteOut* const out : std::exchange(added, {})) owner->AddOutput(out);
    }
    std::vector<TNoteOut*> removed, added;
};

TEST_F(Recorder, AFrameSurvivesOutputsThatComeAndGoInTheMiddleOfIt) {
    Meddler meddler('m', log);
    FakeOut next('n', log), last('o', log), late('l', log);
    for (TNoteOut* const out :
         {static_cast<TNoteOut*>(&meddler), static_cast<TNoteOut*>(&next), static_cast<TNoteOut*>(&last)}) {
        recorder.AddOutput(out);
        out->Start();
    }
    late.Start();
    meddler.removed = {&meddler, &next};
    meddler.added = {&late};
    Frame({45});
    std::erase(log, "l+45");  // whether this frame still reaches the late one is open
    EXPECT_EQ(Taken(), (Log{"m+45", "o+45"}));
    Frame({});
    EXPECT_EQ(Taken().size(), 2U);
    for (TNoteOut* const out : {&last, &late}) recorder.RemoveOutput(out);
}

// What waits for the first note gets it twice: as it starts, and as the frame is offered to it.
TEST_F(Recorder, TheFirstNoteOfAllStartsWhatWaitsForIt) {
    FakeOut* const waits = new FakeOut('w', log);  // the recorder's
    recorder.AddAutoStartOutput(waits);
    Frame({45});
    EXPECT_FALSE(waits->running);  // it was not requested
    recorder.SetStartOnFirstNote(true);
    Frame({});
    EXPECT_FALSE(waits->running);
    Frame({50});
    EXPECT_EQ(Taken(), (Log{"w+50", "w+50"}));
    waits->Stop();
    Frame({50, 51});
    EXPECT_FALSE(waits->running);  // not the first any more
}

// While the recorder is active its lock may be held for a whole frame, and a setting must not wait for that;
// while it is not, Start and Stop take none. Another thread than this one would wait for ever.
TEST_F(Recorder, ChangesWhileActiveAndStartsWhileInactiveTakeNoLock) {
    FakeOut* const out = Add('a');
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
        std::async(std::launch::async, [&] { starts ? out->Start() : out->Stop(); }).get();
        EXPECT_EQ(out->running, starts);
    }
    recorder.Unlock();
}

}  // namespace
