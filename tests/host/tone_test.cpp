// A synthesised note through the real module, at the rates that recordings have.
#include <gtest/gtest.h>

#include <algorithm>

#include "test_audio.h"
#include "tests/support/temp_folder.h"
#include "tools/host/note_list.h"
#include "tools/host/renderer.h"

namespace {

// Middle C from 0.5 s on.
Take Heard(int rate, double end, double length, int blockSize = 512) {  // s
    const TempFolder folder;
    WriteAudio(folder / "c4.wav", HeldNote(261.6256, rate, 0.5, end, length), rate);
    RenderSettings settings;
    settings.blockSize = blockSize;
    return Render(PluginModule(ORVA_MODULE), folder / "c4.wav", settings, [](double) {});
}

}  // namespace

TEST(Tone, IsHeardAsTheOneNoteThatItIsAtEachRate) {
    for (const int rate : {8000, 22050, 44100, 48000, 96000, 192000}) {
        SCOPED_TRACE(rate);
        const Take take = Heard(rate, 1.2, 1.6);
        EXPECT_EQ(take.rate, rate);
        EXPECT_EQ(take.length, static_cast<std::int64_t>(1.6 * rate));
        const std::vector<HeardNote> notes = PairNotes(take);
        ASSERT_EQ(notes.size(), 1U);
        EXPECT_EQ(notes[0].pitch, 60);
        // Decisions fall on a grid of 10 ms frames, and the stated delay is taken off again: within a frame
        // and a half of where the tone begins. The end comes later than the tone's: the resonator has to ring
        // out.
        EXPECT_NEAR(Seconds(take, notes[0].begin), 0.5, 0.015);
        EXPECT_GT(Seconds(take, notes[0].end), 1.2);
        EXPECT_LT(Seconds(take, notes[0].end), 1.6);
    }
}

TEST(Tone, EventsDoNotDependOnHowTheHostCutsTheAudio) {
    const std::vector<TimedEvent> events = Heard(44100, 1.2, 1.6).events;
    EXPECT_GE(events.size(), 2U);
    for (const int blockSize : {64, 333, 2048, 100000})
        EXPECT_TRUE(Heard(44100, 1.2, 1.6, blockSize).events == events) << "blocks of " << blockSize;
}

// Suspending ends what still sounds, so that no note is left without its end.
TEST(Tone, ANoteThatSoundsAtTheEndOfTheFileEndsWithIt) {
    const Take take = Heard(44100, 1.3, 1.3);
    const auto isNoteOff = [](const TimedEvent& event) { return (event.bytes[0] & 0xF0) == 0x80; };
    EXPECT_EQ(std::count_if(take.events.begin(), take.events.end(), isNoteOff), 1);
    const std::vector<HeardNote> notes = PairNotes(take);
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_NEAR(Seconds(take, notes[0].end), 1.3, 0.1);
}
