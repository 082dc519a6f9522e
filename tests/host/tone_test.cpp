// A synthesised note through the real module, at the rates that recordings have.
#include <gtest/gtest.h>

#include <algorithm>

#include "temp_folder.h"
#include "test_audio.h"
#include "tools/host/note_list.h"
#include "tools/host/renderer.h"

namespace {

constexpr double middleC = 261.6256;  // Hz, equal temperament at A 440

Take Heard(const std::string& path, const RenderSettings& settings = {}) {
    const PluginModule module(ORVA_MODULE);
    return Render(module, path, settings, [](double) {});
}

class ToneAtRate : public testing::TestWithParam<int> {};

}  // namespace

TEST_P(ToneAtRate, IsHeardAsTheOneNoteThatItIs) {
    const TempFolder folder;
    WriteAudio(folder / "c4.wav", HeldNote(middleC, GetParam(), 0.5, 1.2, 1.6), GetParam());
    const Take take = Heard(folder / "c4.wav");
    EXPECT_EQ(take.rate, GetParam());
    EXPECT_EQ(take.length, static_cast<std::int64_t>(1.6 * GetParam()));
    const std::vector<HeardNote> notes = PairNotes(take);
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].pitch, 60);
    // Decisions fall on a grid of 10 ms frames, and the stated delay is taken off again: within a frame and a
    // half of where the tone begins. The end comes later than the tone's: the resonator has to ring out.
    EXPECT_NEAR(Seconds(take, notes[0].begin), 0.5, 0.015);
    EXPECT_GT(Seconds(take, notes[0].end), 1.2);
    EXPECT_LT(Seconds(take, notes[0].end), 1.6);
}

INSTANTIATE_TEST_SUITE_P(Rates, ToneAtRate, testing::Values(8000, 22050, 44100, 48000, 96000, 192000),
                         testing::PrintToStringParamName());

TEST(Tone, EventsDoNotDependOnHowTheHostCutsTheAudio) {
    const TempFolder folder;
    WriteAudio(folder / "c4.wav", HeldNote(middleC, 44100, 0.5, 1.2, 1.6), 44100);
    const std::vector<TimedEvent> events = Heard(folder / "c4.wav").events;
    EXPECT_GE(events.size(), 2U);
    for (const int blockSize : {64, 333, 2048, 100000}) {
        RenderSettings settings;
        settings.blockSize = blockSize;
        EXPECT_TRUE(Heard(folder / "c4.wav", settings).events == events) << "blocks of " << blockSize;
    }
}

// Suspending ends what still sounds, so that no note is left without its end.
TEST(Tone, ANoteThatSoundsAtTheEndOfTheFileEndsWithIt) {
    const TempFolder folder;
    WriteAudio(folder / "c4.wav", HeldNote(middleC, 44100, 0.2, 1.0, 1.0), 44100);
    const Take take = Heard(folder / "c4.wav");
    const auto isNoteOff = [](const TimedEvent& event) { return (event.bytes[0] & 0xF0) == 0x80; };
    EXPECT_EQ(std::count_if(take.events.begin(), take.events.end(), isNoteOff), 1);
    const std::vector<HeardNote> notes = PairNotes(take);
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_NEAR(Seconds(take, notes[0].end), 1.0, 0.1);
}
