#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>

#include "harmony/chord.h"
#include "tests/harmony/naming.h"
#include "tests/harmony/plain_chords.h"

namespace {

// Of TChordInfo or PlainChord.
template <typename Found>
std::vector<bool> FlagsOf(const Found& found) {
    return {found.ok,
            found.hasForeignBass,
            found.fromReducedSet[0],
            found.fromReducedSet[1],
            found.chordIsPartial,
            found.noThird,
            found.bothThirds,
            found.majorBelowMinor,
            found.isTriad,
            found.isSeventh,
            found.isNinth,
            found.majorThird,
            found.majorSeventh,
            found.diminishedSeventh,
            found.plainFifth,
            found.plainNinth,
            found.knownChord,
            found.twoClasses};
}

std::string FailureOf(const Pitches& pitches) {
    try {
        FormOf(pitches);
    } catch (const std::out_of_range& failure) {
        return failure.what();
    }
    return "none";
}

// Holds the analysis, the texts and the name of some pitches against the plain restatement.
void Compare(const Pitches& pitches) {
    const PlainChord plain = NamePlainly({pitches.begin(), pitches.end()});
    const auto score = Together(pitches);
    TChord chord(score->notes, -1);
    const TChordInfo info = chord.analyse();
    SCOPED_TRACE(testing::PrintToString(pitches));
    for (const TChordInfo& each : {info, chord.analyse()}) {  // the second is the first one
        ASSERT_EQ(FlagsOf(each), FlagsOf(plain));
        ASSERT_EQ(int(each.type), plain.type);
        ASSERT_EQ(each.rootIndex, plain.rootIndex);
        ASSERT_EQ(each.bassDegree, plain.bassDegree);
    }
    ASSERT_EQ(std::string(chord.shortText), plain.shortText);
    ASSERT_EQ(std::string(chord.longText), plain.longText);
    ASSERT_EQ(FailureOf(pitches), plain.ok ? "none" : "invalid vector<T> subscript");
    if (!plain.ok) return;
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

}  // namespace
