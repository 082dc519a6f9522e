#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>

#include "harmony/chord.h"
#include "tests/harmony/naming.h"
#include "tests/harmony/plain_chords.h"

namespace {

std::vector<bool> FlagsOf(const TChordInfo& info) {
    return {info.ok,
            info.hasForeignBass,
            info.fromReducedSet[0],
            info.fromReducedSet[1],
            info.chordIsPartial,
            info.noThird,
            info.bothThirds,
            info.majorBelowMinor,
            info.isTriad,
            info.isSeventh,
            info.isNinth,
            info.majorThird,
            info.majorSeventh,
            info.diminishedSeventh,
            info.plainFifth,
            info.plainNinth,
            info.knownChord,
            info.twoClasses};
}

std::vector<bool> FlagsOf(const PlainChord& chord) {
    return {chord.ok,
            chord.hasForeignBass,
            chord.fromReducedSet,
            chord.fromReducedSet,
            chord.chordIsPartial,
            chord.noThird,
            chord.bothThirds,
            chord.majorBelowMinor,
            chord.isTriad,
            chord.isSeventh,
            chord.isNinth,
            chord.majorThird,
            chord.majorSeventh,
            chord.diminishedSeventh,
            chord.plainFifth,
            chord.plainNinth,
            chord.knownChord,
            chord.twoClasses};
}

// Holds the analysis, the texts and the name of some pitches against the plain restatement.
void Compare(const Pitches& pitches) {
    const PlainChord plain = NamePlainly({pitches.begin(), pitches.end()});
    const auto score = Together(pitches);
    TChord chord(score->notes, -1);
    const TChordInfo info = chord.analyse();
    SCOPED_TRACE(testing::PrintToString(pitches));
    ASSERT_EQ(FlagsOf(info), FlagsOf(plain));
    ASSERT_EQ(int(info.type), plain.type);
    ASSERT_EQ(info.rootIndex, plain.rootIndex);
    ASSERT_EQ(info.bassDegree, plain.bassDegree);
    ASSERT_EQ(std::string(chord.shortText), plain.shortText);
    ASSERT_EQ(std::string(chord.longText), plain.longText);
    if (!plain.ok) {
        ASSERT_THROW(FormOf(pitches), std::out_of_range);
        return;
    }
    for (std::size_t tone = 0; tone < plain.scores.size(); ++tone)
        ASSERT_EQ(chord.scores[tone], plain.scores[tone]);
    ASSERT_EQ(NameOf(pitches), plain.name);
}

std::uint32_t Below(std::uint32_t limit, std::minstd_rand& random) {
    return static_cast<std::uint32_t>(random() % limit);
}

Pitches ClassesOf(unsigned set) {
    Pitches classes;
    for (std::uint32_t cls = 0; cls < 12; ++cls)
        if ((set >> cls & 1U) != 0) classes.push_back(cls);
    return classes;
}

// What has one thread need not take a minute where only threads are looked at.
#if defined(__SANITIZE_THREAD__)
constexpr unsigned everySet = 17;
#else
constexpr unsigned everySet = 1;
#endif

TEST(AllChords, EverySetOfClassesInEveryInversionIsNamedAsTheRulesSay) {
    for (unsigned set = 1; set < 4096; set += everySet) {
        Pitches pitches = ClassesOf(set);
        for (std::uint32_t& pitch : pitches) pitch += 36;
        for (std::size_t inversion = 0; inversion < pitches.size(); ++inversion) {
            Compare(pitches);
            ASSERT_FALSE(HasFatalFailure());
            pitches.front() += 12;
            std::rotate(pitches.begin(), pitches.begin() + 1, pitches.end());
        }
    }
}

TEST(AllChords, EverySetOfBareClassesIsNamedAsTheRulesSay) {
    for (unsigned set = 1; set < 4096; set += everySet) {
        Pitches classes = ClassesOf(set);
        Compare(classes);
        std::rotate(classes.begin(), classes.begin() + std::ptrdiff_t(classes.size() / 2), classes.end());
        Compare(classes);  // the order counts here
        ASSERT_FALSE(HasFatalFailure());
    }
}

// From one to thirteen pitches in any order, some of them twice, near together or far apart.
TEST(AllChords, AnyPitchesAreNamedAsTheRulesSayAndInAnyOrder) {
    std::minstd_rand random(1);
    for (int round = 0; round < 4000; ++round) {
        const std::uint32_t range = round % 3 == 0 ? 16 : round % 3 == 1 ? 40 : 128;
        Pitches pitches(1 + Below(13, random));
        for (std::uint32_t& pitch : pitches) pitch = Below(range, random);
        Compare(pitches);
        ASSERT_FALSE(HasFatalFailure()) << "round " << round;
    }
}

TEST(AllChords, TheOrderOfRealPitchesDoesNotMatter) {
    std::minstd_rand random(2);
    for (int round = 0; round < 500; ++round) {
        Pitches pitches;
        for (std::uint32_t pitch = 12 + Below(9, random); pitches.size() < 1 + unsigned(round) % 11;)
            pitches.push_back(pitch += 1 + Below(9, random));
        const std::string name = NameOf(pitches);  // no failure escapes up to eleven pitches
        std::shuffle(pitches.begin(), pitches.end(), random);
        ASSERT_EQ(NameOf(pitches), name) << testing::PrintToString(pitches);
    }
}

}  // namespace
