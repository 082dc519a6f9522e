// By how much recordings and players are heard louder, and what was really played.
#include <gtest/gtest.h>

#include "run_host.h"
#include "test_audio.h"
#include "tools/host/level_follower.h"
#include "tools/host/played_notes.h"

namespace {

TEST(LevelFollower, FollowsALouderSoundAtOnceAndAQuieterOneSlowlyButNoPause) {
    LevelFollower follower;
    const auto after = [&](float sample, std::uint32_t seconds) {
        for (std::uint32_t i = 0; i < seconds; ++i) follower.Hear(&sample, 1, 1);  // a sample a second
        return follower.Level();
    };
    EXPECT_EQ(after(0.5F, 1), 0);      // -6.02 dB, where it is wanted
    EXPECT_EQ(after(0.05F, 1), 3);     // -26.02 dB, by 3 dB a second
    EXPECT_EQ(after(0, 60), 3);        // a pause
    EXPECT_EQ(after(0.05F, 60), 20);   // -26.02 + 20 = -6.02
    EXPECT_EQ(after(0.5F, 1), 0);      // at once
    EXPECT_EQ(after(0.001F, 60), 30);  // -60 dB would take 54
    EXPECT_EQ(after(2, 1), 0);         // never quieter
}

TEST(LevelAuto, BringsAQuietRecordingToWhereTheClassicEarHears) {
    const TempFolder folder;
    Audio quiet = HeldNote(middleC, 44100, 0.3, 1.0, 1.3);
    for (float& sample : quiet) sample *= 0.002F;
    WriteAudio(folder / "quiet.wav", quiet, 44100, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    const auto with = [&](const std::string& level) {
        return RunHost({"render", folder / "quiet.wav", "--json", "--ear", "classic", "--level", level});
    };
    EXPECT_FALSE(Contains(with("0").out, "\"midi\""));
    EXPECT_TRUE(Contains(with("auto").out, "\"midi\":60"));
    EXPECT_TRUE(Contains(with("40").out, "\"midi\":60"));
    for (const char* const wrong : {"loud", "61", "nan", "6dB"}) EXPECT_EQ(with(wrong).code, 2) << wrong;
}

// 480 ticks a quarter note, of half a second until tick 240 and of 0.6 s from there on.
TEST(PlayedNotes, AreReadAtTheirTempiAndHalfAFileIsRefused) {
    const TempFolder folder;
    const std::string path = folder / "played.mid";
    const std::string whole(
        "MThd\0\0\0\6\0\0\0\1\1\xE0"
        "MTrk\0\0\0\x1C"
        "\x81\x70\xFF\x51\3\x09\x27\xC0"  // at 240: 600,000 microseconds
        "\0\x90\x3C\x40\x81\x70\x40\x40"  // C4, and at 480 E4
        "\x81\x70\x3C\0\0\x80\x40\0"      // both end at 720, the first by velocity 0
        "\0\xFF\x2F\0",
        50);
    WriteAll(path, whole);
    const std::vector<PlayedNote> notes = ReadPlayedNotes(path);
    ASSERT_EQ(notes.size(), 2U);
    EXPECT_EQ(notes[0].pitch, 60);
    EXPECT_DOUBLE_EQ(notes[0].begin, 0.25);
    EXPECT_DOUBLE_EQ(notes[0].end, 0.85);
    EXPECT_EQ(notes[1].pitch, 64);
    EXPECT_DOUBLE_EQ(notes[1].begin, 0.55);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        WriteAll(path, whole.substr(0, length));
        if (length == 14) continue;  // a head alone is a file without notes
        EXPECT_THROW(ReadPlayedNotes(path), std::runtime_error) << length;
    }
}

}  // namespace
