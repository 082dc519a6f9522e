#include "delivery/note_out.h"

#include <memory>
#include <random>

#include "tests/delivery/fakes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using NoteOuts = RecorderTest;

TEST_F(NoteOuts, StartPicksUpTheBandsThatAreOn) {
    Frame({3, 45});
    detector.Set(4, true);  // after the frame: the flags count, not `playing`
    recorder.enabled[45] = false;
    FakeOut* const out = Add("a");
    EXPECT_THAT(Taken(), IsEmpty());  // attaching alone brings no notes
    out->Start();
    EXPECT_THAT(Taken(), ElementsAre("a+3", "a+4"));
    EXPECT_EQ(out->soundingCount, 2);
    out->Start();  // already running: nothing to tell, the count begins anew
    EXPECT_THAT(Taken(), IsEmpty());
    EXPECT_EQ(out->soundingCount, 0);
}

TEST_F(NoteOuts, StopClosesWhatTheOutputWasToldAndThenNothing) {
    FakeOut* const out = Add("a");
    out->Stop();  // not running
    out->Start();
    Frame({3, 45});
    detector.Set(3, false);  // after the frame: `playing` counts, not the flags
    Taken();
    out->Stop();
    EXPECT_THAT(Taken(), ElementsAre("a-3", "a-45"));
    EXPECT_FALSE(out->running);
    EXPECT_EQ(out->soundingCount, 0);
    out->Stop();
    Frame({50});
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(NoteOuts, SilenceSpeaksOnceAFrame) {
    FakeOut* const out = Add("a");
    out->Start();
    Frame({45});
    Taken();
    out->Silence();
    EXPECT_THAT(Taken(), ElementsAre("a-45"));
    out->Silence();
    out->Stop();  // it has nothing to close
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(NoteOuts, StopBeforeTheFirstFrameClosesNothing) {
    Frame({45});
    FakeOut* const out = Add("a");
    out->Start();
    EXPECT_THAT(Taken(), ElementsAre("a+45"));
    EXPECT_TRUE(out->silenced);
    out->Stop();
    EXPECT_THAT(Taken(), IsEmpty());
    EXPECT_FALSE(out->running);
}

TEST_F(NoteOuts, StartAfterAllNotesOffTellsAHeldNoteTwice) {
    Frame({45});
    recorder.AllNotesOff();
    FakeOut* const out = Add("a");
    out->Start();
    recorder.OnFrame();
    EXPECT_THAT(Taken(), ElementsAre("a+45", "a+45"));
    EXPECT_EQ(out->soundingCount, 2);
}

TEST_F(NoteOuts, AllNotesOffReachesRunningOutputsAndRetriggers) {
    Add("a")->Start();
    Add("b");
    Add("c")->Start();
    Frame({45});
    Taken();
    recorder.AllNotesOff();
    EXPECT_THAT(Taken(), ElementsAre("a-45", "c-45"));
    EXPECT_FALSE(recorder.playing[45]);
    recorder.OnFrame();
    EXPECT_THAT(Taken(), ElementsAre("a+45", "c+45"));
}

TEST_F(NoteOuts, WithoutAnActiveRecorderAStartOnlySetsTheState) {
    FakeOut alone("x", log);
    alone.Start();
    EXPECT_TRUE(alone.running);
    alone.Stop();
    Frame({45});
    recorder.Deactivate();
    FakeOut* const out = Add("a");
    out->Start();
    EXPECT_TRUE(out->running);
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(NoteOuts, AttachingSendsTheProgramOnceIfItIsWanted) {
    recorder.sendProgramChange = true;
    recorder.AddOutput(nullptr);
    recorder.AddAutoStartOutput(nullptr);
    recorder.RemoveOutput(nullptr);
    FakeOut* const out = Add("a");
    EXPECT_EQ(out->recorder.load(), &recorder);
    EXPECT_THAT(Taken(), ElementsAre("a!c0"));
    recorder.AddOutput(out);  // attached already
    EXPECT_THAT(Taken(), IsEmpty());
    recorder.Broadcast(0x123456);
    EXPECT_THAT(Taken(), ElementsAre("a!123456"));
}

TEST_F(NoteOuts, ARemovedOutputIsTheCallersAndHearsNoMore) {
    int deaths = 0;
    auto out = std::make_unique<FakeOut>("a", log, &deaths);
    recorder.AddAutoStartOutput(out.get());
    out->Start();
    Frame({45});
    Taken();
    recorder.RemoveOutput(out.get());
    EXPECT_EQ(out->recorder.load(), nullptr);
    EXPECT_TRUE(out->running);  // neither stopped nor told
    Frame({46});
    recorder.AllNotesOff();
    recorder.SetStartOnFirstNote(true);
    Frame({47});
    EXPECT_THAT(Taken(), IsEmpty());
    EXPECT_TRUE(recorder.OutputsAreQuiet());
    EXPECT_EQ(deaths, 0);
}

TEST_F(NoteOuts, TheRecorderTakesItsOutputsWithItWithoutAWord) {
    int deaths = 0;
    auto dying = std::make_unique<TNoteRecorder>();
    dying->Attach(&detector);
    dying->Activate(0);
    auto* const a = new FakeOut("a", log, &deaths);
    auto* const b = new FakeOut("b", log, &deaths);
    dying->AddOutput(a);
    dying->AddAutoStartOutput(b);
    a->Start();
    b->Start();
    detector.Set(45, true);
    dying->OnFrame();
    Taken();
    dying.reset();
    EXPECT_EQ(deaths, 2);
    EXPECT_THAT(Taken(), IsEmpty());  // although each stops itself in its destructor
}

// Changes the list from inside a frame.
class Meddler : public FakeOut {
public:
    using FakeOut::FakeOut;
    void NoteOn(std::int32_t band) override {
        FakeOut::NoteOn(band);
        if (removed != nullptr) recorder->RemoveOutput(std::exchange(removed, nullptr));
        if (added != nullptr) recorder->AddOutput(std::exchange(added, nullptr));
    }
    TNoteOut* removed = nullptr;
    TNoteOut* added = nullptr;
};

TEST_F(NoteOuts, AFrameSurvivesOutputsThatComeAndGoInTheMiddleOfIt) {
    for (const bool itself : {false, true}) {
        Meddler* const meddler = new Meddler("m", log);
        recorder.AddOutput(meddler);
        FakeOut* const next = Add("n");
        FakeOut* const last = Add("o");
        auto late = std::make_unique<FakeOut>("l", log);
        meddler->Start();
        next->Start();
        last->Start();
        Taken();
        meddler->removed = itself ? static_cast<TNoteOut*>(meddler) : next;
        meddler->added = itself ? nullptr : late.get();  // idle: whether this frame meets it does not show
        Frame({45});
        if (itself)
            EXPECT_THAT(Taken(), ElementsAre("m+45", "n+45", "o+45"));
        else
            EXPECT_THAT(Taken(), ElementsAre("m+45", "o+45"));
        Frame({});
        EXPECT_EQ(Taken().size(), 2U);  // those that stayed
        for (TNoteOut* const out : {static_cast<TNoteOut*>(meddler), static_cast<TNoteOut*>(next),
                                    static_cast<TNoteOut*>(last), static_cast<TNoteOut*>(late.get())})
            recorder.RemoveOutput(out);
        delete meddler;
        delete next;
        delete last;
    }
}

// The rules once more, as plain as can be: three outputs, flags, mask and what was playing.
struct Model {
    struct Out {
        std::string name;
        bool running = false;
        bool silenced = true;
    };
    static constexpr int bands = 84;
    bool on[bands] = {};
    bool enabled[bands] = {};
    bool playing[bands] = {};
    Out outs[3] = {{"a"}, {"b"}, {"c"}};
    Log log;

    void Tell(const Out& out, char what, int band) { log.push_back(out.name + what + std::to_string(band)); }
    void Frame() {
        for (Out& out : outs) {
            if (!out.running) continue;
            for (int b = 0; b < bands; ++b)
                if ((on[b] && enabled[b]) != playing[b]) Tell(out, playing[b] ? '-' : '+', b);
            out.silenced = false;
        }
        for (int b = 0; b < bands; ++b) playing[b] = on[b] && enabled[b];
    }
    void Start(Out& out) {
        for (int b = 0; b < bands; ++b)
            if (!out.running && on[b] && enabled[b]) Tell(out, '+', b);
        out.running = true;
    }
    void Silence(Out& out) {
        if (!out.running || out.silenced) return;
        for (int b = 0; b < bands; ++b)
            if (playing[b]) Tell(out, '-', b);
        out.silenced = true;
    }
    void AllNotesOff() {
        for (Out& out : outs) Silence(out);
        for (bool& band : playing) band = false;
    }
};

TEST_F(NoteOuts, RandomOperationsGiveTheEventsOfThePlainRules) {
    Model model;
    for (bool& band : model.enabled) band = true;
    FakeOut* const outs[3] = {Add("a"), Add("b"), Add("c")};
    std::minstd_rand random(1);
    for (int step = 0; step < 20000; ++step) {
        const std::size_t which = random() % 3;
        const int band = static_cast<int>(random() % 84);
        switch (random() % 12) {
            case 0: outs[which]->Start(), model.Start(model.outs[which]); break;
            case 1:
                outs[which]->Stop(), model.Silence(model.outs[which]);
                model.outs[which].running = false;
                break;
            case 2: outs[which]->Silence(), model.Silence(model.outs[which]); break;
            case 3: recorder.AllNotesOff(), model.AllNotesOff(); break;
            case 4: recorder.enabled[band] = model.enabled[band] = !model.enabled[band]; break;
            case 5:
                if (recorder.velocity != band) model.AllNotesOff();
                recorder.ChangeVelocity(band);
                break;
            default: detector.Set(band, model.on[band] = !model.on[band]); recorder.OnFrame(), model.Frame();
        }
        ASSERT_EQ(Taken(), std::exchange(model.log, {})) << "step " << step;
    }
}

}  // namespace
