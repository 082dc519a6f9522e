#include "delivery/note_recorder.h"

#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <thread>

#include "tests/delivery/fakes.h"

namespace {

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

// Changes the list of outputs while it is being told.
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
    both->Start();
    detector.Set(45, true);
    dying->OnFrame();
    Taken();
    dying.reset();
    EXPECT_EQ(deaths, 2);
    EXPECT_TRUE(Taken().empty());  // although each stops itself in its destructor
}

// A change leaves alone what does not differ; a setter ends the notes and speaks in any case.
TEST_F(Recorder, SettersActEvenWhereNothingChangesAndChangesDoNot) {
    const struct {
        const char* name;
        std::function<void()> call;
        Log told;
    } rows[] = {
        {"ChangeTranspose", [this] { recorder.ChangeTranspose(0); }, {}},
        {"ChangeChannel", [this] { recorder.ChangeChannel(0); }, {}},
        {"ChangeVelocity", [this] { recorder.ChangeVelocity(100); }, {}},
        {"ChangeMapping", [this] { recorder.ChangeMapping(0, 0, 100); }, {}},
        {"SetProgram", [this] { recorder.SetProgram(0); }, {}},
        {"SetTranspose", [this] { recorder.SetTranspose(0); }, {"a-45"}},
        {"SetVelocity", [this] { recorder.SetVelocity(100); }, {"a-45"}},
        {"SetMapping", [this] { recorder.SetMapping(0, 0, 100); }, {"a-45"}},
        {"SetChannel", [this] { recorder.SetChannel(0); }, {"a-45", "a!192"}},  // the program: C0 hex
        {"SetSendProgramChange", [this] { recorder.SetSendProgramChange(true); }, {"a!192"}},
    };
    Add('a')->Start();
    for (const auto& row : rows) {
        Frame({}), Frame({45});
        Taken();
        row.call();
        EXPECT_EQ(Taken(), row.told) << row.name;
    }
    recorder.SetMapping(-12, 3, 5);
    EXPECT_EQ(recorder.messages[45].onMessage, 0x053993U);  // note 69 - 12 = 39 hex
}

// What waits for the first note hears it twice: as it starts, and as the frame is offered to it.
TEST_F(Recorder, TheFirstNoteOfAllStartsWhatWaitsForIt) {
    FakeOut* const waits = new FakeOut('w', log);  // the recorder's
    recorder.AddAutoStartOutput(waits);
    Add('a')->Start();
    Frame({45});
    EXPECT_FALSE(waits->running);  // nobody asked
    recorder.SetStartOnFirstNote(true);
    Frame({});
    EXPECT_FALSE(waits->running);
    Taken();
    Frame({50});
    EXPECT_EQ(Taken(), (Log{"w+50", "w+50", "a+50"}));
    waits->Stop();
    Frame({50, 51});
    EXPECT_FALSE(waits->running);  // not the first any more
    recorder.SetStartOnFirstNote(true);
    Frame({50, 51});
    EXPECT_TRUE(waits->running);
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

// An output to a fake host. At 44100 Hz the fake detector's 40 ms are 1764 samples.
class VstMidiOut : public RecorderTest {
protected:
    VstMidiOut() : out(new TVSTMIDIOut(&effect)) { recorder.AddOutput(out); }
    // Where a note of band 45 lands with these clocks.
    std::int32_t NoteAt(std::int64_t time, std::uint64_t total) {
        recorder.SetTime(time);
        effect.total = total;
        out->NoteOn(45);
        out->NoteOff(45);
        const std::vector<VstMidiEvent> sent = effect.Taken();
        EXPECT_EQ(sent.size(), 2U);
        EXPECT_EQ(sent[0].deltaFrames, sent[1].deltaFrames);
        return sent[0].deltaFrames;
    }

    FakeEffect effect;
    TVSTMIDIOut* out;  // the recorder's
};

TEST_F(VstMidiOut, ANoteIsDatedBackToWhereItBeganInTheSound) {
    EXPECT_EQ(NoteAt(441, 0), 441 - 1764);  // the first frame of a block: before the block
    EXPECT_EQ(NoteAt(50000, 48000), 2000 - 1764);
    detector.delay = 0;
    EXPECT_EQ(NoteAt(441, 441), 0);
}

TEST_F(VstMidiOut, TheDateIsRightPastTheEdgesOf32BitsAndWrapsItself) {
    for (const std::int64_t edge : {std::int64_t{1} << 31, std::int64_t{1} << 32, std::int64_t{1} << 33}) {
        const auto total = static_cast<std::uint64_t>(edge);
        EXPECT_EQ(NoteAt(edge + 300, total - 200), 500 - 1764);
        EXPECT_EQ(NoteAt(edge - 300, total + 200), -500 - 1764);
    }
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(NoteAt((std::int64_t{1} << 31) + 1764, 0), lowest);
    EXPECT_EQ(NoteAt(lowest + 1763, 0), std::numeric_limits<std::int32_t>::max());  // one below the lowest
}

TEST_F(VstMidiOut, TheHostThatNeedsItGetsOffsetsInsideTheBlock) {
    effect.ableton = true;
    EXPECT_EQ(NoteAt(441, 0), 441);
    EXPECT_EQ(NoteAt(441, 500), 0);
    EXPECT_EQ(NoteAt(0, std::uint64_t{1} << 31), 0);  // the lowest of all
}

}  // namespace
