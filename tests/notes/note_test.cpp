#include "notes/note.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/notes/score_check.h"

TEST(Note, LevelIsTheTruncatedFormulaOfTheVelocity) {
    EXPECT_EQ(VelocityToLevel(127), 0);     // -15 / 30
    EXPECT_EQ(VelocityToLevel(64), -1455);  // -43674 / 30 = -1455.8
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
    const auto alone = std::make_unique<TNote>();  // outside a score the setters only store
    EXPECT_EQ(alone->flags, 0xC0000000U);
    alone->SetEnd(50);
    alone->MoveTo(10);
    EXPECT_EQ(alone->Begin(), 10U);
    EXPECT_EQ(alone->Length(), 50U);
}

TEST(Note, BeginAndEndStayATickApartUpToTheLastTick) {
    const auto score = std::make_unique<TNotes>();
    TNote& note = *score->AddNote(100, 200, 45, -624, 0, 1, 1);
    const auto is = [&](std::uint32_t begin, std::uint32_t end) {
        EXPECT_EQ(note.Begin(), begin);
        EXPECT_EQ(note.End(), end);
    };
    note.SetBegin(200), is(199, 200);
    note.SetEnd(199), is(199, 200);
    note.MoveTo(0), note.SetEnd(0), is(0, 1);
    note.SetEnd(50), note.MoveTo(lastTick - 20), is(lastTick - 20, lastTick);  // 50 do not fit any more
    note.MoveTo(lastTick), is(lastTick - 1, lastTick);
    note.MoveTo(10), is(10, 11);
    TSimpleNote value;
    value.Init(lastTick - 9, lastTick - 2, 50, -1, 5, 3, 4);
    note.Assign(value);  // which files it anew
    EXPECT_TRUE(note.Equals(value));
    EXPECT_EQ(WhatIsWrong(*score), "");
    EXPECT_EQ(score->layers.at(3).useCount, 1U);
    TNote* const last = score->AddNote(lastTick, lastTick, 45, 0, 0, 1, 1);
    EXPECT_EQ(last->Begin(), lastTick - 1);
}
