// What render leaves behind beside its table: a MIDI file, a stored score, the chord line, a picture.
#include "tools/host/score_output.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "notes/notes.h"
#include "tests/support/midi_reader.h"
#include "tools/host/chord_line.h"
#include "tools/host/memory_stream.h"
#include "tools/host/note_list.h"
#include "tools/host/picture.h"

namespace {

Take Chords(const std::vector<std::vector<std::uint8_t>>& chords) {  // a second each, MIDI notes
    Take take;
    take.rate = 48000;
    take.length = static_cast<std::int64_t>(chords.size()) * take.rate;
    std::int64_t start = 0;
    for (const auto& chord : chords) {
        for (const std::uint8_t pitch : chord) take.events.push_back({start, {0x90, pitch, 100}});
        for (const std::uint8_t pitch : chord) take.events.push_back({start + take.rate, {0x80, pitch, 0}});
        start += take.rate;
    }
    return take;
}

}  // namespace

TEST(ScoreOutput, TheFilesHoldTheNotesAtTheirTimes) {
    Take take = Chords({{60, 64, 67}, {65, 69, 72}, {}, {36}});
    take.events.push_back({0, {0, 0, 0}});  // a band without a note: no note in the file either
    const auto score = std::make_unique<TNotes>(), again = std::make_unique<TNotes>();
    TakeToScore(take, *score);
    const std::string file = MidiFileBytes(*score);
    std::vector<std::pair<double, int>> notes;  // to the half second
    for (const WrittenNote& note : MidiReader({file.begin(), file.end()}).Notes()) {
        notes.emplace_back(std::round(2 * note.onset) / 2, note.pitch);
        EXPECT_NEAR(note.onset, notes.back().first, 1.0 / 240);  // a tick of the file
    }
    std::sort(notes.begin(), notes.end());
    const std::vector<std::pair<double, int>> expected = {{0, 60}, {0, 64}, {0, 67}, {1, 65},
                                                          {1, 69}, {1, 72}, {3, 36}};
    EXPECT_EQ(notes, expected);

    MemoryStream stored;
    stored.bytes = StoredScoreBytes(*score);
    again->Read(stored);
    EXPECT_EQ(MidiFileBytes(*again), file);
}

TEST(ChordLine, TellsChangesOnlyAndSilenceAsNoName) {
    std::string line;
    for (const ChordChange& change :
         ChordLine(Chords({{48, 60, 64, 67}, {48, 60, 64, 67}, {45, 57, 60, 64}, {}})))
        line += std::to_string(change.time).substr(0, 3) + " " + change.name + "; ";
    EXPECT_EQ(line, "0.1 C; 2.0 Am; 3.0 ; ");  // ten looks a second, the first after a tenth
    EXPECT_TRUE(ChordLine(Chords({})).empty());
}

TEST(Picture, IsAPngOfTheTakesLengthWhateverTheTake) {
    for (const auto& chords : {std::vector<std::vector<std::uint8_t>>{}, {{0, 127}}, {{60}, {}, {64}}}) {
        const std::string png = PianoRoll(Chords(chords));
        ASSERT_GT(png.size(), 24U);
        EXPECT_EQ(png.substr(1, 3), "PNG");
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(png[at]); };
        // The header chunk's width. 44 + 8 pixels of margins, 80 a second, one second at least.
        EXPECT_EQ(byte(18) * 256 + byte(19), 52 + 80 * std::max<int>(1, static_cast<int>(chords.size())));
    }
}
