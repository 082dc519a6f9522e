// What live playing gathers: a period's messages, a take over two servers, the line on the terminal.
#include "tools/host/period_events.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tools/host/live_take.h"
#include "tools/host/live_view.h"

namespace {

using Dated = std::vector<std::pair<std::uint32_t, int>>;  // frame, and the message's note

std::array<std::uint8_t, 3> Message(int note, std::uint8_t status = 0x90, std::uint8_t velocity = 100) {
    return {status, static_cast<std::uint8_t>(note), velocity};
}

TEST(PeriodEvents, ComeByDateInsideThePeriodAndWaitWhereTheyDoNotFit) {
    const auto events = std::make_unique<PeriodEvents>();
    const auto flushed = [&](std::size_t places) {
        Dated written;
        events->Flush([&](const PeriodEvents::Event& event) {
            if (written.size() == places) return false;
            written.emplace_back(event.frame, event.bytes[1]);
            return true;
        });
        return written;
    };
    events->Begin(64);
    int note = 0;
    for (const std::int64_t frame : {5, -3000, 63, 64, 5, 0, 4, 1 << 30}) events->Add(frame, Message(note++));
    EXPECT_EQ(flushed(5), (Dated{{0, 1}, {0, 5}, {4, 6}, {5, 0}, {5, 4}}));
    events->Begin(64);
    events->Add(0, Message(note));
    EXPECT_EQ(flushed(100), (Dated{{0, 2}, {0, 3}, {0, 7}, {0, 8}}));  // what waited comes first
    EXPECT_EQ(flushed(100), Dated());
    for (std::size_t i = 0; i < PeriodEvents::room; ++i) EXPECT_TRUE(events->Add(0, Message(0)));
    EXPECT_FALSE(events->Add(0, Message(1)));
}

// One second at 48 kHz, then a server of 96 kHz, which takes the samples from 48000 on twice as fast.
TEST(LiveTake, KeepsItsRateWhenAnotherServerComes) {
    LiveTake take;
    take.Begin(48000, 0);
    take.Add({24000, Message(60)});
    take.Begin(96000, 48000);
    take.Add({48000 + 96000, Message(62)});
    take.End(48000 + 2 * 96000);
    EXPECT_EQ(take.Whole().rate, 48000);
    EXPECT_EQ(take.Whole().events[0].sample, 24000);
    EXPECT_EQ(take.Whole().events[1].sample, 2 * 48000);
    EXPECT_EQ(take.Whole().length, 3 * 48000);
}

TEST(LiveView, ShowsTheNotesFromBelowAndTheChord) {
    LiveView view;
    EXPECT_EQ(view.Text(), "");
    for (const int note : {55, 48, 52}) view.Take({0, Message(note)});
    EXPECT_EQ(view.Text(), "C3 E3 G3   C");
    view.Take({0, Message(52, 0x80)});
    view.Take({0, Message(55, 0x90, 0)});  // a note-on without velocity ends the note
    EXPECT_EQ(view.Text().substr(0, 2), "C3");
    EXPECT_EQ(view.Text().find_first_of("EG"), std::string::npos);
}

}  // namespace
