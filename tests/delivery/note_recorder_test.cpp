#include "delivery/note_recorder.h"

#include <future>
#include <limits>
#include <memory>

#include "tests/delivery/fakes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Recorder = RecorderTest;

TEST_F(Recorder, BandsBecomeMessagesOnTheSemitoneGrid) {
    // note = transpose - 45 + 69 + band; status | note << 8 | velocity << 16
    EXPECT_EQ(recorder.messages[45].onMessage, 0x644590U);  // A 440 Hz is 45 hex, velocity 100 until set
    EXPECT_EQ(recorder.messages[45].offMessage, 0x4580U);
    recorder.ChangeMapping(-12, 0x79, 0x81);  // of channel and velocity the low bits
    EXPECT_EQ(recorder.messages[83].onMessage, 0x015F99U);
    for (const std::int32_t extreme :
         {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        recorder.ChangeTranspose(extreme);
        for (const auto& band : recorder.messages) EXPECT_EQ(band.onMessage | band.offMessage, 0U);
    }
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
    EXPECT_EQ(recorder.detector, &other);
    EXPECT_EQ(recorder.GetBandCount(), 60);
}

TEST_F(Recorder, ADetectorWithoutArraysOrBandsGivesNoEventsAndNoneGivesMoreThan128) {
    FakeDetector noFlags, noLevels, noBands(0), wide(150);
    noFlags.bandOn = nullptr;
    noLevels.bandLevel = nullptr;
    Add('a')->Start();
    for (FakeDetector* const bare : {&noFlags, &noLevels, &noBands, &wide}) {
        recorder.Attach(bare);
        for (int band = 0; band < 150; ++band) bare->Set(band, true);
        recorder.OnFrame();
        const int bands = bare == &wide ? 128 : 0;
        EXPECT_EQ(recorder.GetBandCount(), bands);
        EXPECT_EQ(Taken().size(), static_cast<std::size_t>(bands));
    }
}

// 82.517 ms x 44.1 samples a ms = 3638.9997. In single precision, first x 0.001 and then x rate, that rounds
// up to 3639; in double precision, or with the rate first, it does not.
TEST_F(Recorder, BandDelaysAreSinglePrecisionSamplesInTheStatedOrder) {
    constexpr float delay = 82.517F;
    static_assert(static_cast<int>(delay * 0.001 * 44100) == 3638);
    static_assert(static_cast<int>(delay * 44100.0F * 0.001F) == 3638);
    detector.delay = delay;
    EXPECT_EQ(recorder.BandDelaySamples(0), 3639);
    EXPECT_EQ(TNoteRecorder().BandDelaySamples(0), 0);  // no detector
}

// Looks at the recorder while it is being told, and changes the list of outputs there if it is to.
class Meddler : public FakeOut {
public:
    using FakeOut::FakeOut;
    void NoteOn(std::int32_t band) override {
        FakeOut::NoteOn(band);
        time = recorder->GetTime();
        wasPlaying = recorder->playing[band];
        TNoteRecorder* const owner = recorder;
        for (TNoteOut* const out : std::exchange(removed, {})) owner->RemoveOutput(out);
        for (TNoteOut* const out : std::exchange(added, {})) owner->AddOutput(out);
    }
    std::vector<TNoteOut*> removed, added;
    std::int64_t time = -1;
    bool wasPlaying = true;
};

TEST_F(Recorder, OutputsSeeTheFramesEndOnTheClockAndTheFrameBeforeInPlaying) {
    auto* const witness = new Meddler('m', log);
    recorder.AddOutput(witness);
    witness->Start();
    recorder.SetTime(1000);
    Frame({45});
    EXPECT_EQ(witness->time, 1441);
    EXPECT_FALSE(witness->wasPlaying);
    EXPECT_TRUE(recorder.playing[45]);
}

TEST_F(Recorder, AFrameSurvivesOutputsThatComeAndGoInTheMiddleOfIt) {
    for (const bool removesItself : {false, true})
        for (const bool removesNext : {false, true}) {
            Meddler meddler('m', log);
            FakeOut next('n', log), last('o', log), late('l', log);
            const std::initializer_list<TNoteOut*> all = {&meddler, &next, &last, &late};
            for (TNoteOut* const out : all) {
                if (out != &late) recorder.AddOutput(out);
                out->Start();
            }
            if (removesItself) meddler.removed.push_back(&meddler);
            if (removesNext) meddler.removed.push_back(&next);
            meddler.added = {&late};
            Frame({45});
            std::erase(log, "l+45");  // whether this frame still meets the late one is open
            EXPECT_EQ(Taken(), removesNext ? (Log{"m+45", "o+45"}) : (Log{"m+45", "n+45", "o+45"}));
            Frame({});
            Log stayed = {"o-45", "l-45"};
            if (!removesNext) stayed.insert(stayed.begin(), "n-45");
            if (!removesItself) stayed.insert(stayed.begin(), "m-45");
            EXPECT_EQ(Taken(), stayed);
            EXPECT_TRUE(recorder.OutputsAreQuiet());
            for (TNoteOut* const out : all) recorder.RemoveOutput(out);
            EXPECT_EQ(meddler.recorder.load(), nullptr);
        }
}

TEST_F(Recorder, TakesItsOutputsWithItWithoutAWord) {
    int deaths = 0;
    auto dying = std::make_unique<TNoteRecorder>();
    dying->Attach(&detector);
    dying->Activate(0);
    dying->AddOutput(nullptr);
    dying->AddAutoStartOutput(nullptr);
    dying->RemoveOutput(nullptr);
    dying->AddOutput(new FakeOut('a', log, &deaths));
    FakeOut* const both = new FakeOut('b', log, &deaths);
    dying->AddAutoStartOutput(both);  // in two lists
    FakeOut removed('c', log);
    dying->AddOutput(&removed);
    dying->RemoveOutput(&removed);  // the caller's again
    both->Start();
    detector.Set(45, true);
    dying->OnFrame();
    Taken();
    dying.reset();
    EXPECT_EQ(deaths, 2);
    EXPECT_THAT(Taken(), IsEmpty());  // although each stops itself in its destructor
}

TEST_F(Recorder, AChangeEndsNotesByTheOldTableAndRetriggersByTheNew) {
    FakeEffect effect;
    auto* const out = new TVSTMIDIOut(&effect);
    recorder.AddOutput(out);
    out->Start();
    Frame({45});
    recorder.ChangeMapping(1, 2, 50);
    recorder.OnFrame();
    Log messages;
    for (const VstMidiEvent& event : effect.sent) messages.emplace_back(event.midiData, 3);
    EXPECT_THAT(messages, ElementsAre("\x90\x45\x64", std::string("\x80\x45\0", 3), "\x92\x46\x32"));
}

// While the recorder is active its lock may be held for a whole frame, and a setting must not wait for that;
// while it is not, Start and Stop are the ones that go without. The caller's thread is not this one, so a
// lock taken against the rule would never be given.
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
    recorder.Deactivate();
    std::async(std::launch::async, [&] { out->Start(); }).get();
    EXPECT_TRUE(out->running);
    std::async(std::launch::async, [&] { out->Stop(); }).get();
    EXPECT_FALSE(out->running);
    recorder.Unlock();
    EXPECT_EQ(recorder.velocity, 3);
}

}  // namespace
