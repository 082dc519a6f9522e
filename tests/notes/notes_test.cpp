#include "notes/notes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "tests/notes/memory_stream.h"
#include "tests/notes/score_check.h"

namespace {

TNote* Add(TNotes& score, std::uint32_t begin, std::uint32_t end, std::uint8_t pitch = 45) {
    return score.AddNote(begin, end, pitch, -624, 0, 1, 1);
}

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

// The questions a score answers, against a scan of all notes. A range holds what sounds at its start, by
// address, and then what begins, by time.
void ExpectAnswersOfAScan(const TNotes& score, std::uint32_t from, std::uint32_t to) {
    TNoteList at, range, foundRange, foundPitches;
    std::int32_t lastBefore = -1;
    const std::uint32_t low = std::min(from, to), high = std::max(from, to);
    std::uint32_t latest = 0;
    for (TNote* note : score.notes) {
        if (note->Begin() <= low && low < note->End()) at.push_back(note);
        if (note->Begin() > low && note->Begin() <= high) range.push_back(note);
        if (note->Begin() <= low) lastBefore = note->listIndex[0];
        latest = std::max(latest, note->End());
    }
    std::sort(at.begin(), at.end(), std::less<>());
    range.insert(range.begin(), at.begin(), at.end());
    TNoteList sounding{nullptr};  // which is replaced
    score.NotesAt(sounding, low);
    EXPECT_EQ(sounding, at);
    score.AppendNotesInRange(foundRange, from, to);
    EXPECT_EQ(foundRange, range);
    score.AppendNotesInPitchRange(foundPitches, 2, 0, from, to);  // every pitch there is
    EXPECT_TRUE(std::is_permutation(foundPitches.begin(), foundPitches.end(), range.begin(), range.end()));
    EXPECT_EQ(score.LastNoteBefore(low), lastBefore);
    EXPECT_EQ(score.LastTime(), latest);
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
            const auto from = origin + static_cast<std::uint32_t>(random() % 64);
            ExpectAnswersOfAScan(*score, from, origin + static_cast<std::uint32_t>(random() % 64));
            if (HasFailure()) return;
        }
    }
}

TEST(Notes, ACopyIsEqualAndKeepsTheOrderOfNotesThatBeginTogether) {
    const auto score = std::make_unique<TNotes>(), copy = std::make_unique<TNotes>();
    for (std::uint8_t pitch = 0; pitch < 200; ++pitch) Add(*score, 10, 20, pitch)->tag = pitch;
    score->notes[3]->ClearFlag(nfIncluded);
    score->tempo = 90.0;
    score->layers[1].name = "melody";
    score->AddBar(7, 4);
    copy->Assign(*score);
    for (std::size_t index = 0; index < 200; ++index)
        EXPECT_EQ(copy->notes.at(index)->tag, score->notes[index]->tag);
    EXPECT_EQ(Written(*copy), Written(*score));
}
