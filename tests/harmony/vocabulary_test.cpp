#include "harmony/vocabulary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

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

// Steps c d e f g a h stand 0 2 4 5 7 9 11 semitones above c; the tables by class are the ring's names.
TEST(Vocabulary, RingsSpellWhatTheirStepsAndAlterationsSound) {
    std::set<int> places;
    for (int step = 0; step < stepCount; ++step)
        for (int alteration = -2; alteration <= 2; ++alteration) {
            const TSpelledPitch pitch = Spelled(step, alteration);
            const int place = RingIndex(pitch), cls = ClassOf(pitch);
            places.insert(place);
            EXPECT_EQ(cls, (ScaleSemitones[step] + alteration + 12) % 12) << German(pitch);
            const bool isWhite = std::count(ScaleSemitones, ScaleSemitones + stepCount, cls) > 0;
            if (std::abs(alteration) == 2 || (isWhite && alteration != 0)) continue;  // in no table by class
            const auto same = [&](const char* const* german, const char* const* solfege) {
                EXPECT_STREQ(german[cls], GermanNames[place]);
                EXPECT_STREQ(solfege[cls], SolfegeNames[place]);
            };
            if (alteration >= 0) same(GermanNamesSharp, SolfegeNamesSharp);
            if (alteration <= 0) same(GermanNamesFlat, SolfegeNamesFlat);
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
    const std::uint32_t found[] = {
        digest(PitchNamesMixed), digest(PitchNamesFlat), digest(PitchNamesSharp), digest(GermanNames),
        digest(SolfegeNames),    digest(IntervalNames),  digest(BassDegreeNames), digest(IntervalQualities),
        digest(DegreeNumerals),  digest(ModeNames),      digest(AccidentalMarks), digest(IntervalPairNames),
        digest(ChordSuffixes),   degrees.value,          digest(InstrumentNames)};
    const std::uint32_t expected[] = {1051612214, 2393611428, 1245601585, 2600833103, 3016195329,
                                      1213653563, 1308297413, 270611411,  2105865044, 2312775398,
                                      2145044921, 3668153307, 3720255115, 1117361246, 356234288};
    for (std::size_t table = 0; table < std::size(expected); ++table)
        EXPECT_EQ(found[table], expected[table]) << "table " << table;
    EXPECT_STREQ(IntervalNames[3], "forth");
    EXPECT_STREQ(IntervalQualities[0], "double dimished");
    EXPECT_STREQ(InstrumentNames[75], "75 Pan Flute ");
    EXPECT_STREQ(ChordSuffixes[30], "This name doesn't exist");
}

TEST(Vocabulary, ClassesAndStepsGoRound) {
    EXPECT_EQ(classAbove(11, 0, 1), 1);  // from B up to C
    EXPECT_EQ(classAbove(0, 11, 1), 11);
    EXPECT_EQ(classAbove(2, 3, -1), 5);
    EXPECT_EQ(addClass(7, 7), 2);  // G and a fifth is D
    EXPECT_EQ(addClass(2, -7), 7);
    EXPECT_EQ(addStep(6, 1), 0);
    EXPECT_EQ(addStep(0, -1), 6);
    EXPECT_EQ(degreeOf(12, true), 0);
    EXPECT_EQ(degreeOf(-1, true), 0);
    EXPECT_EQ(12 * octaveOf(-14) + pitchClassOf(-14), -14);
}

// Minor and major are perfect where there is a perfect form, and perfect is major where there is none.
TEST(Vocabulary, IntervalsGrowWithTheirQuality) {
    const auto semitones = [](int degree) {
        std::vector<int> all;
        for (int quality = 0; quality < 7; ++quality)
            all.push_back(makeInterval(Short(degree), Short(quality)).semitones);
        return all;
    };
    EXPECT_EQ(semitones(3), (std::vector<int>{3, 4, 5, 5, 5, 6, 7}));  // fourth
    EXPECT_EQ(semitones(4), (std::vector<int>{5, 6, 7, 7, 7, 8, 9}));  // fifth
    EXPECT_EQ(semitones(2), (std::vector<int>{1, 2, 3, 4, 4, 5, 6}));  // third
    EXPECT_EQ(semitones(7), (std::vector<int>{10, 11, 12, 12, 12, 13, 14}));
    EXPECT_EQ(makeInterval(6, 2), (TInterval{6, 10}));  // the minor seventh
}

// Whatever the spelling, the sound moves by the interval's semitones, and two accidentals are the most.
TEST(Vocabulary, AddingAnIntervalMovesThePitchByItsSemitones) {
    const TInterval minorThird = makeInterval(2, 2), fifth = makeInterval(4, 3), second = makeInterval(1, 4);
    EXPECT_EQ(German(addToPitch(Spelled(0, 0), minorThird, 1)), "es");
    EXPECT_EQ(German(addToPitch(Spelled(6, 0), fifth, 5)), "fis");   // over the octave's edge
    EXPECT_EQ(German(addToPitch(Spelled(2, 2), second, 1)), "gis");  // f would need three sharps
    EXPECT_EQ(addToPitch(Spelled(2, 1), fifth, 0), Spelled(2, 1));
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
