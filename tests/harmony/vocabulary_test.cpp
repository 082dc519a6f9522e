#include "harmony/vocabulary.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/harmony/naming.h"

namespace {

std::int16_t Short(int value) {
    return static_cast<std::int16_t>(value);
}
TSpelledPitch Spelled(int step, int alteration) {
    return {Short(step), Short(alteration)};
}
std::string German(TSpelledPitch pitch) {
    return GermanNames[RingIndex(pitch)];
}
int ClassOf(TSpelledPitch pitch) {
    return RingPitchClasses[RingIndex(pitch)];
}

// Steps c d e f g a h stand 0 2 4 5 7 9 11 semitones above c; each spelling has a place of its own.
TEST(Vocabulary, RingsSpellWhatTheirStepsAndAlterationsSound) {
    std::set<int> places;
    for (int step = 0; step < stepCount; ++step)
        for (int alteration = -2; alteration <= 2; ++alteration) {
            const TSpelledPitch pitch = Spelled(step, alteration);
            places.insert(RingIndex(pitch));
            EXPECT_EQ(ClassOf(pitch), (ScaleSemitones[step] + alteration + 12) % 12) << German(pitch);
        }
    EXPECT_EQ(places.size(), ringSize);
    for (int cls = 0; cls < classCount; ++cls)  // from F sharp, place 0, seven semitones a place
        EXPECT_EQ((6 + 7 * FifthsPosition[cls]) % 12, cls);
    for (int place = 0; place + 1 < stepCount; ++place) EXPECT_EQ(FifthsFromC[place], 7 * place % 12);
}

// All words by one number each, taken from the program; what they must say letter for letter is beside them.
TEST(Vocabulary, WordsStayAsUsersKnowThem) {
    const auto digest = [](const auto& words) {
        TextDigest text;
        for (const char* const word : words) text.Add(word != nullptr ? word : "null");
        return text.value;
    };
    TextDigest degrees;
    for (const auto& set : DegreeNameSets) degrees.Add(std::to_string(digest(set)));
    const std::uint32_t found[] = {digest(PitchNamesMixed), digest(PitchNamesFlat),
                                   digest(PitchNamesSharp), digest(GermanNames),
                                   digest(SolfegeNames),    digest(IntervalNames),
                                   digest(BassDegreeNames), digest(IntervalQualities),
                                   digest(DegreeNumerals),  digest(ModeNames),
                                   digest(AccidentalMarks), digest(IntervalPairNames),
                                   digest(ChordSuffixes),   degrees.value,
                                   digest(InstrumentNames), digest(GermanNamesSharp),
                                   digest(GermanNamesFlat), digest(SolfegeNamesSharp),
                                   digest(SolfegeNamesFlat)};
    const std::uint32_t expected[] = {1051612214, 2393611428, 1245601585, 2600833103, 3016195329,
                                      1213653563, 1308297413, 270611411,  2105865044, 2312775398,
                                      2145044921, 3668153307, 3720255115, 1117361246, 356234288,
                                      3491234391, 21079841,   1144650633, 2606905625};
    for (std::size_t table = 0; table < std::size(expected); ++table)
        EXPECT_EQ(found[table], expected[table]) << "table " << table;
    EXPECT_STREQ(IntervalNames[3], "forth");
    EXPECT_STREQ(IntervalQualities[0], "double dimished");
    EXPECT_STREQ(InstrumentNames[75], "75 Pan Flute ");
    EXPECT_STREQ(ChordSuffixes[30], "This name doesn't exist");
}

// Whatever the spelling, the sound moves by the interval's semitones, and two accidentals are the most.
TEST(Vocabulary, AddingAnIntervalMovesThePitchByItsSemitones) {
    EXPECT_EQ(German(addToPitch(Spelled(0, 0), makeInterval(2, 2), 1)), "es");   // a minor third
    EXPECT_EQ(German(addToPitch(Spelled(6, 0), makeInterval(4, 3), 5)), "fis");  // a fifth, over the edge
    EXPECT_EQ(German(addToPitch(Spelled(2, 2), makeInterval(1, 4), 1)), "gis");  // f would need three sharps
    TextDigest intervals;
    for (int kind = 0; kind < 8 * 7; ++kind)
        intervals.Add(std::to_string(makeInterval(Short(kind / 7), Short(kind % 7)).semitones));
    EXPECT_EQ(intervals.value, 628875816U);
    for (int at = 0; at < stepCount * 5; ++at)
        for (int kind = 0; kind < 8 * 7; ++kind)
            for (const int direction : {-1, 1}) {
                const TSpelledPitch from = Spelled(at / 5, at % 5 - 2);
                const TInterval interval = makeInterval(Short(kind / 7), Short(kind % 7));
                const TSpelledPitch to = addToPitch(from, interval, Short(direction));
                ASSERT_EQ(ClassOf(to), (ClassOf(from) + direction * interval.semitones + 24) % 12)
                    << German(from) << " degree " << kind / 7 << " quality " << kind % 7;
                ASSERT_LE(std::abs(to.alteration), 2);
            }
}

}  // namespace
