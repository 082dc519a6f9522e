#include "delivery/note_recorder.h"

#include <future>
#include <limits>

#include "tests/delivery/fakes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t Word(unsigned status, unsigned data1, unsigned data2) {
    return status | data1 << 8 | data2 << 16;
}

using Recorder = RecorderTest;

TEST_F(Recorder, BandsBecomeNotesOnTheSemitoneGrid) {
    // note = transpose - 45 + 69 + band; velocity 100 until set, 0 in a note off
    EXPECT_EQ(recorder.messages[0].onMessage, Word(0x90, 24, 100));
    EXPECT_EQ(recorder.messages[45].onMessage, Word(0x90, 69, 100));  // A 440 Hz
    EXPECT_EQ(recorder.messages[45].offMessage, Word(0x80, 69, 0));
    recorder.ChangeMapping(-12, 9, 1);
    EXPECT_EQ(recorder.messages[83].onMessage, Word(0x99, 95, 1));
    EXPECT_EQ(recorder.messages[83].offMessage, Word(0x89, 95, 0));
}

TEST_F(Recorder, BandsBeyondTheMidiRangeHaveNoMessages) {
    recorder.ChangeTranspose(60);  // band b is note b + 84
    EXPECT_EQ(recorder.messages[43].onMessage, Word(0x90, 127, 100));
    EXPECT_EQ(recorder.messages[44].onMessage, 0U);
    EXPECT_EQ(recorder.messages[44].offMessage, 0U);
    recorder.ChangeTranspose(-30);  // band b is note b - 6
    EXPECT_EQ(recorder.messages[5].onMessage, 0U);
    EXPECT_EQ(recorder.messages[6].onMessage, Word(0x90, 0, 100));
    for (const std::int32_t extreme :
         {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        recorder.ChangeTranspose(extreme);
        for (const auto& band : recorder.messages) EXPECT_EQ(band.onMessage | band.offMessage, 0U);
    }
}

TEST_F(Recorder, ChannelVelocityAndProgramUseTheirLowBits) {
    recorder.ChangeMapping(0, 0x7F, 0xE4);  // channel 15, velocity 0x64
    EXPECT_EQ(recorder.messages[45].onMessage, Word(0x9F, 69, 0x64));
    recorder.SetProgram(-1);
    EXPECT_EQ(recorder.ProgramMessage(), Word(0xCF, 127, 0));
    recorder.ChangeMapping(0, -16, -1);
    EXPECT_EQ(recorder.messages[45].onMessage, Word(0x90, 69, 127));
}

TEST_F(Recorder, AttachStartsAFreshClockAndOpensAllBands) {
    recorder.enabled[3] = false;
    Frame({});
    FakeDetector other(60);
    other.frameLength = 480;
    other.sampleRate = 48000;
    recorder.Attach(&other);
    EXPECT_EQ(recorder.GetTime(), 0);
    EXPECT_EQ(recorder.GetBandCount(), 60);
    EXPECT_EQ(recorder.GetFrameLength(), 480);
    EXPECT_EQ(recorder.GetSampleRate(), 48000U);
    EXPECT_TRUE(recorder.enabled[3]);
    recorder.Attach(nullptr);  // changes nothing
    EXPECT_EQ(recorder.GetBandCount(), 60);
    EXPECT_EQ(recorder.detector, &other);
}

TEST_F(Recorder, ADetectorWithoutArraysOrBandsGivesNoEvents) {
    FakeDetector noFlags, noLevels, noBands(0);
    noFlags.bandOn = nullptr;
    noLevels.bandLevel = nullptr;
    for (FakeDetector* const bare : {&noFlags, &noLevels, &noBands}) {
        recorder.Attach(&detector);
        FakeOut* const out = Add("a");
        recorder.Attach(bare);
        for (int band = 0; band < 84; ++band) bare->Set(band, true);
        out->Start();
        recorder.OnFrame();
        out->Stop();
        EXPECT_EQ(recorder.GetBandCount(), 0);
        EXPECT_THAT(Taken(), IsEmpty());
    }
}

TEST_F(Recorder, TakesNoMoreThan128Bands) {
    FakeDetector wide(150);
    for (int band = 0; band < 150; ++band) wide.Set(band, true);
    recorder.Attach(&wide);
    Add("a")->Start();
    recorder.OnFrame();
    EXPECT_EQ(recorder.GetBandCount(), 128);
    EXPECT_EQ(log.back(), "a+127");
}

// 72.5 ms x 48 samples a ms = 3480. The stated order, ms x 0.001 and then x rate in single precision, gives
// that; the same in double precision falls just short of it.
TEST_F(Recorder, BandDelaysAreSinglePrecisionSamples) {
    static_assert(static_cast<int>(72.5 * 0.001 * 48000.0) == 3479);
    FakeDetector other;
    other.sampleRate = 48000;
    other.delay = 72.5F;
    recorder.Attach(&other);
    EXPECT_EQ(recorder.BandDelaySamples(0), 3480);
    EXPECT_EQ(TNoteRecorder().BandDelaySamples(0), 0);  // no detector
}

TEST_F(Recorder, FramesWhileInactiveMoveNothing) {
    Add("a")->Start();
    recorder.Deactivate();
    Frame({45});
    EXPECT_EQ(recorder.GetTime(), 0);
    EXPECT_FALSE(recorder.playing[45]);
    EXPECT_THAT(Taken(), IsEmpty());
    recorder.Activate(7);
    EXPECT_EQ(recorder.startOffset, 7U);
    recorder.OnFrame();
    EXPECT_THAT(Taken(), ElementsAre("a+45"));
}

// Looks at the recorder while it is being told.
class Witness : public TNoteOut {
public:
    void NoteOn(std::int32_t band) override {
        time = recorder->GetTime();
        wasPlaying = recorder->playing[band];
    }
    void NoteOff(std::int32_t) override {}
    std::int64_t time = -1;
    bool wasPlaying = true;
};

TEST_F(Recorder, OutputsSeeTheFramesEndOnTheClockAndTheFrameBeforeInPlaying) {
    auto* const witness = new Witness;
    recorder.AddOutput(witness);
    witness->Start();
    recorder.SetTime(1000);
    Frame({45});
    EXPECT_EQ(witness->time, 1441);
    EXPECT_FALSE(witness->wasPlaying);
    EXPECT_TRUE(recorder.playing[45]);
    EXPECT_EQ(recorder.GetTime(), 1441);
}

TEST_F(Recorder, EventsOfAFrameAscendByBandAndOutputByOutput) {
    Add("a")->Start();
    Add("b")->Start();
    Frame({2, 50});
    Taken();
    Frame({1, 50, 83});  // 1 and 83 come, 2 goes, 50 stays
    EXPECT_THAT(Taken(), ElementsAre("a+1", "a-2", "a+83", "b+1", "b-2", "b+83"));
}

TEST_F(Recorder, AMaskedBandGivesNoEventsAndEndsWhenItIsMasked) {
    Add("a")->Start();
    recorder.enabled[7] = false;
    Frame({7, 8});
    EXPECT_THAT(Taken(), ElementsAre("a+8"));
    recorder.enabled[8] = false;
    Frame({7, 8});
    EXPECT_THAT(Taken(), ElementsAre("a-8"));
    recorder.enabled[7] = true;
    Frame({7, 8});
    EXPECT_THAT(Taken(), ElementsAre("a+7"));
}

TEST_F(Recorder, LevelsAreThoseOfTheLastFrame) {
    detector.level[45] = 1.5F;
    Frame({45});
    EXPECT_EQ(recorder.GetBandLevel(45), 1.5F);
}

TEST_F(Recorder, AChangeEndsNotesByTheOldTableAndRetriggersByTheNew) {
    FakeEffect effect;
    auto* const out = new TVSTMIDIOut(&effect);
    recorder.AddOutput(out);
    out->Start();
    Frame({45});
    recorder.ChangeMapping(1, 2, 50);
    recorder.OnFrame();
    std::vector<int> bytes;
    for (const VstMidiEvent& event : effect.sent)
        for (int i = 0; i < 3; ++i) bytes.push_back(static_cast<unsigned char>(event.midiData[i]));
    EXPECT_THAT(bytes, ElementsAre(0x90, 69, 100, 0x80, 69, 0, 0x92, 70, 50));
}

TEST_F(Recorder, ChangeToTheSameValueDoesNothingAndSetDoesItAnyway) {
    Add("a")->Start();
    Frame({45});
    Taken();
    recorder.ChangeVelocity(100);
    recorder.ChangeTranspose(0);
    recorder.ChangeChannel(0);
    recorder.ChangeMapping(0, 0, 100);
    EXPECT_THAT(Taken(), IsEmpty());

    const auto retriggers = [&](auto change) {
        change();
        recorder.OnFrame();
        return Taken();
    };
    EXPECT_THAT(retriggers([&] { recorder.SetVelocity(100); }), ElementsAre("a-45", "a+45"));
    EXPECT_THAT(retriggers([&] { recorder.SetTranspose(0); }), ElementsAre("a-45", "a+45"));
    EXPECT_THAT(retriggers([&] { recorder.SetMapping(0, 0, 100); }), ElementsAre("a-45", "a+45"));
    EXPECT_THAT(retriggers([&] { recorder.SetChannel(0); }), ElementsAre("a-45", "a!c0", "a+45"));
    EXPECT_THAT(retriggers([&] { recorder.ChangeVelocity(99); }), ElementsAre("a-45", "a+45"));
    EXPECT_THAT(retriggers([&] { recorder.ChangeTranspose(2); }), ElementsAre("a-45", "a+45"));
}

TEST_F(Recorder, AChangeOfChannelAloneSendsTheProgramWithTheFlagClear) {
    Add("a");
    Add("b");
    recorder.ChangeChannel(3);
    EXPECT_THAT(Taken(), ElementsAre("a!c3", "b!c3"));
    recorder.ChangeMapping(0, 4, 100);  // a channel too, but this one says nothing of programs
    recorder.SetMapping(0, 5, 100);
    EXPECT_THAT(Taken(), IsEmpty());
    recorder.SetChannel(6);
    EXPECT_THAT(Taken(), ElementsAre("a!c6", "b!c6"));
}

TEST_F(Recorder, ProgramsGoOutOnlyWithTheFlagSet) {
    Add("a");
    recorder.SetProgram(5);
    EXPECT_THAT(Taken(), IsEmpty());
    recorder.SetSendProgramChange(true);
    EXPECT_THAT(Taken(), ElementsAre("a!5c0"));  // what was set meanwhile
    recorder.SetSendProgramChange(true);
    EXPECT_THAT(Taken(), ElementsAre("a!5c0"));
    recorder.SetProgram(5);
    EXPECT_THAT(Taken(), IsEmpty());
    recorder.SetProgram(6);
    EXPECT_THAT(Taken(), ElementsAre("a!6c0"));
    recorder.SetSendProgramChange(false);
    recorder.SetProgram(7);
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(Recorder, TheFirstNoteStartsTheOutputsThatWaitForIt) {
    auto* const waiting = new FakeOut("w", log);
    auto* const plain = new PlainOut("p", log);  // its AutoStart does nothing
    recorder.AddAutoStartOutput(waiting);
    recorder.AddAutoStartOutput(plain);
    recorder.SetStartOnFirstNote(true);
    recorder.enabled[9] = false;
    Frame({});
    EXPECT_FALSE(waiting->running);
    Frame({9, 45});
    // Started from the flags and then updated against `playing`, which does not know the note yet.
    EXPECT_THAT(Taken(), ElementsAre("w+45", "w+45"));
    EXPECT_FALSE(plain->running);
    waiting->Stop();
    Frame({45, 46});
    EXPECT_FALSE(waiting->running);  // once only,
    recorder.SetStartOnFirstNote(true);
    recorder.enabled[45] = recorder.enabled[46] = false;
    Frame({46});
    EXPECT_TRUE(waiting->running);  // until asked again; the mask plays no part in it
}

// While the recorder is active its lock may be held for a whole frame, and a setting must not wait for that;
// while it is not, Start and Stop are the ones that go without. The caller's thread is not this one, so a
// lock taken against the rule would never be given.
TEST_F(Recorder, ChangesWhileActiveAndStartsWhileInactiveTakeNoLock) {
    FakeOut* const out = Add("a");
    recorder.Lock();
    std::async(std::launch::async, [&] {
        recorder.ChangeVelocity(1);
        recorder.ChangeTranspose(1);
        recorder.ChangeChannel(1);
        recorder.ChangeMapping(2, 2, 2);
        recorder.SetVelocity(3);
    }).get();
    recorder.Deactivate();
    std::async(std::launch::async, [&] { out->Start(); }).get();
    EXPECT_TRUE(out->running);
    std::async(std::launch::async, [&] { out->Stop(); }).get();
    EXPECT_FALSE(out->running);
    recorder.Unlock();
    EXPECT_EQ(recorder.velocity, 3);
}

}  // namespace
