// Music that is not tuned to A 440 Hz.
#include "tools/host/tuning.h"

#include <gtest/gtest.h>

#include <cmath>

#include "test_audio.h"
#include "tests/support/temp_folder.h"
#include "tools/host/note_list.h"
#include "tools/host/renderer.h"

namespace {

// The same samples played at another rate sound that much higher, all of them: 442/440 is 7.85 cents.
TEST(Tuning, IsFoundInRecordingsPlayedHigherOrLower) {
    const TempFolder folder;
    const std::string path = folder / "a.wav";
    for (const char* const name : {"piano_chords", "guitar_arpeggio", "bass_line", "flute_melody"}) {
        const std::string recording = std::string(ORVA_RECORDINGS "/") + name + ".ogg";
        const Audio samples = ReadAudio(recording);
        const int rate = AudioFile(recording, AudioFile::Channel::first).Rate();
        for (const double tuning : {430.0, 442.0}) {
            WriteAudio(path, samples, static_cast<int>(std::lround(rate * tuning / 440)));
            const auto found = FindTuning(path, AudioFile::Channel::first);
            ASSERT_TRUE(found) << name;
            EXPECT_NEAR(*found, tuning, 0.75) << name;  // 3 cents
        }
    }
    std::minstd_rand random(1);  // noise has no tuning
    Audio noise(200000);
    for (float& sample : noise) sample = static_cast<float>(random() % 1000) / 1000.0F - 0.5F;
    WriteAudio(path, noise, 44100);
    EXPECT_FALSE(FindTuning(path, AudioFile::Channel::first));
}

// Half way between two semitones; played at 453 instead of 440 Hz, middle C is 269.4 Hz.
TEST(Tuning, PutsNotesBetweenTheSemitonesWhereTheyBelong) {
    const TempFolder folder;
    const std::string path = folder / "sharp.wav";
    WriteAudio(path, HeldNote(middleC * 453 / 440, 44100, 0.5, 1.2, 1.6), 44100);
    RenderSettings settings;
    settings.tuning = 453;
    const Take take = Render(PluginModule(ORVA_MODULE), path, settings, [](double) {});
    const std::vector<HeardNote> notes = PairNotes(take);
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].pitch, 60);
    EXPECT_EQ(take.rate, 44100);
    EXPECT_NEAR(Seconds(take, notes[0].begin), 0.5, 0.015);
}

// Amplitude 1/4 is power 1/16, whose fourth root is 1/2: the softer of two notes has half the velocity.
TEST(Velocity, FollowsTheFourthRootOfTheNotesPower) {
    const TempFolder folder;
    const std::string path = folder / "a.wav";
    Audio sound = HeldNote(middleC, 44100, 0.3, 0.8, 3.0);
    const Audio soft = HeldNote(middleC, 44100, 1.8, 2.3, 3.0);
    for (std::size_t i = 66150; i < sound.size(); ++i) sound[i] = soft[i] / 4;
    WriteAudio(path, sound, 44100);
    RenderSettings settings;
    settings.followsLevels = true;
    const std::vector<HeardNote> notes =
        PairNotes(Render(PluginModule(ORVA_MODULE), path, settings, [](double) {}));
    ASSERT_EQ(notes.size(), 2U);
    EXPECT_EQ(notes[0].velocity, 100);
    EXPECT_NEAR(notes[1].velocity, 50, 2);
}

}  // namespace
