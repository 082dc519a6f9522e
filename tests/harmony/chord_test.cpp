#include "harmony/chord.h"

#include "tests/harmony/naming.h"

namespace {

TEST(Chord, IsNamedAsTheoryHasIt) {
    // clang-format off
    const std::vector<std::pair<Pitches, const char*>> written{
        {{60}, "C"}, {{60, 72}, "C"}, {{72, 60}, "C"}, {{60, 64}, "C"}, {{60, 63}, "Cm"},
        {{60, 64, 68}, "C+5"}, {{60, 63, 66}, "Cm-5"}, {{60, 65, 67}, "Csus"}, {{60, 64, 67, 71}, "C+7"},
        {{60, 64, 67, 70}, "C7"}, {{60, 63, 67, 71}, "Cm+7"}, {{60, 63, 67, 70}, "Cm7"},
        {{60, 63, 66, 69}, "Cdim"}, {{60, 64, 67, 69}, "C6"}, {{60, 65, 67, 70}, "C7sus"},
        {{60, 64, 70, 74}, "C9"}, {{60, 64, 67, 70, 74}, "C9"}, {{60, 64, 67, 71, 74}, "C9+7"},
        {{60, 63, 67, 70, 74}, "Cm9"}, {{60, 64, 67, 70, 73}, "C-9"},
    };
    // clang-format on
    for (const auto& [pitches, name] : written) EXPECT_EQ(NameOf(pitches), name);
}

// Whatever of an analysis a user may come to see, in one line.
std::string Described(const Pitches& pitches) {
    const auto score = Together(pitches);
    TChord chord(score->notes, -1);
    if (chord.analyse().ok) chord.analyse();  // the second is the first one
    std::string line = std::to_string(chord.info.type) + " ";
    line.append(chord.shortText).append(" ").append(chord.longText).append(" ");
    try {
        return line + NameOf(pitches);
    } catch (const std::out_of_range& failure) {
        return line + failure.what();
    }
}

std::uint32_t DigestOf(const std::vector<Pitches>& all) {
    TextDigest text;
    for (const Pitches& pitches : all) text.Add(Described(pitches));
    return text.value;
}

// The names that users know: taken from the program when it agreed in every one of them
// with a second analysis written independently. A change here is a chord that shows another name.
TEST(Chord, EverySetOfPitchesKeepsItsName) {
    std::vector<Pitches> inversions, classes, any;
    for (unsigned set = 1; set < 4096; ++set) {
        Pitches bare, pitches;
        for (std::uint32_t cls = 0; cls < 12; ++cls)
            if ((set >> cls & 1U) != 0) bare.push_back(cls), pitches.push_back(36 + cls);
        for (std::size_t inversion = 0; inversion < bare.size(); ++inversion) {
            inversions.push_back(pitches);
            pitches.front() += 12;
            std::rotate(pitches.begin(), pitches.begin() + 1, pitches.end());
        }
        classes.push_back(bare);
        std::rotate(bare.begin(), bare.begin() + std::ptrdiff_t(bare.size() / 2), bare.end());
        classes.push_back(bare);  // the order counts here
    }
    // From one to thirteen pitches in any order, some of them twice, near together or far apart.
    std::minstd_rand random(1);
    for (int round = 0; round < 4000; ++round) {
        const std::uint32_t range = round % 3 == 0 ? 16 : round % 3 == 1 ? 40 : 128;
        Pitches pitches(1 + random() % 13);
        for (std::uint32_t& pitch : pitches) pitch = static_cast<std::uint32_t>(random() % range);
        any.push_back(pitches);
    }
    EXPECT_EQ(DigestOf(inversions), 1642137698U);
    EXPECT_EQ(DigestOf(classes), 2962221313U);
    EXPECT_EQ(DigestOf(any), 3478533750U);
}

TEST(Chord, WithoutNotesThereIsNoChordAndTooManyAreRefused) {
    TChord empty(TNoteList(), -1);
    EXPECT_FALSE(empty.analyse().ok);
    const TChordForm form = chordFormOf(std::move(empty));
    EXPECT_TRUE(form.unknown);
    EXPECT_EQ(form.root + form.third + form.bass, 0);
    Pitches many(100);
    std::iota(many.begin(), many.end(), 0U);
    EXPECT_THROW(FormOf(many), std::out_of_range);  // more than its area holds
    EXPECT_EQ(NameOf({60, 64, 67}), "C");
}

// All words as one number, taken from the program, misspelt ones among them.
TEST(Vocabulary, WordsStayAsUsersKnowThem) {
    TextDigest words;
    const auto add = [&words](const auto& table) {
        for (const char* const word : table) words.Add(word != nullptr ? word : "null");
    };
    add(PitchNamesMixed), add(PitchNamesFlat), add(PitchNamesSharp), add(GermanNames), add(SolfegeNames);
    add(GermanNamesSharp), add(GermanNamesFlat), add(SolfegeNamesSharp), add(SolfegeNamesFlat);
    add(IntervalNames), add(IntervalQualities), add(IntervalPairNames), add(BassDegreeNames);
    add(DegreeNumerals), add(ModeNames), add(AccidentalMarks), add(ChordSuffixes), add(InstrumentNames);
    for (const auto& set : DegreeNameSets) add(set);
    for (const auto& [third, fifth, seventh, ninth] : ChordIntervals)
        for (const int semitones : {third, fifth, seventh, ninth}) words.Add(std::to_string(semitones));
    EXPECT_EQ(words.value, 1097642231U);
    EXPECT_EQ(addClass(1, -2), 11);
    EXPECT_EQ(addStep(1, -2), 6);
}

}  // namespace
