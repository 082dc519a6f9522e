#include "tools/host/period_events.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tools/host/live_take.h"
#include "tools/host/live_view.h"

namespace {

using Bytes = std::array<std::uint8_t, 3>;
using Dated = std::pair<std::uint32_t, int>;  // frame, and the message's note

Bytes NoteOn(int note) {
    return {0x90, static_cast<std::uint8_t>(note), 100};
}

// What comes out where there is room for so many.
std::vector<Dated> Flushed(PeriodEvents& events, std::size_t places) {
    std::vector<Dated> written;
    events.Flush([&](const PeriodEvents::Event& event) {
        if (written.size() == places) return false;
        written.emplace_back(event.frame, event.bytes[1]);
        return true;
    });
    return written;
}

}  // namespace

TEST(PeriodEvents, AreSortedInsideThePeriodAndKeepTheirOrderWithinADate) {
    const auto events = std::make_unique<PeriodEvents>();
    events->Begin(64);
    int note = 0;
    for (const std::int64_t frame : {5, -3000, 63, 64, 5, 0, 4, 1 << 30}) events->Add(frame, NoteOn(note++));
    const std::vector<Dated> expected = {{0, 1}, {0, 5}, {4, 6}, {5, 0}, {5, 4}, {63, 2}, {63, 3}, {63, 7}};
    EXPECT_EQ(Flushed(*events, 100), expected);
    EXPECT_TRUE(Flushed(*events, 100).empty());
}

TEST(PeriodEvents, WhatFindsNoRoomComesFirstInTheNextPeriod) {
    const auto events = std::make_unique<PeriodEvents>();
    events->Begin(64);
    for (int note = 0; note < 4; ++note) events->Add(10 * note, NoteOn(note));
    EXPECT_EQ(Flushed(*events, 2), (std::vector<Dated>{{0, 0}, {10, 1}}));
    events->Begin(64);
    events->Add(0, NoteOn(4));
    EXPECT_EQ(Flushed(*events, 100), (std::vector<Dated>{{0, 2}, {0, 3}, {0, 4}}));

    for (std::size_t i = 0; i < PeriodEvents::room; ++i) EXPECT_TRUE(events->Add(0, NoteOn(0)));
    EXPECT_FALSE(events->Add(0, NoteOn(1)));
}

// One second at 48 kHz, then a server of 96 kHz, which hears the instance's samples from 48000 on twice as
// fast.
TEST(LiveTake, KeepsItsRateWhenAnotherServerComes) {
    LiveTake take;
    take.Begin(48000, 0);
    take.Add({24000, NoteOn(60)});
    take.Begin(96000, 48000);
    take.Add({48000 + 96000, NoteOn(62)});
    take.End(48000 + 2 * 96000);
    EXPECT_EQ(take.Whole().rate, 48000);
    EXPECT_EQ(take.Whole().events[0].sample, 24000);
    EXPECT_EQ(take.Whole().events[1].sample, 2 * 48000);
    EXPECT_EQ(take.Whole().length, 3 * 48000);
}

TEST(LiveView, TellsTheNotesFromBelowAndTheChord) {
    LiveView view;
    EXPECT_EQ(view.Text(), "");
    for (const int note : {55, 48, 52}) view.Take({0, NoteOn(note)});
    EXPECT_EQ(view.Text(), "C3 E3 G3   C");
    view.Take({0, {0x80, 52, 0}});
    view.Take({0, {0x90, 55, 0}});  // a note-on without velocity ends the note
    EXPECT_EQ(view.Text().substr(0, 2), "C3");
    EXPECT_EQ(view.Text().find('E'), std::string::npos);
    EXPECT_EQ(view.Text().find('G'), std::string::npos);
}
