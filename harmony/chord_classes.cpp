#include "harmony/chord.h"

// The type of a chord, by the number of its pitch classes. Semitones and degrees are those above the root.

void TChord::classify(TChordInfo& result) const {
    switch (pitchClassCount) {
        case 2: classifyTwo(result); break;
        case 3: classifyThree(result); break;
        case 4: classifyFour(result); break;
        case 5: classifyFive(result); break;
        default: break;
    }
}

void TChord::classifyTwo(TChordInfo& result) const {
    result.twoClasses = true;
    if (degreePresent[2] && rootIsBass) {
        result.isTriad = true;
        result.knownChord = true;
        result.majorThird = semitonePresent[4];
        result.type = result.majorThird ? ctMajor : ctMinor;
    }
    if (!rootIsBass && semitonePresent[7]) result.type = ctFifth;
}

void TChord::classifyThree(TChordInfo& result) const {
    const bool majorThird = semitonePresent[4];
    const bool diminishedFifth = semitonePresent[6];
    const bool minorSixth = semitonePresent[8];
    const bool majorSeventh = semitonePresent[11];

    if ((degreePresent[2] && degreePresent[4]) || (semitonePresent[3] && diminishedFifth) ||
        (majorThird && minorSixth)) {
        result.isTriad = true;
        result.knownChord = true;
        if (minorSixth) {
            result.type = ctAugmented;
        } else if (diminishedFifth) {
            result.type = ctDiminished;
        } else {
            result.plainFifth = true;
            result.majorThird = majorThird;
            result.type = majorThird ? ctMajor : ctMinor;
        }
    } else if (degreePresent[2] && degreePresent[6]) {
        result.chordIsPartial = true;
        result.isSeventh = true;
        result.knownChord = true;
        result.majorSeventh = majorSeventh;
        result.majorThird = majorThird;
        if (majorSeventh)
            result.type = majorThird ? ctMajorSeventh : ctMinorMajorSeventh;
        else
            result.type = majorThird ? ctSeventh : ctMinorSeventh;
    } else if (semitonePresent[5] && degreePresent[4]) {
        result.type = ctSuspended;
    }
}

namespace {

TChordType SeventhOn(TChordType triad, bool majorSeventh) {
    switch (triad) {
        case ctMajor: return majorSeventh ? ctMajorSeventh : ctSeventh;
        case ctMinor: return majorSeventh ? ctMinorMajorSeventh : ctMinorSeventh;
        case ctAugmented: return majorSeventh ? ctAugmentedMajorSeventh : ctAugmentedSeventh;
        case ctDiminished: return majorSeventh ? ctNone : ctHalfDiminished;
        default: return ctNone;
    }
}

TChordType NinthOn(TChordType seventh) {
    switch (seventh) {
        case ctMajorSeventh: return ctMajorNinth;
        case ctSeventh: return ctNinth;
        case ctMinorSeventh: return ctMinorNinth;
        default: return ctNone;
    }
}

}  // namespace

// A triad with a fourth tone, a suspended or a diminished one, or a partial seventh with a ninth.
void TChord::classifyFour(TChordInfo& result) const {
    TChordInfo base = result;
    classifyThree(base);

    if (degreePresent[6] && base.isTriad) {
        result.isSeventh = true;
        result.knownChord = true;
        result.majorSeventh = semitonePresent[11];
        result.type = SeventhOn(base.type, result.majorSeventh);
    } else if (semitonePresent[10] && base.type == ctSuspended) {
        result.isSeventh = true;
        result.type = ctSeventhSuspended;
    } else if (semitonePresent[9] && base.type == ctDiminished) {
        result.isSeventh = true;
        result.diminishedSeventh = true;
        result.knownChord = true;
        result.type = ctDiminishedSeventh;
    } else if (semitonePresent[9] && base.isTriad) {
        result.knownChord = true;
        result.isSeventh = true;
        result.type = semitonePresent[4] ? ctSixth : ctMinorSixth;
    } else if (rootIsBass && degreePresent[8] && base.isSeventh && base.type != ctMinorMajorSeventh) {
        const bool fitsFlatNinth = base.majorThird && !base.majorSeventh;
        if (semitonePresent[13] && !fitsFlatNinth) return;
        result.chordIsPartial = true;
        result.isNinth = true;
        result.knownChord = true;
        result.majorThird = base.majorThird;
        result.majorSeventh = base.majorSeventh;
        result.plainNinth = semitonePresent[14];
        if (result.plainNinth)
            result.type = NinthOn(base.type);
        else if (base.type == ctSeventh)
            result.type = ctFlatNinth;
    }
}

// A whole ninth chord: the four classes below the ninth decide which.
void TChord::classifyFive(TChordInfo& result) const {
    if (!degreePresent[2] || !degreePresent[4] || !degreePresent[6] || !degreePresent[8] || !rootIsBass)
        return;
    TChordInfo base = result;
    classifyFour(base);

    result.isNinth = true;
    result.knownChord = true;
    result.plainNinth = semitonePresent[14];
    if (result.plainNinth)
        result.type = NinthOn(base.type);
    else if (base.type == ctSeventh)
        result.type = ctFlatNinth;
    else if (base.type == ctMinorSeventh)
        result.type = ctMinorFlatNinth;
}
