#include "notes/note.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/notes/score_check.h"

namespace {

// A score of one note of pitch 45, and that note.
struct OneNote {
    OneNote(std::uint32_t begin, std::uint32_t end) : note(score->AddNote(begin, end, 45, -624, 0, 1, 1)) {}

    std::unique_ptr<TNotes> score = std::make_unique<TNotes>();
    TNote* note;
};

}  // namespace

TEST(Note, LevelIsTheTruncatedFormulaOfTheVelocity) {
    EXPECT_EQ(VelocityToLevel(127), 0);     // -15 / 30
    EXPECT_EQ(VelocityToLevel(100), -624);  // -18726 / 30 = -624.2
    EXPECT_EQ(VelocityToLevel(64), -1455);  // -43674 / 30 = -1455.8
    EXPECT_EQ(VelocityToLevel(1), -2911);   // -87333 / 30 = -2911.1
    EXPECT_EQ(VelocityToLevel(0), -2934);   // -88026 / 30 = -2934.2
}

TEST(Note, EqualsLooksAtEverythingButTheTag) {
    TSimpleNote one, other;
    one.Init(10, 20, 45, -624, 1, 2, 3);
    other.Assign(one);
    other.tag = 7;
    EXPECT_TRUE(one.Equals(other));
    other.ClearFlag(nfAuxiliary);
    EXPECT_FALSE(one.Equals(other));
    EXPECT_EQ(one.tag, 0U) << "Assign must leave the tag alone";
}

TEST(Note, BeginAndEndStayATickApart) {
    OneNote one(100, 200);
    one.note->SetBegin(200);
    EXPECT_EQ(one.note->Begin(), 199U);
    one.note->SetEnd(199);
    EXPECT_EQ(one.note->End(), 200U);
    OneNote atZero(0, 5);
    atZero.note->SetEnd(0);
    EXPECT_EQ(atZero.note->End(), 1U);
}

TEST(Note, ANoteAtTheLastTickKeepsItsBeginBeforeItsEnd) {
    OneNote one(lastTick, lastTick);
    EXPECT_EQ(one.note->Begin(), lastTick - 1);
    EXPECT_EQ(one.note->End(), lastTick);
    one.note->MoveTo(10);
    EXPECT_EQ(one.note->End(), 11U);
    one.note->SetEnd(60);
    one.note->MoveTo(lastTick - 20);  // 50 ticks do not fit any more
    EXPECT_EQ(one.note->Begin(), lastTick - 20);
    EXPECT_EQ(one.note->End(), lastTick);
}

TEST(Note, AssigningToANoteOfAScoreRefilesIt) {
    OneNote one(100, 200);
    TSimpleNote value;
    value.Init(lastTick - 9, lastTick - 2, 50, -1, 5, 3, 4);
    one.note->Assign(value);
    EXPECT_TRUE(one.note->Equals(value));
    EXPECT_TRUE(one.score->pitchMaps[45].notes.empty());
    EXPECT_EQ(one.score->pitchMaps[50].PointAt(lastTick - 9), &one.note->startPoint);
    EXPECT_EQ(one.score->PointAt(lastTick), &one.note->endPoint);
    EXPECT_EQ(one.score->layers.at(3).useCount, 1U);
}

TEST(Note, OutsideAScoreTheSettersOnlyStore) {
    const auto note = std::make_unique<TNote>();
    EXPECT_EQ(note->flags, 0xC0000000U);
    EXPECT_EQ(nfIncluded | nfAuxiliary | nfExcludedA | nfExcludedB, 0xD8000000U);
    note->SetEnd(50);
    note->MoveTo(10);
    note->SetPitch(3);
    note->SetLayer(2);
    EXPECT_EQ(note->Begin(), 10U);
    EXPECT_EQ(note->Length(), 50U);
    EXPECT_EQ(note->pitch, 3);
}
