#include "harmony/vocabulary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace {

using testing::ElementsAre;

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

TEST(Vocabulary, RingsSpellWhatTheirStepsAndAlterationsSound) {
    std::set<int> places;
    for (int step = 0; step < stepCount; ++step)
        for (int alteration = -2; alteration <= 2; ++alteration) {
            const TSpelledPitch pitch = Spelled(step, alteration);
            places.insert(RingIndex(pitch));
            // c d e f g a h stand 0 2 4 5 7 9 11 semitones above c
            EXPECT_EQ(ClassOf(pitch), (ScaleSemitones[step] + alteration + 12) % 12) << German(pitch);
        }
    EXPECT_EQ(places.size(), ringSize);
    EXPECT_EQ(German(Spelled(0, -1)), "ces");
    EXPECT_EQ(German(Spelled(6, -1)), "b");
    EXPECT_EQ(German(Spelled(3, 2)), "fisis");
    EXPECT_STREQ(SolfegeNames[RingIndex(Spelled(4, -2))], "sol_bb");
    EXPECT_STREQ(GermanNames[ringSize], "*");
    EXPECT_STREQ(SolfegeNames[ringSize], "*");
    EXPECT_EQ(RingPitchClasses[ringSize], 13);
}

// The tables by pitch class and the ring are two ways to the same names.
TEST(Vocabulary, TablesByClassAgreeWithTheRing) {
    for (int step = 0; step < stepCount; ++step)
        for (int alteration = -1; alteration <= 1; ++alteration) {
            const int place = RingIndex(Spelled(step, alteration)), cls = RingPitchClasses[place];
            const bool isWhite = std::count(ScaleSemitones, ScaleSemitones + stepCount, cls) > 0;
            if (isWhite && alteration != 0) continue;  // e sharp and its like, which no table by class has
            if (alteration >= 0) {
                EXPECT_STREQ(GermanNamesSharp[cls], GermanNames[place]);
                EXPECT_STREQ(SolfegeNamesSharp[cls], SolfegeNames[place]);
            }
            if (alteration <= 0) {
                EXPECT_STREQ(GermanNamesFlat[cls], GermanNames[place]);
                EXPECT_STREQ(SolfegeNamesFlat[cls], SolfegeNames[place]);
            }
        }
    EXPECT_STREQ(GermanNamesSharp[classCount], "*");
    EXPECT_STREQ(SolfegeNamesFlat[classCount], "*");
}

TEST(Vocabulary, FifthsRiseByAFifthEach) {
    for (int cls = 0; cls < classCount; ++cls)  // from F sharp, place 0, seven semitones a place
        EXPECT_EQ((6 + 7 * FifthsPosition[cls]) % 12, cls);
    for (int place = 0; place + 1 < stepCount; ++place) EXPECT_EQ(FifthsFromC[place], 7 * place % 12);
    EXPECT_EQ(FifthsFromC[6], 6);
}

TEST(Vocabulary, OddWordsAndRowsStayAsUsersKnowThem) {
    EXPECT_STREQ(IntervalNames[3], "forth");
    EXPECT_STREQ(BassDegreeNames[8], "ninth");
    EXPECT_STREQ(IntervalQualities[0], "double dimished");
    EXPECT_STREQ(IntervalQualities[3], "perfect");
    EXPECT_STREQ(IntervalPairNames[6], "DoFis");
    EXPECT_STREQ(AccidentalMarks[4], "x");
    EXPECT_STREQ(DegreeNumerals[6], "VII");
    EXPECT_STREQ(ModeNames[1], "moll");
    EXPECT_STREQ(PitchNamesFlat[6], "Gb");
    EXPECT_STREQ(PitchNamesSharp[8], "G#");
    EXPECT_STREQ(DegreeNameSets[5][9], "VIIb");
    for (const int equal : {8, 9})
        for (int semitones = 0; semitones < classCount; ++semitones)
            EXPECT_STREQ(DegreeNameSets[equal][semitones], DegreeNameSets[7][semitones]);
    EXPECT_STREQ(ChordSuffixes[30], "This name doesn't exist");
}

TEST(Vocabulary, InstrumentsBearTheirNumbers) {
    for (int program = 0; program < 128; ++program)
        EXPECT_THAT(InstrumentNames[program], testing::StartsWith(std::to_string(program) + " "));
    EXPECT_STREQ(InstrumentNames[56], "56 Trumpet");
    EXPECT_STREQ(InstrumentNames[75], "75 Pan Flute ");
    EXPECT_STREQ(InstrumentNames[87], "87 Lead 8 (bass + lead)");
    EXPECT_EQ(InstrumentNames[128], nullptr);
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
    EXPECT_EQ(pitchClassOf(69), 9);
    EXPECT_EQ(octaveOf(69), 5);
    EXPECT_EQ(12 * octaveOf(-14) + pitchClassOf(-14), -14);
}

TEST(Vocabulary, IntervalsGrowWithTheirQuality) {
    const auto semitones = [](int degree) {
        std::vector<int> all;
        for (int quality = 0; quality < 7; ++quality)
            all.push_back(makeInterval(Short(degree), Short(quality)).semitones);
        return all;
    };
    EXPECT_THAT(semitones(3), ElementsAre(3, 4, 5, 5, 5, 6, 7));  // fourth: minor and major are perfect
    EXPECT_THAT(semitones(4), ElementsAre(5, 6, 7, 7, 7, 8, 9));  // fifth
    EXPECT_THAT(semitones(2), ElementsAre(1, 2, 3, 4, 4, 5, 6));  // third: perfect is major
    EXPECT_THAT(semitones(7), ElementsAre(10, 11, 12, 12, 12, 13, 14));
    EXPECT_EQ(makeInterval(6, 2), (TInterval{6, 10}));  // the minor seventh
}

TEST(Vocabulary, IntervalsAreAddedOnTheStepThatTheyName) {
    const TInterval minorThird = makeInterval(2, 2), fifth = makeInterval(4, 3), second = makeInterval(1, 4);
    EXPECT_EQ(German(addToPitch(Spelled(0, 0), minorThird, 1)), "es");
    EXPECT_EQ(German(addToPitch(Spelled(0, 0), minorThird, -1)), "a");
    EXPECT_EQ(German(addToPitch(Spelled(6, 0), fifth, 5)), "fis");  // over the octave's edge
    EXPECT_EQ(German(addToPitch(Spelled(3, 0), fifth, -3)), "b");
    EXPECT_EQ(German(addToPitch(Spelled(2, 2), second, 1)), "gis");  // f would need three sharps
    EXPECT_EQ(addToPitch(Spelled(2, 1), fifth, 0), Spelled(2, 1));
}

// Whatever the spelling, the sound moves by the interval's semitones, and two accidentals are the most.
TEST(Vocabulary, AddingAnIntervalMovesThePitchByItsSemitones) {
    for (int step = 0; step < stepCount; ++step)
        for (int alteration = -2; alteration <= 2; ++alteration)
            for (int degree = 0; degree <= 7; ++degree)
                for (int quality = 0; quality < 7; ++quality)
                    for (const int direction : {-1, 1}) {
                        const TSpelledPitch from = Spelled(step, alteration);
                        const TInterval interval = makeInterval(Short(degree), Short(quality));
                        const TSpelledPitch to = addToPitch(from, interval, Short(direction));
                        ASSERT_EQ(ClassOf(to), (ClassOf(from) + direction * interval.semitones + 24) % 12)
                            << German(from) << " degree " << degree << " quality " << quality;
                        ASSERT_LE(std::abs(to.alteration), 2);
                    }
}

}  // namespace
