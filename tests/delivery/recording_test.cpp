// The tracks of a band, the flushes, and the capacity that is kept ahead.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>
#include <thread>

#include "delivery/rt_recording.h"
#include "tests/delivery/fakes.h"
#include "tests/support/watch.h"

namespace {

using Events = std::vector<TRecordEvent>;

static_assert(sizeof(TRecordEvent) == 16);  // bytes; two of them are what a note costs

struct Sounding {
    std::int64_t start = 0, end = 0;  // samples since the origin
    int note = 0, velocity = 0;
    float level = 0;
};
using Loudness = std::vector<std::pair<int, float>>;  // velocity and level of each note

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
bool Same(const Events& a, const Events& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(TRecordEvent)) == 0;
}

// Counts what frames and flushes ask of the allocator.
class Watched : public TRTRecording {
public:
    void Update() override {
        const std::uint64_t before = Allocations::Requested();
        TRTRecording::Update();
        allocations += Allocations::Requested() - before;
    }
    void Silence() override {
        flushedRunning |= running;
        const std::uint64_t before = Allocations::Requested();
        TRTRecording::Silence();
        allocations += Allocations::Requested() - before;
    }
    std::uint64_t allocations = 0;
    bool flushedRunning = false;  // a stop flushes behind its end, so that nothing new comes in after it
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
    // clang-format off
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
    // clang-format on
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
        Loudness heard;
        for (const Sounding& note : Soundings(std::exchange(recording->take, {})))
            heard.emplace_back(note.velocity, note.level);
        return heard;
    };
    EXPECT_EQ(play({16, 1, 0}), (Loudness{{100, 16.0F}, {50, 1.0F}, {0, 0.0F}}));
    EXPECT_EQ(play({1}), (Loudness{{100, 1.0F}}));
    for (int level = 1; level < 1000; ++level)  // the loudest of a flush has the setting, whatever it is
        EXPECT_EQ(play({static_cast<float>(level)})[0].first, 100) << level;
    recorder.dynamicVelocity = false;
    EXPECT_EQ(play({16, 1}), (Loudness{{100, 16.0F}, {100, 1.0F}}));
}

TEST_F(Recording, TheOriginOutlastsAStopButNotAClear) {
    StartAt(origin);
    Play("+0 -10 +20");  // one note is finished, but has not reached the take
    recording->Clear();
    EXPECT_EQ(recording->origin, 0);
    EXPECT_TRUE(recording->GetTake().empty());
    EXPECT_EQ(recording->pending.size(), 2U);
    recording->Stop(), recording->Clear();
    for (const std::int64_t start : {0, 5000, 8000}) {  // 0 counts as not begun, although the take has begun
        StartAt(start);
        recording->Stop();
    }
    recording->AppendToTake(0x03);  // runs or not
    const Events expected = {{0, 0xC0, 0}, {0, 0xC0, 0}, {3000, 0xC0, 0}, {3000, 0x03, 0}};
    EXPECT_TRUE(Same(recording->GetTake(), expected));
    EXPECT_EQ(recording->GetElapsed(), 3000);
    EXPECT_FALSE(recording->flushedRunning);
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
        EXPECT_TRUE(recording->take.empty());
        ASSERT_EQ(notes.size(), frames - 1U);  // the last has no length yet; it joins its band's next one
        for (const Sounding& note : notes)
            ASSERT_NEAR(note.velocity, 100 * std::pow(note.level / 999.0, 0.25), 1.001) << note.level;
        recording->Start();
    }
}

}  // namespace
