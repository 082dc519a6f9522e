// The tracks of a band, the flushes, and the room that is kept ahead. Takes as a whole are compared with the
// rules by the promises MID-1 and MID-2, settings that change beside frames by THR-2.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>
#include <thread>

#include "delivery/rt_recording.h"
#include "tests/delivery/fakes.h"
#include "tests/harmony/allocation_count.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using Events = std::vector<TRecordEvent>;

static_assert(sizeof(TRecordEvent) == 16);  // bytes; two of them are what a note costs

struct Sounding {
    std::int64_t start = 0, end = 0;  // samples since the origin
    int note = 0, velocity = 0;
    float level = 0;
};

// The notes of a take, each of which must be a note on followed by its own note off.
std::vector<Sounding> Soundings(Events events) {
    std::erase_if(events, [](const TRecordEvent& event) { return (event.message & 0xF0) == 0xC0; });
    EXPECT_EQ(events.size() % 2, 0U);
    std::vector<Sounding> result;
    for (std::size_t i = 0; i + 1 < events.size() && !testing::Test::HasFailure(); i += 2) {
        const TRecordEvent &on = events[i], &off = events[i + 1];
        EXPECT_EQ(on.message & 0xF0, 0x90U);
        EXPECT_EQ(off.message, (on.message & 0xFFFF) - 0x10);  // same note and channel, velocity 0
        EXPECT_EQ(off.level, on.level);
        result.push_back({on.time, off.time, static_cast<int>(on.message >> 8 & 0xFF),
                          static_cast<int>(on.message >> 16), on.level});
    }
    return result;
}
auto Sounds(int velocity, float level) {
    return AllOf(Field("velocity", &Sounding::velocity, velocity), Field("level", &Sounding::level, level));
}
auto Message(std::int64_t time, std::uint32_t message) {
    return AllOf(Field("time", &TRecordEvent::time, time), Field("message", &TRecordEvent::message, message),
                 Field("level", &TRecordEvent::level, 0.0F));
}
bool Same(const Events& a, const Events& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(TRecordEvent)) == 0;
}

// Counts what frames and flushes ask of the allocator, and the flushes while stopped and while running.
class Watched : public TRTRecording {
public:
    void Update() override {
        Count([&] { TRTRecording::Update(); });
    }
    void Silence() override {
        ++flushes[running];
        Count([&] { TRTRecording::Silence(); });
    }
    std::size_t allocations = 0;
    int flushes[2] = {};

private:
    template <typename Call>
    void Count(Call call) {
        const std::size_t before = AllocationsOfThisThread();
        call();
        allocations += AllocationsOfThisThread() - before;
    }
};

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
    // At samples of the take: "+100" on of band 45, "-200/50" off of band 50, ".300" a flush.
    void Play(const char* story) {
        std::istringstream steps(story);
        char what = 0;
        for (std::int64_t sample = 0; steps >> what >> sample;) {
            int band = 45;
            if (steps.peek() == '/') steps.ignore() >> band;
            recorder.SetTime(origin + sample);
            if (what == '+') recording->NoteOn(band);
            if (what == '-') recording->NoteOff(band);
            if (what == '.') recording->Silence();
        }
    }
    void FrameAt(float level, std::initializer_list<int> bandsOn) {  // this level in all bands
        std::fill(std::begin(detector.level), std::end(detector.level), level);
        Frame(bandsOn);
    }
    std::vector<Sounding> Take() { return Soundings(recording->GetTake()); }

    Watched* const recording = new Watched;  // the recorder's, once attached
};

TEST_F(Recording, ABandsEventsBecomeItsNotes) {
    const struct {
        const char* name;
        std::int64_t gap, shortest;  // samples: joined up to the one, dropped up to the other
        const char* story;
        std::vector<std::pair<std::int64_t, std::int64_t>> notes;
    } rows[] = {
        {"on and off", 0, 0, "+100 -200 .900", {{100, 200}}},
        {"sounds on: ends at the flush", 0, 0, "+100 .900", {{100, 900}}},
        {"a second on keeps the start", 0, 0, "+100 +150 -200 .900", {{100, 200}}},
        {"a second off keeps the end", 0, 0, "+100 -200 -300 .900", {{100, 200}}},
        {"off while idle", 0, 0, "-100 .900", {}},
        {"resumes at the release's own sample", 0, 0, "+100 -200 +200 -300 .900", {{100, 300}}},
        {"not one sample later", 0, 0, "+100 -200 +201 -300 .900", {{100, 200}, {201, 300}}},
        {"resumes after just the gap", 50, 0, "+100 -200 +250 -300 .900", {{100, 300}}},
        {"not one sample later", 50, 0, "+100 -200 +251 -300 .900", {{100, 200}, {251, 300}}},
        {"from the last release", 50, 0, "+100 -200 +240 -250 +301 .400", {{100, 250}, {301, 400}}},
        {"a flush ends what might resume", 50, 0, "+100 -200 .210 +220 .300", {{100, 200}, {220, 300}}},
        {"no length, no note", 0, 0, "+100 -100 +150 -150 .180 +200 .200", {}},
        {"shortest is too short", 0, 30, "+100 -130 +200 -230 .300 +400 .430", {}},
        {"but no more", 0, 30, "+1 -32 +200 -231 .300 +400 .431", {{1, 32}, {200, 231}, {400, 431}}},
        {"what is dropped leaves no start", 0, 30, "+100 -110 +200 -300 .900", {{200, 300}}},
        {"a joined note counts whole", 50, 150, "+100 -200 +230 -260 .900", {{100, 260}}},
        {"past 32 bits", 0, 0, "+5000000000 -5000000001 .6000000000", {{5000000000, 5000000001}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        recording->Clear();
        StartAt(origin);
        recorder.minNoteGap = row.gap;
        recorder.minNoteLength = row.shortest;
        Play(row.story);
        std::vector<std::pair<std::int64_t, std::int64_t>> notes;
        for (const Sounding& note : Take()) notes.emplace_back(note.start, note.end);
        EXPECT_EQ(notes, row.notes);
        recording->Stop();
    }
}

TEST_F(Recording, EachFlushHasAScaleOfItsOwn) {
    const auto play = [&](std::initializer_list<float> levels) {
        recording->Start();
        for (const float level : levels) FrameAt(level, {45}), FrameAt(level, {});
        recording->Stop();
        return Soundings(std::exchange(recording->take, {}));
    };
    EXPECT_THAT(play({16, 1, 0}), ElementsAre(Sounds(100, 16), Sounds(50, 1), Sounds(0, 0)));
    EXPECT_THAT(play({1}), ElementsAre(Sounds(100, 1)));
    EXPECT_THAT(play({0, 0}), ElementsAre(Sounds(0, 0), Sounds(0, 0)));
    recorder.dynamicVelocity = false;
    EXPECT_THAT(play({16, 1}), ElementsAre(Sounds(100, 16), Sounds(100, 1)));
}

TEST_F(Recording, TheOriginOutlastsAStopButNotAClear) {
    StartAt(origin);
    Play("+0 -10 +20");  // one note is finished, but has not reached the take
    recording->Clear();
    EXPECT_EQ(recording->origin, 0);
    EXPECT_THAT(recording->GetTake(), IsEmpty());
    EXPECT_EQ(recording->pending.size(), 2U);
    recording->Stop(), recording->Clear();
    for (const std::int64_t start : {0, 5000, 8000}) {  // 0 counts as not begun, although the take has begun
        StartAt(start);
        recording->Stop();
    }
    recording->AppendToTake(0x03);  // runs or not
    EXPECT_THAT(recording->GetTake(),
                ElementsAre(Message(0, 0xC0), Message(0, 0xC0), Message(3000, 0xC0), Message(3000, 0x03)));
    EXPECT_EQ(recording->GetElapsed(), 3000);
}

TEST_F(Recording, StartsOnlyOnAnActiveRecorderButIsFlushedAlsoStopped) {
    recorder.RemoveOutput(recording);
    recording->Start(), recording->Stop();  // nobody to ask: no event, and no fall
    recorder.AddOutput(recording);
    recorder.Deactivate();
    recording->Start();
    EXPECT_TRUE(recording->running);
    EXPECT_THAT(recording->GetTake(), IsEmpty());
    EXPECT_EQ(recording->origin, 0);
    recording->Stop(), recording->Stop();
    recorder.AllNotesOff();
    EXPECT_THAT(recording->flushes,
                ElementsAre(3, 0));  // each stop once, when it no longer runs; one by hand
}

TEST_F(Recording, ABandWithoutAMidiNoteNeverLeavesIdleAndLosesWhatItHad) {
    StartAt(origin);
    Play("+0 +0/46 +0/47");
    recorder.messages[45].onMessage = 0U;  // in the middle of a note, as a change beside the frame may
    recorder.messages[46].offMessage = 0U;
    for (const int band : {44, 48}) recorder.messages[band] = {0U, 0U};
    Play("+10/44 -10/45 -10/46 +10/48 -20/48");
    EXPECT_EQ(recording->bandTracks[44].state, TBandTrack::idle);
    EXPECT_EQ(recording->bandTracks[45].state, TBandTrack::on);
    EXPECT_EQ(recording->bandTracks[48].state, TBandTrack::idle);
    Play(".30");
    EXPECT_THAT(Take(), ElementsAre(Field(&Sounding::note, 71)));
    for (const TBandTrack& track : recording->bandTracks) EXPECT_EQ(track.state, TBandTrack::idle);
}

TEST_F(Recording, ListsGrowByHalfAndAreToppedUpWhileRunningOnceHalfTheRoomIsUsed) {
    constexpr std::size_t room = TRTRecording::preparedRoom;
    const Events& take = recording->take;
    const auto fillTo = [&](std::size_t size) {
        while (take.size() < size) recording->AppendToTake(0xC0);
    };
    EXPECT_GE(recording->pending.capacity(), 1024U);
    for (const std::size_t capacity : {1024U, 1536U, 2304U, 3456U}) {
        recording->TopUp();  // stopped
        EXPECT_EQ(take.capacity(), capacity);
        fillTo(capacity + 1);
    }
    recording->Prepare();
    recording->Start();
    const std::size_t prepared = take.capacity(), used = take.size();
    EXPECT_GE(prepared, used + room - 1);  // the program message
    EXPECT_GE(recording->pending.capacity(), room);
    fillTo(used + room / 2 - 2);
    recording->TopUp();
    EXPECT_EQ(take.capacity(), prepared);
    fillTo(used + room / 2 + 1);
    recording->TopUp();
    EXPECT_GE(take.capacity(), take.size() + room);
}

TEST_F(Recording, AnHourLosesNothingAllocatesNothingAndTakesMemoryByItsEvents) {
    recording->Prepare();
    constexpr int hour = 360000, runs = 3;  // frames of 10 ms
    for (int frame = 0; frame < hour; ++frame) {
        if (frame % (hour / runs) == 0) {  // as if silence had stopped the outputs
            recording->Stop();
            recording->Start();
        }
        PlayScale(detector, recorder, frame);
        // Idle calls, 50 ms apart; the first 60000 events must do with the room prepared.
        if (frame > 30000 && frame % 5 == 0) recording->TopUp();
    }
    recording->Stop();
    const Events& take = recording->GetTake();
    EXPECT_EQ(take.size(), 2U * (hour - 1) + runs);  // no length yet for the last, and the programs
    EXPECT_EQ(recording->allocations, 0U);
    const auto bound = [](std::size_t events) { return (events + TRTRecording::preparedRoom) * 3 / 2; };
    EXPECT_LE(take.capacity(), bound(take.size()));
    EXPECT_LE(recording->pending.capacity(), bound(take.size() / runs));
}

// The thread sanitizer says what these claims leave out.
class RecordingThreads : public RecorderTest {
protected:
    RecordingThreads() {
        detector.delay = 0;
        recorder.AddOutput(recording);
        recording->Start();
    }
    TRTRecording* const recording = new TRTRecording;  // the recorder's
};

TEST_F(RecordingThreads, ToppingUpBesideFramesLosesNoEvent) {
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
    EXPECT_GE(Soundings(plain->GetTake()).size(), 99999U);  // the last has no length yet
    EXPECT_TRUE(Same(recording->GetTake(), plain->GetTake()));
}

TEST_F(RecordingThreads, AFlushInTheMiddleOfToppingUpMovesEachEventOnce) {
    const Events waiting(512 * 400 + 1, {1, 0xC0, 0});  // some milliseconds of copying
    for (int round = 0; round < 40; ++round) {
        recording->pending = waiting;
        recording->pending.shrink_to_fit();  // full, so that it is to be copied
        recording->take.clear();
        std::atomic<bool> begun{false};
        std::thread idle([&] {
            begun = true;
            recording->TopUp();
        });
        while (!begun) std::this_thread::yield();
        if (round % 2 == 0) recorder.AllNotesOff();
        idle.join();
        recorder.AllNotesOff();
        EXPECT_THAT(recording->pending, IsEmpty());
        EXPECT_EQ(recording->GetTake().size(), waiting.size());
    }
}

// Who returns from Stop may read the take, even if another thread's flush was still moving notes into it.
TEST_F(RecordingThreads, AfterAStopTheTakeIsWholeAlthoughAnotherFlushWasUnderWay) {
    constexpr int frames = 12000;
    for (int round = 0; round < 8; ++round) {
        for (int i = 0; i < frames; ++i) PlayScale(detector, recorder, round * frames + i);
        std::atomic<bool> begun{false};
        std::thread change([&] {
            begun = true;
            recorder.AllNotesOff();
        });
        while (!begun) std::this_thread::yield();
        recording->Stop();
        const auto notes = Soundings(std::exchange(recording->take, {}));
        change.join();
        EXPECT_THAT(recording->take, IsEmpty());
        ASSERT_EQ(notes.size(), frames - 1U);  // the last has no length yet; it joins its band's next one
        for (const Sounding& note : notes)
            ASSERT_NEAR(note.velocity, 100 * std::pow(note.level / 999.0, 0.25), 1.001) << note.level;
        recording->Start();
    }
}

}  // namespace
