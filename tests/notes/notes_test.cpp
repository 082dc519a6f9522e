#include "notes/notes.h"

#include "tests/notes/score_check.h"
#include "tests/support/test.h"

namespace {

// One random change of a score whose times all lie in the 64 ticks from `origin`, so that notes touch,
// pass and equal each other all the time.
void ChangeAtRandom(TNotes& score, std::uint32_t origin, std::minstd_rand& random) {
    const auto below = [&random](std::uint32_t limit) {
        return static_cast<std::uint32_t>(random()) % limit;
    };
    const auto small = [&below](std::uint32_t limit) { return static_cast<std::uint8_t>(below(limit)); };
    const std::uint32_t time = origin + below(64);
    if (score.notes.size() < 3 || (score.notes.size() < 25 && below(3) == 0)) {
        score.AddNote(time, time + below(20), small(3), 0, 0, small(4), 1);
        return;
    }
    TNote* const note = score.notes[below(static_cast<std::uint32_t>(score.notes.size()))];
    std::uint32_t begin = note->Begin(), end = note->End();  // then as they must be
    switch (below(6)) {
        case 0: note->SetBegin(time), begin = std::min(time, end - 1); break;
        case 1: note->SetEnd(time), end = std::max(time, begin + 1); break;
        case 2:
            end = static_cast<std::uint32_t>(
                std::min<std::uint64_t>(time + std::uint64_t{end - begin}, lastTick));
            note->MoveTo(time), begin = std::min(time, end - 1);
            break;
        case 3: note->SetPitch(small(3)); break;
        case 4: note->SetLayer(small(4)); break;
        default:
            score.ExtractNote(note);
            delete note;
            return;
    }
    EXPECT_EQ(note->Begin(), begin);
    EXPECT_EQ(note->Length(), end - begin);
}

// Each bar as time:number/beats.
std::string Bars(const TNotes& score) {
    std::string text;
    for (const auto& [time, bar] : score.bars)
        text += std::to_string(time) + ":" + std::to_string(bar.barIndex) + "/" +
                std::to_string(bar.beatsPerBar) + " ";
    return text;
}

}  // namespace

// Near the last tick as well as near 0, where sums of times would wrap.
TEST(Notes, RandomChangesAgreeWithAScanOfAllNotes) {
    for (const std::uint32_t origin : {0U, lastTick - 63}) {
        std::minstd_rand random(1);
        const auto score = std::make_unique<TNotes>();
        for (int step = 0; step < 4000; ++step) {
            ChangeAtRandom(*score, origin, random);
            ASSERT_EQ(WhatIsWrong(*score), "") << "step " << step << ", origin " << origin;
            std::array<std::uint32_t, 4> users{};
            for (const TNote* const note : score->notes) ++users.at(note->layer);
            for (std::size_t layer = 0; layer < users.size(); ++layer)
                ASSERT_EQ(layer < score->layers.size() ? score->layers[layer].useCount : 0, users.at(layer));
            std::uint32_t latest = 0;
            for (const TNote* const note : score->notes) latest = std::max(latest, note->End());
            ASSERT_EQ(score->LastTime(), latest);
            if (HasFailure()) return;
        }
    }
}

// Spacings from a few ticks, where most new bars are merged again, to several minutes. The digest is that of
// adding and removing the bars one by one by the rules above.
TEST(BarMap, NormalizingIsAddingAndRemovingOneByOne) {
    EXPECT_EQ(BarSpacing(4, 2, 120), 44100U);  // 4 * 5292000 / 480: two seconds
    for (const auto& [shift, bpm] : {std::pair{31U, 1U << 31}, {32U, 120U}, {2U, 0U}})
        EXPECT_EQ(BarSpacing(4, shift, bpm), 0U);
    EXPECT_EQ(BarSpacing(lastTick, 0, 1), std::uint64_t{lastTick} * 5292000);
    std::minstd_rand random(1);
    std::uint32_t digest = 0;
    for (int round = 0; round < 200; ++round) {
        const auto score = std::make_unique<TNotes>();
        auto time = static_cast<std::uint32_t>(random() % 3 * 5000);
        for (int bar = 0; bar < 12; ++bar) {
            score->bars[time] = TBar{static_cast<std::uint32_t>(random() % 90), 4};
            const auto length = random();
            time += static_cast<std::uint32_t>(1 + length % (random() % 4 == 0 ? 600000 : 20000));
        }
        const auto shift = static_cast<std::uint32_t>(random() % 6);
        const auto speed = random();
        const auto bpm = static_cast<std::uint32_t>(1 + speed % (random() % 2 == 0 ? 300 : 4000));
        score->NormalizeBars(4, shift, bpm, static_cast<std::uint32_t>(random() % 2 * (time + 30000)));
        for (const char letter : Bars(*score)) digest = digest * 31 + static_cast<unsigned char>(letter);
    }
    EXPECT_EQ(digest, 3689638055U);
}
