#include "harmony/chord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "tests/harmony/naming.h"

namespace {

using testing::ElementsAre;

Pitches PitchesOf(const TChord& chord) {
    return {chord.pitches.begin(), chord.pitches.end()};
}

TEST(Chord, NamesOverC) {
    const std::vector<std::pair<Pitches, const char*>> written{
        {{60}, "C"},
        {{60, 72}, "C"},
        {{72, 60}, "C"},
        {{60, 64}, "C"},
        {{60, 63}, "Cm"},
        {{60, 64, 68}, "C+5"},
        {{60, 63, 66}, "Cm-5"},
        {{60, 65, 67}, "Csus"},
        {{60, 64, 67, 71}, "C+7"},
        {{60, 64, 67, 70}, "C7"},
        {{60, 63, 67, 71}, "Cm+7"},
        {{60, 63, 67, 70}, "Cm7"},
        {{60, 63, 66, 69}, "Cdim"},
        {{60, 64, 67, 69}, "C6"},
        {{60, 65, 67, 70}, "C7sus"},
        {{60, 64, 70, 74}, "C9"},  // no fifth
        {{60, 64, 67, 70, 74}, "C9"},
        {{60, 64, 67, 71, 74}, "C9+7"},
        {{60, 63, 67, 70, 74}, "Cm9"},
        {{60, 64, 67, 70, 73}, "C-9"},
        {{64, 67, 72}, "C/Ab"},  // the way down to the bass, 8 semitones, is shown upward
    };
    for (const auto& [pitches, name] : written) EXPECT_EQ(NameOf(pitches), name);
}

TEST(Chord, AFormShowsEachOfItsParts) {
    TChordForm all{3, 6, 9, 13, 18};
    EXPECT_EQ(chordText(all).view(), "Cdim-9+11");
    all.third = 5;
    all.bass = 1;
    EXPECT_EQ(chordText(all).view(), "C-9sus-5,6+11/C#");
}

TEST(Chord, BassStandsInAChordAtTheNumbersOfItsParts) {
    EXPECT_TRUE(FormOf({60, 64, 67}).bassInChord);   // bass 0, the place of the third
    EXPECT_FALSE(FormOf({60, 62}).bassInChord);      // no parts
    EXPECT_EQ(FormOf({67, 72, 76}).bass, 5);         // from C down to G
    EXPECT_FALSE(FormOf({67, 72, 76}).bassInChord);  // two parts, 0 and 1
}

TEST(Chord, PitchesBelowTwelveAreClassesAndKeepTheirOrder) {
    const auto score = Together({7, 0, 4});
    TChord chord(score->notes, -1);
    chord.analyse();
    EXPECT_TRUE(chord.pitchClassMode);
    EXPECT_EQ(chord.tones[0].pitch, 7U);
    EXPECT_EQ(chord.span, 5 + 4);  // G up to C, C up to E
    EXPECT_EQ(chord.distance(0, 2), 9);
}

TEST(Chord, CountsWhatItsTonesHaveBetweenThem) {
    const auto score = Together({60, 48, 62, 48, 64, 90});
    TChord chord(score->notes, -1);
    chord.analyse();  // 48 48 60 62 64 90
    EXPECT_EQ(chord.noteCount, 6);
    EXPECT_EQ(chord.tones[0].index, 1U);           // of equal pitches, the first one stays first
    EXPECT_EQ(chord.tones[0].sortedPosition, 2U);  // pitches[0], the 60, is the third of them
    EXPECT_EQ(chord.unisonCount, 1);
    EXPECT_EQ(chord.distinctPitchCount, 5);
    EXPECT_EQ(chord.pitchClassCount, 4);  // C D E F#
    EXPECT_EQ(chord.pitchClassHistogram[0], 3);
    EXPECT_EQ(chord.octaveCount, 2);                // each 48 below the 60
    EXPECT_EQ(chord.wideStepCount, 1);              // 64 to 90
    EXPECT_EQ(chord.adjacentClassHistogram[2], 3);  // 60 62, 62 64, 64 90
    EXPECT_EQ(chord.adjacentClassCount, 2);         // 0 and 2
    EXPECT_EQ(chord.span, 42);
}

TEST(Chord, TakesTheFirstNotesOfAListAndDropsDirectRepeats) {
    const auto score = Together({60, 60, 64, 60, 60, 60});
    EXPECT_THAT(PitchesOf(TChord(score->notes, -1)), ElementsAre(60, 64, 60));
    EXPECT_THAT(PitchesOf(TChord(score->notes, 3)), ElementsAre(60, 64));
    EXPECT_THAT(PitchesOf(TChord(score->notes, 99)), ElementsAre(60, 64, 60));
    const TChord whole(score->notes, 5);
    EXPECT_EQ(whole.notes->notes.size(), 5U);  // the score keeps every note
    EXPECT_TRUE(whole.notes->notes[0]->Equals(*score->notes[0]));
}

TEST(Chord, WithoutNotesThereIsNoChord) {
    TChord empty(TNoteList(), -1);
    EXPECT_FALSE(empty.valid);
    EXPECT_FALSE(empty.analyse().ok);
    EXPECT_EQ(empty.info.rootIndex, -1);
    const TChordForm form = chordFormOf(std::move(empty));
    EXPECT_TRUE(form.unknown);
    EXPECT_EQ(form.root + form.third + form.bass, 0);
    EXPECT_TRUE(FormOf({}).unknown);

    const auto score = Together({60});
    TChord limited(score->notes, 0);  // there was a list, but nothing of it was taken
    EXPECT_TRUE(limited.valid);
    EXPECT_FALSE(limited.analyse().ok);
}

TEST(ChordTone, AToneThatIsInNoChordEmptiesTheMask) {
    for (const std::int32_t stranger : {2, 15, -1}) {
        std::uint16_t mask = 1;
        EXPECT_FALSE(addChordTone(stranger, mask));
        EXPECT_EQ(mask, 0);
    }
}

}  // namespace
