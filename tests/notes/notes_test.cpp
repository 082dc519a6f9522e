#include "notes/notes.h"

#include "tests/notes/score_check.h"
#include "tests/support/test.h"

namespace {

// One random change of a score whose times lie in the 64 ticks from `origin`, so that notes touch and pass.
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
