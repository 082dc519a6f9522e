// What live playing gathers: a take over two servers, the line on the terminal.
#include "tools/host/live_take.h"

#include <gtest/gtest.h>

#include <array>

#include "tools/host/live_view.h"

namespace {

std::array<std::uint8_t, 3> Message(int note, std::uint8_t status = 0x90, std::uint8_t velocity = 100) {
    return {status, static_cast<std::uint8_t>(note), velocity};
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
