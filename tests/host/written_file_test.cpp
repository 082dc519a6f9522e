// What render writes, read back with other eyes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <tuple>

#include "run_host.h"
#include "tests/support/midi_reader.h"

namespace {

using WrittenSpan = std::tuple<std::uint64_t, std::uint64_t, int>;  // MIDI ticks of both ends, note

std::multiset<WrittenSpan> Spans(const std::string& file) {
    std::multiset<WrittenSpan> spans;
    std::map<int, std::uint64_t> begins;
    for (const auto& track : MidiReader({file.begin(), file.end()}).tracks)
        for (const MidiEvent& event : track) {
            if (event.status >> 4 == 9) begins[event.data[0]] = event.tick;
            if (event.status >> 4 == 8) spans.insert({begins.at(event.data[0]), event.tick, event.data[0]});
        }
    return spans;
}

}  // namespace

// On a grid many notes end where the next one of their pitch begins. 120 quarters a minute: 240 ticks a
// second.
TEST(WrittenFile, HasTheNotesOfTheTableOnEveryGrid) {
    const TempFolder folder;
    for (const char* const recording : {"guitar_arpeggio", "piano_chords"})
        for (const char* const grid : {"1/4", "1/16"}) {
            const Ended ended =
                RunHost({"render", "--json", std::string(ORVA_RECORDINGS "/") + recording + ".ogg",
                         "--quantise", grid, "--param", "MIDI Channel=0.25", "--midi", folder / "a.mid"});
            ASSERT_EQ(ended.code, 0) << ended.err;
            std::multiset<WrittenSpan> table;
            const nlohmann::json listed = nlohmann::json::parse(ended.out);
            for (const auto& note : listed["notes"])
                table.insert({std::llround(note["start"].get<double>() * 240),
                              std::llround(note["end"].get<double>() * 240), note["midi"]});
            EXPECT_FALSE(table.empty());
            EXPECT_EQ(Spans(ReadAll(folder / "a.mid")), table) << recording << " " << grid;
        }
}

// A sixteenth at 96 quarters a minute is 30 ticks; of 3/4 a bar is 360 ticks. The tune begins with its bar 1.
TEST(WrittenFile, HasTheMeterAndBarOneWhereItIsAskedFor) {
    const TempFolder folder;
    const struct {
        const char *meter, *barOne;
        std::vector<std::uint8_t> signature;  // beats, halvings of a whole note
        std::uint64_t first;                  // tick of the first note
    } rows[] = {{"3/4", "auto", {3, 2}, 0}, {"6/8", "0.625", {6, 3}, 0}, {"3/4", "1.25", {3, 2}, 240}};
    for (const auto& row : rows) {
        const Ended ended =
            RunHost({"render", ORVA_RECORDINGS "/flute_melody.ogg", "--quantise", "1/16", "--tempo", "96",
                     "--meter", row.meter, "--bar-one", row.barOne, "--midi", folder / "a.mid"});
        ASSERT_EQ(ended.code, 0) << ended.err;
        const std::string file = ReadAll(folder / "a.mid");
        const MidiReader read({file.begin(), file.end()});
        const auto& events = read.tracks.at(0);
        const auto signature = std::find_if(events.begin(), events.end(), [](const MidiEvent& event) {
            return event.status == 0xFF && event.data[0] == 0x58;
        });
        ASSERT_NE(signature, events.end());
        EXPECT_EQ(std::vector(signature->data.begin() + 1, signature->data.begin() + 3), row.signature);
        EXPECT_EQ(std::get<0>(*Spans(file).begin()), row.first) << row.meter << " " << row.barOne;
    }
}
