#include "tests/harmony/plain_chords.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

using Tones = std::vector<int>;
using Set = std::set<int>;

// ---- what is read of a set of tones, seen from one of them ----

bool AllAreClasses(const Tones& tones) {
    return std::all_of(tones.begin(), tones.end(), [](int tone) { return tone < 12; });
}

int Distance(const Tones& tones, int lower, int upper) {
    const int difference = tones[size_t(upper)] - tones[size_t(lower)];
    return AllAreClasses(tones) ? (difference + 12) % 12 : difference;
}

int Degree(int semitones, bool ascending) {
    const std::vector<int> degrees{0, 1, 1, 2, 2, 3, 3, 4, 5, 5, 6, 6};
    const int degree = degrees[size_t(semitones % 12)];
    return degree == 1 && ascending && semitones >= 3 ? 8 : degree;
}

struct Reading {
    int value, degree;
};

std::vector<Reading> ReadFrom(const Tones& tones, int root) {
    std::vector<Reading> readings;
    for (int k = 0; k <= int(tones.size()) - 2; ++k) {
        if (k < root) {
            const int value = 12 - Distance(tones, k, root) % 12;
            readings.push_back({value, Degree(value, false)});
            continue;
        }
        const int d = Distance(tones, root, k + 1);
        int value = d < 15 ? d : d % 12;
        if (d >= 12 && d % 12 == 1)
            value = 13;
        else if (d >= 12 && d % 12 == 2)
            value = 14;
        else if ((value == 1 || value == 2) && k - root >= 1 && readings.back().value >= 1)
            value += 12;
        readings.push_back({value, Degree(value, true)});
    }
    return readings;
}

// ---- the root ----

// Adds one chord tone to those collected so far; true if they now hold a chord.
bool Collect(Set& collected, int value) {
    static const Set known{0, 3, 4, 7, 8, 9, 10, 11};
    static const Set upper{8, 9, 10, 11};
    bool clashes = known.count(value) == 0;
    if (value == 3) clashes = collected.count(4) > 0;
    if (value == 4) clashes = collected.count(3) > 0;
    if (upper.count(value) > 0)
        for (const int other : upper) clashes = clashes || (other != value && collected.count(other) > 0);
    if (clashes) {
        collected.clear();
        return false;
    }
    collected.insert(value);
    static const std::vector<Set> chords{{0, 3, 7}, {0, 4, 7}, {0, 4, 11}, {0, 3, 10}, {0, 4, 10}};
    return std::any_of(chords.begin(), chords.end(), [&](const Set& chord) {
        return std::includes(collected.begin(), collected.end(), chord.begin(), chord.end());
    });
}

std::vector<int> Scores(const Tones& tones) {
    static const std::map<int, int> weight{{0, 0},   {1, 0},   {2, 0},  {3, 25}, {4, 30},
                                           {5, 0},   {6, 10},  {7, 33}, {8, 0},  {9, 0},
                                           {10, 12}, {11, 10}, {12, 0}, {13, 7}, {14, 7}};
    const int count = int(tones.size());
    std::vector<int> scores(size_t(count), 0);
    Set tried;
    for (int r = 0; r < count; ++r) {
        if (!tried.insert(tones[size_t(r)] % 12).second) continue;
        int& score = scores[size_t(r)];
        Set degrees{0, 7}, collected;
        int found = 0, k = 0;
        for (const Reading& reading : ReadFrom(tones, r)) {
            if (found == 0) {
                if (k == r && Collect(collected, 0)) found = k;
                if (Collect(collected, reading.value)) found = k;
                if (r == count - 1 && k == count - 2 && Collect(collected, 0)) found = k;
            }
            const bool mute = reading.value == 6 && r != 0;
            if (!mute && degrees.insert(reading.degree).second) score += weight.at(reading.value);
            ++k;
        }
        score += (found != 0 ? 10 : 0) + (count - r) * count;
    }
    return scores;
}

// ---- the kinds of chord, by number of pitch classes ----

struct Present {
    Set semitones, degrees;
    bool rootIsBass = false;
    bool S(int semitone) const { return semitones.count(semitone) > 0; }
    bool D(int degree) const { return degrees.count(degree) > 0; }
};

void ClassifyTwo(const Present& has, PlainChord& chord) {
    chord.twoClasses = true;
    if (has.D(2) && has.rootIsBass) {
        chord.isTriad = chord.knownChord = true;
        chord.majorThird = has.S(4);
        chord.type = has.S(4) ? 2 : 3;
    }
    if (!has.rootIsBass && has.S(7)) chord.type = 27;
}

void ClassifyThree(const Present& has, PlainChord& chord) {
    const bool triad = (has.D(2) && has.D(4)) || (has.S(3) && has.S(6)) || (has.S(4) && has.S(8));
    if (triad) {
        chord.isTriad = chord.knownChord = true;
        if (has.S(8)) {
            chord.type = 4;
        } else if (has.S(6)) {
            chord.type = 5;
        } else {
            chord.plainFifth = true;
            chord.majorThird = has.S(4);
            chord.type = has.S(4) ? 2 : 3;
        }
        return;
    }
    if (has.D(2) && has.D(6)) {
        chord.chordIsPartial = chord.isSeventh = chord.knownChord = true;
        chord.majorSeventh = has.S(11);
        chord.majorThird = has.S(4);
        if (has.S(11))
            chord.type = has.S(4) ? 7 : 9;
        else
            chord.type = has.S(4) ? 8 : 10;
        return;
    }
    if (has.S(5) && has.D(4)) chord.type = 23;
}

int Lookup(const std::map<int, int>& table, int key) {
    const auto found = table.find(key);
    return found == table.end() ? 0 : found->second;
}

void ClassifyFour(const Present& has, PlainChord& chord) {
    PlainChord copy = chord;
    ClassifyThree(has, copy);
    const int t = copy.type;
    if (has.D(6) && copy.isTriad) {
        chord.isSeventh = chord.knownChord = true;
        if (has.S(11)) {
            chord.majorSeventh = true;
            chord.type = Lookup({{2, 7}, {3, 9}, {4, 11}}, t);
        } else {
            chord.type = Lookup({{2, 8}, {3, 10}, {5, 12}, {4, 25}}, t);
        }
    } else if (has.S(10) && t == 23) {
        chord.isSeventh = true;
        chord.type = 24;
    } else if (has.S(9) && t == 5) {
        chord.isSeventh = chord.diminishedSeventh = chord.knownChord = true;
        chord.type = 13;
    } else if (has.S(9) && copy.isTriad) {
        chord.knownChord = chord.isSeventh = true;
        chord.type = has.S(4) ? 28 : 29;
    } else if (has.rootIsBass && has.D(8) && copy.isSeventh && t != 9) {
        if (has.S(13) && (!copy.majorThird || copy.majorSeventh)) return;
        chord.chordIsPartial = chord.isNinth = chord.knownChord = true;
        chord.majorThird = copy.majorThird;
        chord.majorSeventh = copy.majorSeventh;
        if (has.S(14)) {
            chord.plainNinth = true;
            chord.type = Lookup({{7, 15}, {8, 16}, {10, 18}}, t);
        } else {
            chord.type = Lookup({{8, 20}}, t);
        }
    }
}

void ClassifyFive(const Present& has, PlainChord& chord) {
    if (!(has.D(2) && has.D(4) && has.D(6) && has.D(8) && has.rootIsBass)) return;
    PlainChord copy = chord;
    ClassifyFour(has, copy);
    chord.isNinth = chord.knownChord = true;
    if (has.S(14)) {
        chord.plainNinth = true;
        chord.type = Lookup({{7, 15}, {8, 16}, {10, 18}}, copy.type);
    } else {
        chord.type = Lookup({{8, 20}, {10, 22}}, copy.type);
    }
}

// ---- texts ----

const std::vector<std::string> mixed{"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"};

void WriteTexts(const Tones& tones, const Present& has, PlainChord& chord) {
    static const std::vector<std::string> solfege{"do",    "re_b", "re",   "mi_b", "mi",   "fa",
                                                  "sol_b", "sol",  "la_b", "la",   "si_b", "si"};
    static const std::map<int, std::string> suffixes{
        {0, ""},       {2, ""},      {3, "m"},   {4, "aug"},   {5, "dim"},  {7, "maj7"},
        {8, "7"},      {9, "m+7"},   {10, "m7"}, {11, "+7+5"}, {12, "7-5"}, {13, "dim7"},
        {15, "9maj7"}, {16, "9"},    {18, "m9"}, {20, "-9"},   {22, "m-9"}, {23, "sus"},
        {24, "7sus"},  {25, "A7+5"}, {27, "5"},  {28, "6"},    {29, "m6"}};
    static const std::vector<std::string> degrees{"unison", "second",  "third",  "forth", "fifth",
                                                  "sixth",  "seventh", "octave", "ninth"};
    chord.shortText = mixed[size_t(tones[size_t(chord.rootIndex)] % 12)] + suffixes.at(chord.type);
    std::string list;
    for (const int tone : tones) list += (list.empty() ? "" : "-") + solfege[size_t(tone % 12)];
    chord.longText = " Vertical: " + list + " Your accord is " + chord.shortText;
    std::string tail;
    if (chord.type == 0 && !chord.noThird) {
        const bool major = chord.bothThirds ? chord.majorBelowMinor : !has.S(3);
        tail = major ? "*" : "m*";
    }
    chord.shortText += tail;
    chord.longText += chord.type == 0 && chord.noThird ? "?" : tail;
    if (!has.rootIsBass) {
        const std::string bass = "/" + mixed[size_t(tones[0] % 12)];
        chord.shortText += bass;
        chord.longText += bass;
    }
    if (chord.hasForeignBass)
        chord.longText += "   Bass is the " + degrees[size_t(chord.bassDegree)] + " from the main Tone";
}

std::string DisplayedName(int root, int lowest, bool rootIsBass, int type) {
    // third, fifth, seventh, ninth
    static const std::map<int, std::vector<int>> lists{
        {2, {4, 7, 0, 0}},    {3, {3, 7, 0, 0}},    {4, {4, 8, 0, 0}},    {5, {3, 6, 0, 0}},
        {7, {4, 7, 11, 0}},   {8, {4, 7, 10, 0}},   {9, {3, 7, 11, 0}},   {10, {3, 7, 10, 0}},
        {11, {4, 8, 11, 0}},  {12, {3, 6, 10, 0}},  {13, {3, 6, 9, 0}},   {15, {4, 7, 11, 14}},
        {16, {4, 7, 10, 14}}, {18, {3, 7, 10, 14}}, {20, {4, 7, 10, 13}}, {22, {4, 11, 20, 13}},
        {23, {5, 7, 0, 0}},   {24, {5, 7, 10, 0}},  {25, {4, 11, 20, 0}}, {28, {4, 7, 9, 0}},
        {29, {3, 7, 9, 0}}};
    const auto known = lists.find(type);
    const std::vector<int> list = known == lists.end() ? std::vector<int>(4, 0) : known->second;
    const int bass = rootIsBass ? 0 : ((root - lowest) % 12 + 12) % 12;
    const auto sounds = [&](int part, int interval) {
        return list[size_t(part)] == interval && bass != interval;
    };
    std::string name = mixed[size_t(root % 12)];
    const bool dim = list[0] == 3 && list[1] == 6 && list[2] == 9;
    if (list[0] == 3) name += dim ? "dim" : "m";
    const bool ninth = sounds(3, 14) || sounds(3, 13);
    if (ninth) name += list[3] == 14 ? "9" : "-9";
    if (sounds(2, 11)) name += "+7";
    if (sounds(2, 10) && !ninth) name += "7";
    if (sounds(0, 5)) name += "sus";
    if (sounds(1, 6) && !dim) name += "-5";
    if (sounds(1, 8)) name += "+5";
    if (sounds(2, 9) && !dim) name += ninth ? ",6" : "6";
    // Sharps and flats chosen by each class's preference come out as the mixed spelling.
    if (bass > 0) name += "/" + mixed[size_t((root + bass) % 12)];
    return name;
}

}  // namespace

PlainChord NamePlainly(std::vector<int> pitches, bool mayRetry) {
    pitches.erase(std::unique(pitches.begin(), pitches.end()), pitches.end());
    PlainChord chord;
    Tones& tones = chord.tones = std::move(pitches);
    if (tones.empty()) return chord;
    if (!AllAreClasses(tones)) std::stable_sort(tones.begin(), tones.end());
    Set classes;
    for (const int tone : tones) classes.insert(tone % 12);
    if (tones.size() > 12 || classes.size() == 12) return chord;

    Present has;
    chord.scores = Scores(tones);
    const auto best = std::max_element(chord.scores.begin(), chord.scores.end());  // the first of the highest
    chord.rootIndex = *best > 0 ? int(best - chord.scores.begin()) : 0;
    const int root = chord.rootIndex, top = int(tones.size()) - 1;
    has.rootIsBass = root == 0;
    has.degrees = {0, 7};
    for (const Reading& reading : ReadFrom(tones, root)) {
        if (reading.value == 3 && !has.S(3) && has.S(4)) chord.majorBelowMinor = true;
        has.semitones.insert(reading.value);
        has.degrees.insert(reading.degree);
    }
    chord.noThird = !has.D(2);
    chord.bothThirds = has.S(3) && has.S(4);

    if (classes.size() == 2) ClassifyTwo(has, chord);
    if (classes.size() == 3) ClassifyThree(has, chord);
    if (classes.size() == 4) ClassifyFour(has, chord);
    if (classes.size() == 5) ClassifyFive(has, chord);

    if ((chord.isTriad || chord.isSeventh) && root != 0) {
        chord.hasForeignBass = true;
        chord.bassDegree = Degree(12 - Distance(tones, 0, root) % 12, false);
    }
    const auto retry = [&](int first, int last) {
        const int type = NamePlainly(Tones(tones.begin() + first, tones.begin() + last), false).type;
        if (type == 0) return;
        chord.type = type;
        chord.fromReducedSet[0] = chord.fromReducedSet[1] = true;
    };
    if (mayRetry && chord.type == 0 && classes.size() >= 4 && root != 0) retry(1, top + 1);
    const int g = root < top ? Degree(Distance(tones, root, top), false) : 0;
    if (mayRetry && chord.type == 0 && top >= 2 && g != 4 && (g != 2 || chord.bothThirds)) retry(0, top);

    chord.ok = true;
    WriteTexts(tones, has, chord);
    chord.name = DisplayedName(tones[size_t(root)], tones[0], has.rootIsBass, chord.type);
    return chord;
}
