// What render writes, read back with other eyes.
#include <gtest/gtest.h>

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
    for (const char* const recording : {"guitar_arpeggio", "piano_chords", "bass_line", "flute_melody"})
        for (const char* const grid : {"1/4", "1/8", "1/16"}) {
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
