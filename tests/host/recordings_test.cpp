// The recordings that the project ships, through the real module.
#include "test_audio.h"
#include "tests/support/midi_reader.h"
#include "tests/support/temp_folder.h"
#include "tools/host/level_follower.h"
#include "tools/host/note_list.h"
#include "tools/host/renderer.h"
#include "tools/host/tuning.h"

namespace {

// A recording, and the least that must be found of it: some 5 hundredths below what is measured, which stands
// beside it, so that better hearing passes and a loss is seen.
struct Expected {
    const char* name;
    double recall;     // share of the written notes that were heard in time
    double precision;  // share of the heard notes that were written
    Ear ear = Ear::classic;
};
const Expected recordings[] = {{"piano_chords", 0.71, 0.33},                       // 0.765, 0.374
                               {"guitar_arpeggio", 0.53, 0.25},                    // 0.587, 0.293
                               {"bass_line", 0.91, 0.33},                          // 0.966, 0.378
                               {"flute_melody", 0.95, 0.31},                       // 1.000, 0.355
                               {"piano_chords", 0.75, 0.61, Ear::refinedFile},     // 0.800, 0.660
                               {"guitar_arpeggio", 0.92, 0.65, Ear::refinedFile},  // 0.973, 0.702
                               {"bass_line", 0.95, 0.95, Ear::refinedFile},        // 1.000, 1.000
                               {"flute_melody", 0.95, 0.95, Ear::refinedFile}};    // 1.000, 1.000

TEST(Recordings, AreHeardAsTheyWerePlayed) {
    constexpr double tolerance = 0.05;  // s, between a note's onset as written and as heard
    for (const Expected& expected : recordings) {
        const std::string path = std::string(ORVA_RECORDINGS) + "/" + expected.name;
        RenderSettings settings;
        settings.ear.ear = expected.ear;
        const Take take = Render(PluginModule(ORVA_MODULE), path + ".ogg", settings, [](double) {});
        std::map<int, std::pair<std::vector<double>, std::vector<double>>> byPitch;  // written, heard: s
        for (const WrittenNote& note : MidiReader(ReadAll(path + ".mid"), 0, 480).Notes())
            byPitch[note.pitch].first.push_back(note.onset);
        for (const HeardNote& note : PairNotes(take))
            byPitch[note.pitch].second.push_back(Seconds(take, note.begin));

        // Each note counts once: the earliest written onset still open with the earliest heard one in reach.
        double written = 0, heard = 0, hits = 0, errorSum = 0;
        for (const auto& [pitch, onsets] : byPitch) {
            const auto& [due, found] = onsets;
            written += static_cast<double>(due.size());
            heard += static_cast<double>(found.size());
            for (std::size_t d = 0, f = 0; d < due.size() && f < found.size();) {
                const double error = found[f] - due[d];
                if (std::abs(error) <= tolerance) ++hits, errorSum += error;
                if (error >= -tolerance) ++d;
                if (error <= tolerance) ++f;
            }
        }
        EXPECT_GE(hits / written, expected.recall) << expected.name;
        EXPECT_GE(hits / heard, expected.precision) << expected.name;
        // Onsets are dated where the notes began, not where they were recognised, 40 to 95 ms later. What is
        // left is the instrument's own attack and the synthesiser's 3 to 5 ms.
        EXPECT_LT(std::abs(errorSum / hits), 0.035) << expected.name;
    }
}

// The same samples played at another rate sound that much higher, all of them: 442/440 is 7.85 cents.
TEST(Tuning, IsFoundInARecordingPlayedHigherOrLower) {
    const TempFolder folder;
    const std::string path = folder / "a.wav";
    const Audio samples = ReadAudio(ORVA_RECORDINGS "/piano_chords.ogg");
    for (const double tuning : {430.0, 442.0}) {
        WriteAudio(path, samples, static_cast<int>(std::lround(44100 * tuning / 440)));
        EXPECT_NEAR(FindTuning(path, AudioFile::Channel::first).value_or(0), tuning, 0.75);  // 3 cents
    }
    WriteAudio(path, Noise(44100, 4.5), 44100);  // it has no tuning
    EXPECT_FALSE(FindTuning(path, AudioFile::Channel::first));
}

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

}  // namespace
