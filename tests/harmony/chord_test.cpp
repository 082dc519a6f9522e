#include "harmony/chord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory_resource>
#include <stdexcept>
#include <utility>

#include "harmony/chord_namer.h"
#include "tests/harmony/naming.h"

namespace {

using testing::ElementsAre;

std::vector<std::int32_t> ScoresOf(const TChord& chord) {
    return {chord.scores.begin(), chord.scores.begin() + chord.noteCount};
}

Pitches PitchesOf(const TChord& chord) {
    return {chord.pitches.begin(), chord.pitches.end()};
}

// C: third 30, fifth 33, whole chord 10, place 3 * 3. E: its minor third 25 and 2 * 3; the sixth below, C, is
// worth nothing. G: 1 * 3.
TEST(Chord, RootOfATriadScoresHighest) {
    const auto score = Together({60, 64, 67});
    TChord chord(score->notes, -1);
    const TChordInfo info = chord.analyse();
    EXPECT_THAT(ScoresOf(chord), ElementsAre(82, 31, 3));
    EXPECT_TRUE(info.ok && info.isTriad && info.majorThird && info.plainFifth && info.knownChord);
    EXPECT_EQ(info.type, ctMajor);
    EXPECT_EQ(info.rootIndex, 0);
    EXPECT_TRUE(chord.rootIsBass && chord.knownChord);
    EXPECT_EQ(chord.shortText, "C");
    EXPECT_EQ(chord.longText, " Vertical: do-mi-sol Your accord is C");
    EXPECT_EQ(chordText(chordFormOf(std::move(chord))).view(), "C");
}

// C on top: third 30, fifth 33, whole chord 10, place 1 * 3.
TEST(Chord, InversionKeepsItsRootAndNamesItsBassUpward) {
    const auto score = Together({64, 67, 72});
    TChord chord(score->notes, -1);
    const TChordInfo info = chord.analyse();
    EXPECT_THAT(ScoresOf(chord), ElementsAre(34, 6, 76));
    EXPECT_EQ(info.rootIndex, 2);
    EXPECT_TRUE(info.hasForeignBass);
    EXPECT_EQ(info.bassDegree, 2);
    EXPECT_EQ(chord.shortText, "C/E");
    EXPECT_EQ(chord.longText,
              " Vertical: mi-sol-do Your accord is C/E   Bass is the third from the main Tone");
    const TChordForm form = chordFormOf(std::move(chord));
    EXPECT_EQ(form.bass, 8);  // semitones from C down to E
    EXPECT_FALSE(form.bassInChord);
    EXPECT_EQ(chordText(form).view(), "C/Ab");
}

TEST(Chord, RootPositionsOverC) {
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
    };
    for (const auto& [pitches, name] : written) EXPECT_EQ(NameOf(pitches), name);
}

std::string TextOf(std::uint32_t type, std::int32_t root = 0, std::int32_t bass = 0) {
    const TChordIntervals& list = ChordIntervals[type];
    TChordForm form{list.third, list.fifth, list.seventh, list.ninth};
    form.root = root;
    form.bass = bass;
    return std::string(chordText(form).view());
}

TEST(Chord, EachTypeHasItsNotation) {
    const std::vector<std::pair<std::uint32_t, const char*>> notation{
        {0, "C"},      {1, "C"},     {2, "C"},    {3, "Cm"},   {4, "C+5"},    {5, "Cm-5"},   {6, "C"},
        {7, "C+7"},    {8, "C7"},    {9, "Cm+7"}, {10, "Cm7"}, {11, "C+7+5"}, {12, "Cm7-5"}, {13, "Cdim"},
        {14, "C"},     {15, "C9+7"}, {16, "C9"},  {18, "Cm9"}, {20, "C-9"},   {22, "C-9"},   {23, "Csus"},
        {24, "C7sus"}, {25, "C"},    {26, "C"},   {27, "C"},   {28, "C6"},    {29, "Cm6"},   {30, "C"},
    };
    for (const auto& [type, text] : notation) EXPECT_EQ(TextOf(type), text) << type;
}

TEST(Chord, BassLeavesOutWhatItSays) {
    EXPECT_EQ(TextOf(ctMinorSixth, 10), "Bbm6");
    EXPECT_EQ(TextOf(ctSeventh, 0, 10), "C/Bb");
    EXPECT_EQ(TextOf(ctSixth, 7, 9), "G/E");
    EXPECT_EQ(TextOf(ctDiminishedSeventh, 0, 9), "Cdim/A");
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

TEST(Chord, WordsForWhatHasNoType) {
    const auto texts = [](const Pitches& pitches) {
        const auto score = Together(pitches);
        TChord chord(score->notes, -1);
        EXPECT_EQ(chord.analyse().type, ctNone);
        return std::string(chord.shortText) + " |" + std::string(chord.longText);
    };
    EXPECT_EQ(texts({69}), "A | Vertical: la Your accord is A?");  // alone, a tone has no third to tell by
    EXPECT_EQ(texts({48, 50, 52}), "C* | Vertical: do-re-mi Your accord is C*");
    EXPECT_EQ(texts({48, 50, 51}), "Cm* | Vertical: do-re-mi_b Your accord is Cm*");
}

TEST(Chord, PitchesBelowTwelveAreClassesAndKeepTheirOrder) {
    const auto score = Together({7, 0, 4});
    TChord chord(score->notes, -1);
    chord.analyse();
    EXPECT_TRUE(chord.pitchClassMode);
    EXPECT_EQ(chord.tones[0].pitch, 7U);
    EXPECT_EQ(chord.span, 5 + 4);  // G up to C, C up to E
    EXPECT_EQ(chord.distance(0, 2), 9);
    EXPECT_EQ(chord.info.type, ctMajor);
    EXPECT_EQ(chord.info.rootIndex, 1);

    const auto sorted = Together({19, 12, 16});
    TChord pitches(sorted->notes, -1);
    pitches.analyse();
    EXPECT_FALSE(pitches.pitchClassMode);
    EXPECT_EQ(pitches.tones[0].pitch, 12U);
    EXPECT_EQ(pitches.tones[0].index, 1U);
    EXPECT_EQ(pitches.tones[0].sortedPosition, 2U);  // pitches[0], the 19, is the third of them
    EXPECT_EQ(pitches.span, 7);
}

TEST(Chord, CountsWhatItsTonesHaveBetweenThem) {
    const auto score = Together({60, 48, 62, 48, 64, 90});
    TChord chord(score->notes, -1);
    chord.analyse();  // 48 48 60 62 64 90
    EXPECT_EQ(chord.noteCount, 6);
    EXPECT_EQ(chord.tones[0].index, 1U);  // of equal pitches, the first one stays first
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

TEST(Chord, TooManyNotesOrClassesGiveNoResult) {
    Pitches thirteen, twelveClasses;
    for (std::uint32_t step = 0; step < 13; ++step)
        thirteen.push_back(30 + 5 * (step % 11) + 60 * (step / 11));
    for (std::uint32_t step = 0; step < 12; ++step) twelveClasses.push_back(30 + 5 * step);
    for (const Pitches& pitches : {thirteen, twelveClasses}) {
        const auto score = Together(pitches);
        TChord chord(score->notes, -1);
        const TChordInfo info = chord.analyse();
        EXPECT_FALSE(info.ok);
        EXPECT_EQ(info.rootIndex, -1);
        EXPECT_FALSE(chord.analysed);
        EXPECT_TRUE(chord.shortText.empty() && chord.longText.empty());
        try {
            FormOf(pitches);
            ADD_FAILURE() << "a form without a result";
        } catch (const std::out_of_range& failure) {
            EXPECT_STREQ(failure.what(), "invalid vector<T> subscript");
        }
    }
    EXPECT_EQ(NameOf({60, 64, 67}), "C");  // the failure left nothing behind
}

TEST(Chord, SecondAnalysisIsTheFirstOne) {
    const auto score = Together({60, 64, 67});
    TChord chord(score->notes, -1);
    chord.analyse();
    chord.scores = {};
    chord.info.type = ctFifth;  // a mark that a new analysis would take away
    EXPECT_EQ(chord.analyse().type, ctFifth);
    EXPECT_EQ(chord.scores[0], 0);
    EXPECT_EQ(chord.longText, " Vertical: do-mi-sol Your accord is C");
}

TEST(ChordTone, AToneThatDoesNotFitEmptiesTheMask) {
    std::uint16_t mask = 0;
    EXPECT_FALSE(addChordTone(0, mask));
    EXPECT_FALSE(addChordTone(4, mask));
    EXPECT_TRUE(addChordTone(7, mask));
    EXPECT_TRUE(addChordTone(10, mask));
    EXPECT_EQ(mask, 1 + 4 + 8 + 64);
    EXPECT_FALSE(addChordTone(11, mask));  // beside the other seventh
    EXPECT_EQ(mask, 0);
    addChordTone(4, mask);
    EXPECT_FALSE(addChordTone(3, mask));
    EXPECT_EQ(mask, 0);
    addChordTone(9, mask);
    addChordTone(9, mask);
    EXPECT_EQ(mask, 32);  // the same tone again is no clash
    for (const std::int32_t stranger : {2, 15, -1}) {
        addChordTone(0, mask);
        EXPECT_FALSE(addChordTone(stranger, mask));
        EXPECT_EQ(mask, 0);
    }
}

}  // namespace
