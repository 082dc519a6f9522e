#include <stdexcept>

#include "harmony/chord.h"

namespace {

constexpr std::size_t longestText = 192;  // bytes; twelve tones with every sentence take 160

std::size_t ClassOf(std::uint32_t pitch) {
    return pitch % classCount;
}

std::size_t ClassOf(std::int32_t pitch) {  // of negative ones too
    return static_cast<std::size_t>((pitch % classCount + classCount) % classCount);
}

const char* BassName(std::size_t pitchClass) {
    return PitchAccidentalPreference[pitchClass] == 1 ? PitchNamesSharp[pitchClass]
                                                      : PitchNamesFlat[pitchClass];
}

}  // namespace

// No display shows these two; chordText is what the user sees.
void TChord::writeTexts() {
    const auto mixedName = [this](std::int32_t tone) {
        return PitchNamesMixed[ClassOf(tones[static_cast<std::size_t>(tone)].pitch)];
    };
    shortText = mixedName(info.rootIndex);
    shortText += ChordSuffixes[info.type];

    longText.reserve(longestText);
    longText = " Vertical: ";
    for (const TChordTone& tone : tones) {
        if (&tone != tones.data()) longText += '-';
        longText += SolfegeNamesFlat[ClassOf(tone.pitch)];
    }
    longText += " Your accord is ";
    longText += shortText;

    const auto appendToBoth = [this](const char* text) {
        shortText += text;
        longText += text;
    };
    if (info.type == ctNone && !info.noThird) {
        const bool major = info.bothThirds ? info.majorBelowMinor : !semitonePresent[3];
        appendToBoth(major ? "*" : "m*");
    }
    if (info.type == ctNone && info.noThird) longText += '?';
    if (!rootIsBass) {
        appendToBoth("/");
        appendToBoth(mixedName(0));
    }
    if (info.hasForeignBass) {
        longText += "   Bass is the ";
        longText += BassDegreeNames[info.bassDegree];
        longText += " from the main Tone";
    }
}

TChordForm chordFormOf(TChord&& chord) {
    TChordForm form;
    form.unknown = true;
    if (!chord.valid) return form;
    const TChordInfo& info = chord.info;
    if (info.rootIndex < 0) throw std::out_of_range("invalid vector<T> subscript");

    if (info.type < chordTypeCount) {
        const TChordIntervals& intervals = ChordIntervals[info.type];
        form.third = intervals.third;
        form.fifth = intervals.fifth;
        form.seventh = intervals.seventh;
        form.ninth = intervals.ninth;
        form.unknown = intervals.third == 0;
    }
    const std::uint32_t root = chord.tones[static_cast<std::size_t>(info.rootIndex)].pitch;
    form.root = static_cast<std::int32_t>(ClassOf(root));
    if (!chord.rootIsBass) {
        const auto above = static_cast<std::int32_t>(root) - static_cast<std::int32_t>(chord.tones[0].pitch);
        form.bass = static_cast<std::int32_t>(ClassOf(above));
    }
    std::int32_t place = 0;
    for (const std::int32_t interval : {form.third, form.fifth, form.seventh, form.ninth, form.eleventh}) {
        if (interval == 0) break;
        if (form.bass == place) form.bassInChord = true;
        ++place;
    }
    return form;
}

// A part is left out where the bass already says it.
TChordName chordText(const TChordForm& form) {
    const auto sounds = [&form](std::int32_t part, std::int32_t interval) {
        return part == interval && interval != form.bass;
    };
    const bool dim = form.third == 3 && form.fifth == 6 && form.seventh == 9;
    const bool plainNinth = sounds(form.ninth, 14);
    const bool anyNinth = plainNinth || sounds(form.ninth, 13);

    TChordName name(PitchNamesMixed[ClassOf(form.root)]);
    if (form.third == 3) name.Append(dim ? "dim" : "m");
    if (anyNinth) name.Append(plainNinth ? "9" : "-9");
    if (sounds(form.seventh, 11)) name.Append("+7");
    if (sounds(form.seventh, 10) && !anyNinth) name.Append("7");
    if (sounds(form.third, 5)) name.Append("sus");
    if (sounds(form.fifth, 6) && !dim) name.Append("-5");
    if (sounds(form.fifth, 8)) name.Append("+5");
    if (sounds(form.seventh, 9) && !dim) name.Append(anyNinth ? ",6" : "6");
    if (sounds(form.eleventh, 18)) name.Append("+11");
    if (form.bass > 0) {
        name.Append("/");
        name.Append(BassName((ClassOf(form.root) + ClassOf(form.bass)) % classCount));
    }
    return name;
}
