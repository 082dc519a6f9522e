// Sheet music of small takes.
#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "tools/host/music_xml.h"

namespace {

// 120 quarters a minute at 1000 Hz: a sixteenth is 125 ms. Each note in one word: "C4" begins a chord,
// "+E4" joins it, "r" is a rest; then its ticks, its sign, "." for a dot, "3" for a third; "(" and ")" where
// a tie starts and stops. Bars in their numbers.
std::string Short(const std::string& xml) {
    const std::pair<const char*, const char*> steps[] = {
        {R"([\s\S]*</direction>\n)", "#"},
        {R"(<measure number=.([-0-9]+).*?>\n)", "|$1: "},
        {R"(</measure>\n|</part>\n|</score-partwise>\n|<voice>1</voice>|<notations>.*</notations>)", ""},
        {R"(<note>)", ""},
        {R"(</note>\n)", " "},
        {R"(<chord/>)", "+"},
        {R"(<rest.*?/>)", "r"},
        {R"(<pitch><step>(.)</step>)", "$1"},
        {R"(<alter>1</alter>)", "#"},
        {R"(<octave>(.)</octave></pitch>)", "$1"},
        {R"(<duration>(\d+)</duration>)", ",$1"},
        {R"(<tie type="stop"/>)", ")"},
        {R"(<tie type="start"/>)", "("},
        {R"(<type>(.*?)</type>)", "$1"},
        {R"(<dot/>)", "."},
        {R"(<time-modification>.*?</time-modification>)", "3"}};
    std::string text = xml;
    for (const auto& [from, to] : steps) text = std::regex_replace(text, std::regex(from), to);
    return text;
}

Take TakeOf(const std::vector<std::array<int, 3>>& notes, Meter meter, double barOne, int grid) {
    Take take = {1000, 5000, {}};
    take.meter = meter;
    take.barOne = barOne;
    take.gridParts = grid;
    for (const auto& [pitch, begin, end] : notes) {
        const auto key = static_cast<std::uint8_t>(pitch);
        take.events.push_back({begin, {0x90, key, 100}});
        take.events.push_back({end, {0x80, key, 0}});
    }
    return take;
}

TEST(MusicXml, HasChordsTiesRestsAndPickUpsWhereTheyArePlayed) {
    const struct {
        Take take;
        const char* bars;
    } rows[] = {
        {TakeOf({}, {3, 2}, 0, 0), "#r,12 "},
        // A chord ends with its last note, or where the next begins, and a tie crosses the bar line.
        {TakeOf({{60, 10, 400}, {64, 0, 700}, {61, 500, 2400}}, {4, 2}, 0, 0),
         "#C4,4quarter +E4,4quarter C#4,4(quarter C#4,8)(half |2: C#4,3)eighth. r,116th r,4quarter r,8half "},
        {TakeOf({{72, 250, 500}, {72, 500, 2000}}, {3, 2}, 0.5, 8),
         "#r,4half r,1eighth C5,1eighth |1: C5,6half. "},
        {TakeOf({{60, 0, 160}, {62, 170, 330}, {64, 340, 500}, {65, 500, 1000}}, {2, 2}, 0, 12),
         "#C4,1eighth3 D4,1eighth3 E4,1eighth3 F4,3quarter "},
    };
    for (const auto& row : rows) EXPECT_EQ(Short(MusicXml(row.take)), row.bars);
}

}  // namespace
