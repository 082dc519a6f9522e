#include "delivery/rt_recording.h"
#include "notes/notes.h"
#include "tests/support/test.h"

namespace {

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

// begin and end in ticks, pitch, level, program, layer, channel; note 69 at velocity 100 unless given
using Written = std::tuple<std::uint32_t, std::uint32_t, int, int, int, int, int>;
Written N(std::uint32_t begin, std::uint32_t end, int pitch = 45, int level = -624, int program = 0,
          int layer = 1, int channel = 1) {
    return {begin, end, pitch, level, program, layer, channel};
}
using Score = std::vector<Written>;
Score Notes(const Take& take, std::uint32_t layers = 1, std::uint32_t rate = tickRate) {
    const auto score = std::make_unique<TNotes>();
    TakeToNotes(take, *score, layers, rate);
    Score result;
    for (const TNote* note : score->notes)
        result.push_back(N(note->GetBegin(), note->GetEnd(), note->pitch, note->level, note->program,
                           note->layer, note->channel));
    return result;
}

TEST(TakeToNotes, CountsTicksOfTheSameLengthAtEveryRate) {
    for (const unsigned rate : {8000U, 44100U, 192000U}) {
        const std::int64_t hour = 3600LL * rate;  // 3600 x 22050 = 79380000 ticks
        // a sample earlier: 22050 / rate ticks less, cut down
        EXPECT_EQ(Notes({On(hour - 1, 69), Off(hour * 10, 69)}, 1, rate),
                  (Score{N(79379999 - tickRate / (rate + 1), 793800000)}));
    }
}

TEST(TakeToNotes, PairsEventsByNoteAndChannel) {
    const Take take = {Off(5, 69),      On(10, 69),      On(20, 69),     On(25, 69, 100, 15),
                       Off(30, 69),     Off(40, 69),     On(50, 69),     On(60, 70),
                       Off(45, 69, 15), {61, 0x45B0, 0}, {62, 0x45E0, 0}};
    EXPECT_EQ(Notes(take), (Score{N(10, 20), N(20, 30), N(25, 45, 45, -624, 0, 1, 16)}));
}

TEST(TakeToNotes, PitchIsTheNoteLess24AndLevelFollowsTheVelocity) {
    const struct {
        unsigned note, velocity;
        int pitch, level;  // note - 24 modulo 256; (velocity x 693 - 88026) / 30, cut towards zero
    } rows[] = {{24, 127, 0, 0},    {127, 100, 103, -624}, {23, 64, 255, -1455},
                {0, 1, 232, -2911}, {60, 0, 36, -2934},    {0x80 + 69, 0x80 + 100, 45, -624}};
    for (const auto& row : rows)
        EXPECT_EQ(Notes({On(1, row.note, row.velocity), Off(2, row.note)}),
                  (Score{N(1, 2, row.pitch, row.level)}));
    // Layers divide the velocities up to the take's highest: 4 - 4 * velocity / (100 + 1), cut down.
    EXPECT_EQ(Notes({On(1, 69), Off(2, 69), On(3, 69, 1), Off(4, 69)}, 4),
              (Score{N(1, 2), N(3, 4, 45, -2911, 0, 4)}));
}

TEST(TakeToNotes, ANoteHasTheProgramOfItsChannelAtItsBegin) {
    Take take = {Program(0, 3), Program(5, 0x84, 1), On(10, 69), Program(15, 7), On(20, 69, 100, 1),
                 Off(30, 69),   Off(40, 69, 1),      On(50, 69), Off(60, 69)};
    std::reverse(take.begin(), take.end());  // the take's own order says nothing
    EXPECT_EQ(Notes(take),
              (Score{N(10, 30, 45, -624, 3), N(20, 40, 45, -624, 4, 1, 2), N(50, 60, 45, -624, 7)}));
}

// The note on closes the old note and opens a new one, which the note off closes at no length: one tick.
TEST(TakeToNotes, AtOneSampleOfChannel1ProgramGoesBeforeOnAndOnBeforeOff) {
    Take same = {Off(500, 69), On(500, 69), Program(500, 9), {500, 0x45B0, 0}};
    std::vector<int> order = {0, 1, 2, 3};
    do {
        Take take = {On(100, 69)};
        for (const int at : order) take.push_back(same[static_cast<std::size_t>(at)]);
        EXPECT_EQ(Notes(take), (Score{N(100, 500), N(500, 501, 45, -624, 9)}));
    } while (std::next_permutation(order.begin(), order.end()));
}

}  // namespace
