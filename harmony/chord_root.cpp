#include <algorithm>
#include <iterator>

#include "harmony/chord.h"

// The root of a chord, and the intervals above it.

namespace {

// What an interval above a candidate root adds to its score, by folded value: fifth and thirds speak loudest.
// clang-format off
constexpr std::uint32_t weight[15] = {
//  0  1  2  3   4   5  6   7   8  9  10  11  12 13 14
    0, 0, 0, 25, 30, 0, 10, 33, 0, 0, 12, 10, 0, 7, 7,
};
// clang-format on

constexpr std::int32_t foundBonus = 10;  // for a candidate above which a whole chord stands

// The tones that addChordTone collects, as bits of its mask.
constexpr std::uint16_t bitRoot = 1;
constexpr std::uint16_t bitMinorThird = 2;
constexpr std::uint16_t bitMajorThird = 4;
constexpr std::uint16_t bitFifth = 8;
constexpr std::uint16_t bitMinorSixth = 16;
constexpr std::uint16_t bitSixth = 32;
constexpr std::uint16_t bitSeventh = 64;
constexpr std::uint16_t bitMajorSeventh = 128;
constexpr std::uint16_t bitsThird = bitMinorThird | bitMajorThird;
constexpr std::uint16_t bitsUpper = bitMinorSixth | bitSixth | bitSeventh | bitMajorSeventh;

struct ChordTone {
    std::uint16_t bit = 0;    // 0 for a value that is in no chord
    std::uint16_t group = 0;  // of these bits a chord has one at most
};

// By folded value.
constexpr ChordTone chordTones[15] = {
    {bitRoot, 0},                  //  0
    {},                            //  1
    {},                            //  2
    {bitMinorThird, bitsThird},    //  3
    {bitMajorThird, bitsThird},    //  4
    {},                            //  5
    {},                            //  6
    {bitFifth, 0},                 //  7
    {bitMinorSixth, bitsUpper},    //  8
    {bitSixth, bitsUpper},         //  9
    {bitSeventh, bitsUpper},       // 10
    {bitMajorSeventh, bitsUpper},  // 11
    {},                            // 12
    {},                            // 13
    {},                            // 14
};

constexpr std::uint16_t wholeChords[] = {
    bitRoot | bitMinorThird | bitFifth,         // triads
    bitRoot | bitMajorThird | bitFifth,         //
    bitRoot | bitMajorThird | bitMajorSeventh,  // sevenths without their fifth
    bitRoot | bitMinorThird | bitSeventh,       //
    bitRoot | bitMajorThird | bitSeventh,       //
};

// The distance of a tone above the root, `place` tones from it, as an interval of at most a ninth. A second
// directly above the root is one; higher up in the chord it counts as a ninth.
std::int32_t FoldUpward(std::int32_t distance, std::int32_t place, std::int32_t previous) {
    const std::int32_t cls = distance % classCount;
    if (distance >= classCount && (cls == 1 || cls == 2)) return cls + classCount;
    const std::int32_t value = distance < 15 ? distance : cls;
    if ((value == 1 || value == 2) && place >= 1 && previous >= 1) return value + classCount;
    return value;
}

}  // namespace

bool addChordTone(std::int32_t value, std::uint16_t& mask) {
    const bool folded = value >= 0 && value < static_cast<std::int32_t>(std::size(chordTones));
    const ChordTone tone = folded ? chordTones[value] : ChordTone();
    if (tone.bit == 0 || (mask & tone.group & ~tone.bit) != 0) {
        mask = 0;
        return false;
    }
    mask |= tone.bit;
    if ((mask & bitRoot) == 0 || (mask & bitsThird) == 0) return false;  // as in most cases
    return std::any_of(std::begin(wholeChords), std::end(wholeChords),
                       [mask](std::uint16_t chord) { return (mask & chord) == chord; });
}

// Visits all tones but the root, in ascending order: visit(k, folded value, degree).
template <typename Visit>
void TChord::walkIntervals(std::int32_t root, Visit visit) const {
    std::int32_t previous = 0;
    for (std::int32_t k = 0; k + 1 < noteCount; ++k) {
        const bool below = k < root;
        const std::int32_t value = below ? classCount - distance(k, root) % classCount
                                         : FoldUpward(distance(root, k + 1), k - root, previous);
        visit(k, value, degreeOf(static_cast<std::int16_t>(value), !below));
        previous = value;
    }
}

void TChord::clearDegrees() {
    degreePresent = {};
    degreePresent[0] = true;
    degreePresent[7] = true;
}

// Each degree scores once, for the first tone that lands on it. A whole chord above the candidate is looked
// for beside that, tone by tone, the candidate itself taking its place in the row.
std::int32_t TChord::scoreAsRoot(std::int32_t candidate) {
    clearDegrees();
    std::uint32_t score = 0;
    std::uint16_t mask = 0;
    std::int32_t found = 0;
    const std::int32_t top = noteCount - 1;
    walkIntervals(candidate, [&](std::int32_t k, std::int32_t value, std::int16_t degree) {
        if (found == 0) {
            if (k == candidate && addChordTone(0, mask)) found = k;
            if (addChordTone(value, mask)) found = k;
            if (candidate == top && k == top - 1 && addChordTone(0, mask)) found = k;
        }
        if (value == 6 && candidate != 0) return;  // a tritone speaks for no root but the lowest
        bool& present = degreePresent[static_cast<std::size_t>(degree)];
        if (!present) score += weight[value];
        present = true;
    });
    return static_cast<std::int32_t>(score) + (found != 0 ? foundBonus : 0) +
           (noteCount - candidate) * noteCount;
}

std::int32_t TChord::findRoot() {
    std::array<bool, classCount> seen{};
    scores = {};
    std::int32_t root = 0, highest = 0;
    for (std::int32_t candidate = 0; candidate < noteCount; ++candidate) {
        const auto index = static_cast<std::size_t>(candidate);
        bool& classSeen = seen[tones[index].pitch % classCount];
        if (!classSeen) scores[index] = scoreAsRoot(candidate);
        classSeen = true;
        if (scores[index] <= highest) continue;
        highest = scores[index];
        root = candidate;
    }
    rootIsBass = root == 0;
    return root;
}

// True if a minor third is found while a major one is marked already.
bool TChord::markIntervals(std::int32_t root) {
    clearDegrees();
    semitonePresent = {};
    bool majorBelowMinor = false;
    walkIntervals(root, [&](std::int32_t, std::int32_t value, std::int16_t degree) {
        if (value == 3 && !semitonePresent[3] && semitonePresent[4]) majorBelowMinor = true;
        semitonePresent[static_cast<std::size_t>(value)] = true;
        degreePresent[static_cast<std::size_t>(degree)] = true;
    });
    return majorBelowMinor;
}
