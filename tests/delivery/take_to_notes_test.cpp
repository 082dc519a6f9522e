#include <algorithm>
#include <memory>
#include <random>

#include "delivery/rt_recording.h"
#include "notes/notes.h"
#include "tests/delivery/fakes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

using Take = std::vector<TRecordEvent>;
constexpr std::uint32_t tickRate = 22050;  // Hz; at this rate a sample is a tick

TRecordEvent On(std::int64_t time, unsigned note, unsigned velocity = 100, unsigned channel = 0) {
    return {time, 0x90U | channel | note << 8 | velocity << 16, 1.0F};
}
TRecordEvent Off(std::int64_t time, unsigned note, unsigned channel = 0) {
    return {time, 0x80U | channel | note << 8, 1.0F};
}
TRecordEvent Program(std::int64_t time, unsigned program, unsigned channel = 0) {
    return {time, 0xC0U | channel | program << 8, 0.0F};
}

struct Written {
    std::uint32_t begin = 0, end = 0;
    int pitch = 45, level = -624, program = 0, layer = 1, channel = 1;  // note 69 at velocity 100
    bool operator==(const Written&) const = default;
};
void PrintTo(const Written& note, std::ostream* out) {
    *out << note.begin << "-" << note.end << " pitch " << note.pitch << " level " << note.level << " program "
         << note.program << " layer " << note.layer << " channel " << note.channel;
}
std::vector<Written> Notes(const Take& take, std::uint32_t layers = 1, std::uint32_t rate = tickRate) {
    const auto score = std::make_unique<TNotes>();
    TakeToNotes(take, *score, layers, rate);
    std::vector<Written> result;
    for (const TNote* note : score->notes)
        result.push_back({note->GetBegin(), note->GetEnd(), note->pitch, note->level, note->program,
                          note->layer, note->channel});
    return result;
}

TEST(TakeToNotes, CountsTicksOfTheSameLengthAtEveryRate) {
    for (const unsigned rate : {8000U, 11025U, 22050U, 44100U, 48000U, 96000U, 192000U}) {
        const std::int64_t hour = 3600LL * rate;  // 3600 x 22050 = 79380000 ticks
        EXPECT_THAT(Notes({On(0, 69), Off(hour, 69)}, 1, rate), ElementsAre(Written{0, 79380000}));
        EXPECT_THAT(Notes({On(hour - 1, 69), Off(hour * 10, 69)}, 1, rate),
                    ElementsAre(Written{79379999 - tickRate / (rate + 1), 793800000}));
    }
    EXPECT_THAT(Notes({On(0, 69), Off(10, 69)}, 1, 0), IsEmpty());
    // 2^32 ticks are 54 hours; a note across that line has an end before its begin, and is one tick long.
    const std::int64_t line = std::int64_t{1} << 32;
    EXPECT_THAT(Notes({On(line + 5, 69), Off(line + 9, 69)}), ElementsAre(Written{5, 9}));
    EXPECT_THAT(Notes({On(line - 9, 69), Off(line + 5, 69)}), ElementsAre(Written{4294967287, 4294967288}));
}

TEST(TakeToNotes, PairsEventsByNoteAndChannel) {
    EXPECT_THAT(Notes({Off(5, 69),
                       On(10, 69),
                       On(20, 69),
                       On(25, 69, 100, 15),
                       Off(30, 69),
                       Off(40, 69),
                       Off(45, 69, 15),
                       On(50, 69),
                       On(60, 70),
                       {61, 0x45B0, 0},
                       {62, 0xE0, 0}}),
                ElementsAre(Written{10, 20}, Written{20, 30}, Written{25, 45, 45, -624, 0, 1, 16}));
    EXPECT_THAT(Notes({}), IsEmpty());
    EXPECT_THAT(Notes({Program(0, 5), Off(3, 69), Program(9, 6)}), IsEmpty());
}

TEST(TakeToNotes, PitchIsTheNoteLess24AndLevelFollowsTheVelocity) {
    const struct {
        unsigned note, velocity;
        int pitch, level;  // note - 24 modulo 256; (velocity x 693 - 88026) / 30, cut towards zero
    } rows[] = {{24, 127, 0, 0},    {127, 100, 103, -624}, {23, 64, 255, -1455},
                {0, 1, 232, -2911}, {60, 0, 36, -2934},    {0x80 + 69, 0x80 + 100, 45, -624}};
    for (const auto& row : rows)
        EXPECT_THAT(Notes({On(1, row.note, row.velocity), Off(2, row.note)}),
                    ElementsAre(Written{1, 2, row.pitch, row.level}));
}

TEST(TakeToNotes, ANoteHasTheProgramOfItsChannelAtItsBegin) {
    Take take = {Program(0, 3), Program(5, 0x84, 1), On(10, 69), Program(15, 7), On(20, 69, 100, 1),
                 Off(30, 69),   Off(40, 69, 1),      On(50, 69), Off(60, 69)};
    std::minstd_rand random(1);
    for (int order = 0; order < 20; ++order) {  // the take's own order says nothing
        EXPECT_THAT(Notes(take), ElementsAre(Written{10, 30, 45, -624, 3}, Written{20, 40, 45, -624, 4, 1, 2},
                                             Written{50, 60, 45, -624, 7}));
        std::shuffle(take.begin(), take.end(), random);
    }
}

// The note on closes the old note and opens a new one, which the note off closes at no length: one tick.
TEST(TakeToNotes, AtOneSampleOfChannel1ProgramGoesBeforeOnAndOnBeforeOff) {
    Take same = {Off(500, 69), On(500, 69), Program(500, 9), {500, 0x45B0, 0}};
    std::vector<int> order = {0, 1, 2, 3};
    do {
        Take take = {On(100, 69)};
        for (const int at : order) take.push_back(same[static_cast<std::size_t>(at)]);
        EXPECT_THAT(Notes(take), ElementsAre(Written{100, 500}, Written{500, 501, 45, -624, 9}));
    } while (std::next_permutation(order.begin(), order.end()));
}

// layer = count - count x velocity / (top + 1), whole numbers
TEST(TakeToNotes, LoudNotesGetLowLayers) {
    const struct {
        std::uint32_t count;
        std::vector<unsigned> velocities;
        std::vector<int> layers;
    } rows[] = {
        {0, {127, 64, 0}, {1, 1, 1}},
        {1, {127, 64, 0}, {1, 1, 1}},
        {3, {100, 68, 67, 34, 33, 0}, {1, 1, 2, 2, 3, 3}},  // steps at 101 / 3 and 202 / 3
        {9, {127, 114, 113, 64, 15, 14, 0}, {1, 1, 2, 5, 8, 9, 9}},
        {12, {127, 114, 113, 64, 15, 14, 0}, {1, 1, 2, 5, 8, 9, 9}},  // nine at most
        {9, {1, 0}, {5, 9}},
        {3, {0, 0}, {1, 1}},  // all alike
    };
    for (const auto& row : rows) {
        Take take;
        for (unsigned i = 0; i < row.velocities.size(); ++i) {
            take.push_back(On(10 * i, 60 + i, row.velocities[i]));
            take.push_back(Off(10 * i + 5, 60 + i));
        }
        std::vector<int> layers;
        for (const Written& note : Notes(take, row.count)) layers.push_back(note.layer);
        EXPECT_EQ(layers, row.layers) << row.count << " layers";
    }
}

// Runs of frames, joined up to the gap and dropped up to the shortest length, against recorder, recording and
// conversion together.
TEST_F(RecorderTest, RandomFramesBecomeTheNotesTheyHold) {
    auto* const recording = new TRTRecording;
    recorder.AddOutput(recording);
    recorder.minNoteGap = recorder.minNoteLength = 441;
    detector.delay = 25;
    std::fill(std::begin(detector.level), std::end(detector.level), 1.0F);
    recorder.SetTime(1);
    recording->Start();

    constexpr int frames = 500;
    std::minstd_rand random(1);
    std::vector<std::vector<std::pair<int, int>>> runs(84);  // samples
    for (int frame = 1; frame <= frames; ++frame) {
        for (int band = 0; band < 84; ++band) {
            auto& bandRuns = runs[static_cast<std::size_t>(band)];
            const bool was = detector.on[band], is = (random() % 4 == 0) != was;
            const int time = std::max(0, 441 * frame - recorder.BandDelaySamples(band));
            if (is && !was && (bandRuns.empty() || time - bandRuns.back().second > 441))
                bandRuns.emplace_back(time, 0);
            if (is) bandRuns.back().second = 441 * frames;  // ended by the stop, unless it ends before
            if (!is && was) bandRuns.back().second = time;
            detector.Set(band, is);
        }
        recorder.OnFrame();
    }
    recording->Stop();
    std::vector<Written> expected;  // two samples a tick
    for (int band = 0; band < 84; ++band)
        for (const auto& [start, end] : runs[static_cast<std::size_t>(band)])
            if (end - start > 441) expected.push_back({unsigned(start) / 2, unsigned(end) / 2, band});
    EXPECT_THAT(Notes(recording->GetTake(), 1, 44100), UnorderedElementsAreArray(expected));
}

}  // namespace
