// What becomes of a take: notes, clean notes, tables, files, chords, a picture.
#include "notes/notes.h"
#include "tests/support/midi_reader.h"
#include "tests/support/temp_folder.h"
#include "tools/host/chord_line.h"
#include "tools/host/music_xml.h"
#include "tools/host/note_cleaning.h"
#include "tools/host/note_list.h"
#include "tools/host/score_output.h"
#include "tools/host/take_output.h"

namespace {

constexpr std::uint8_t on = 0x90, off = 0x80;

// 1000 Hz, so that a sample is a millisecond; five seconds.
Take TakeOf(std::vector<TimedEvent> events) {
    return {1000, 5000, std::move(events)};
}
// Sheet music: a sixteenth is 125 ms. Each note: pitch, begin, end.
Take Score(Meter meter, double barOne, int grid, const std::vector<std::array<int, 3>>& notes) {
    Take take = TakeOf({});
    take.meter = meter;
    take.barOne = barOne;
    take.gridParts = grid;
    for (const auto& [pitch, begin, end] : notes) {
        const auto key = static_cast<std::uint8_t>(pitch);
        take.events.insert(take.events.end(), {{begin, {on, key, 100}}, {end, {off, key, 0}}});
    }
    return take;
}
std::string TextOf(const std::vector<HeardNote>& notes) {
    std::string text;
    for (const HeardNote& note : notes)
        text += std::to_string(note.channel) + ":" + std::to_string(note.pitch) + " " +
                std::to_string(note.begin) + "-" + std::to_string(note.end) + " v" +
                std::to_string(note.velocity) + "; ";
    return text;
}

TEST(NoteList, PairsEachNoteOnWithWhateverEndsItFirst) {
    const struct {
        std::vector<TimedEvent> events;
        const char* notes;
    } rows[] = {
        {{{1, {on, 60, 80}}, {2, {on | 1, 60, 70}}, {3, {off, 60, 0}}, {4, {off | 1, 60, 64}}},
         "0:60 1-3 v80; 1:60 2-4 v70; "},
        // Velocity 0 is a note-off; a second note-on ends the first; the take's end ends the rest.
        {{{1, {on, 60, 80}}, {2, {on, 60, 0}}}, "0:60 1-2 v80; "},
        {{{1, {on, 60, 80}}, {5, {on, 60, 81}}}, "0:60 1-5 v80; 0:60 5-5000 v81; "},
        // Delays differ from band to band, and dates before the start are cut to 0: an end may be dated
        // before its begin, and a begin before that of a note that was sent earlier.
        {{{9, {on, 60, 80}}, {7, {off, 60, 0}}}, "0:60 9-9 v80; "},
        {{{30, {on, 40, 1}}, {20, {on, 67, 1}}, {20, {on, 60, 1}}},
         "0:60 20-5000 v1; 0:67 20-5000 v1; 0:40 30-5000 v1; "},
        {{{1, {0, 0, 0}}, {2, {off, 60, 0}}, {3, {0xC0, 60, 0}}, {4, {0xB0, 123, 0}}}, ""},
    };
    for (const auto& row : rows) EXPECT_EQ(TextOf(PairNotes(TakeOf(row.events))), row.notes);
}

constexpr int C = 60, E = 64;

HeardNote Note(int pitch, int begin, int end, int velocity = 100) {  // ms
    return {begin, end, 0, pitch, velocity};
}

// Gaps are joined first, chained, and short notes are looked for after it: three of 30 ms make one of 110. At
// 120 quarters a minute a sixteenth is 125 ms.
TEST(NoteCleaning, JoinsDropsAndQuantisesAsItsSettingsSay) {
    const struct {
        NoteCleaning settings;  // shortest gap and note: ms; grid; tempo
        std::vector<HeardNote> notes;
        const char* cleaned;
    } rows[] = {
        {{0, 50, 0, 120},
         {Note(C, 0, 49), Note(E, 0, 50), Note(C, 100, 100), Note(C, 200, 300)},
         "0:64 0-50 v100; 0:60 200-300 v100; "},
        {{20, 50, 0, 120},
         {Note(C, 0, 30, 80), Note(E, 35, 100), Note(C, 40, 70, 90), Note(C, 80, 110, 70),
          Note(C, 130, 200, 60)},
         "0:60 0-110 v80; 0:64 35-100 v100; 0:60 130-200 v60; "},
        {{0, 0, 16, 120},
         {Note(C, 60, 300), Note(E, 65, 70), Note(C, 370, 430)},
         "0:60 0-250 v100; 0:64 125-250 v100; 0:60 375-500 v100; "},
        {{0, 0, 16, 120}, {Note(C, 0, 190), Note(C, 185, 400)}, "0:60 0-125 v100; 0:60 125-375 v100; "},
        {{0, 0, 12, 60}, {Note(C, 300, 700)}, "0:60 333-667 v100; "},
    };
    for (const auto& row : rows) EXPECT_EQ(TextOf(CleanNotes(row.notes, row.settings, 1000)), row.cleaned);
}

// A sixteenth is 30 MIDI ticks, whatever the tempo and wherever the grid begins; two bars of 3/4 hold the 18
// sixteenths before bar 1.
TEST(NoteCleaning, TheGridIsExactInTheMidiFile) {
    for (const double tempo : {60.0, 96.0, 117.3}) {
        const double sixteenth = 15 / tempo * 44100;  // samples
        Take take = {44100, std::llround(100 * sixteenth), {}};
        for (int line = 0; line < 100; ++line)
            take.events.push_back({std::llround(line * sixteenth), {on, C, 100}});
        const auto score = std::make_unique<TNotes>();
        TakeToScore(Cleaned(take, {0, 0, 16, tempo, {3, 2}, 18 * 15 / tempo}), *score);
        unsigned line = 6;
        for (const MidiEvent& event : Voices(MidiReader(MidiFileBytes(*score)).tracks, 1))
            EXPECT_TRUE(event.status >> 4 != 9 || event.tick == 30U * line++);
        EXPECT_EQ(line, 106);
    }
}

// Golden files: what scripts and notation programs read, and the manual shows.
TEST(TakeOutput, TextsAreAsDocumented) {
    const Take take = TakeOf({{100, {on, 60, 80}}, {2500, {off, 60, 0}}, {2400, {on, 100, 127}}});
    const Take few = TakeOf({{100, {on | 3, 61, 80}}, {2500, {off | 3, 61, 0}}});
    const Take kinds = TakeOf({{0, {0xC0, 5, 0}},
                               {1500, {on, 60, 80}},
                               {1500, {on, 60, 0}},
                               {7, {0, 0, 0}},
                               {4999, {off, 60, 64}},
                               {4999, {0xB0, 123, 0}}});
    const std::pair<const char*, std::string> texts[] = {
        {"notes.txt", NoteTable("a b.wav", take)},
        {"no_notes.txt", NoteTable("x", TakeOf({}))},
        {"notes.json", NoteJson("a\n\"b\"\\\xC3\xA9\xFF", few)},
        {"events.csv", EventCsv(kinds)},
        {"rest.musicxml", MusicXml(Score({3, 2}, 0, 0, {}))},
        {"ties.musicxml", MusicXml(Score({4, 2}, 0, 0, {{60, 10, 400}, {64, 0, 700}, {61, 500, 2400}}))},
        {"pick_up.musicxml", MusicXml(Score({3, 2}, 0.5, 8, {{72, 250, 500}, {72, 500, 2000}}))},
        {"six_eight.musicxml", MusicXml(Score({6, 3}, 0, 0, {{60, 0, 750}, {64, 750, 1500}}))},
        {"thirds.musicxml",
         MusicXml(Score({2, 2}, 0, 12, {{60, 0, 160}, {62, 170, 330}, {64, 340, 500}, {65, 500, 1000}}))},
    };
    for (const auto& [file, text] : texts)
        EXPECT_EQ(text, ReadAll(std::string(ORVA_GOLDEN "/") + file)) << file;
}

TEST(TakeOutput, ChordsAreNamedWhereTheyChange) {
    std::vector<std::array<int, 3>> notes;
    for (const int pitch : {48, 60, 64, 67}) notes.push_back({pitch, 0, 2000});
    for (const int pitch : {45, 57, 60, 64}) notes.push_back({pitch, 2000, 3000});
    std::string line;
    for (const ChordChange& change : ChordLine(Score({4, 2}, 0, 0, notes)))
        line += std::to_string(change.time).substr(0, 3) + " " + change.name + "; ";
    EXPECT_EQ(line, "0.1 C; 2.0 Am; 3.0 ; ");  // ten looks a second, the first after a tenth
}

}  // namespace
