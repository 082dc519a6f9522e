#include <cstdlib>

#include "harmony/vocabulary.h"

namespace {

constexpr std::int32_t widestAlteration = 2;  // semitones: the double accidentals

constexpr std::int32_t Modulo(std::int32_t value, std::int32_t modulus) {  // 0 to modulus - 1
    return (value % modulus + modulus) % modulus;
}

constexpr std::int16_t Short(std::int32_t value) {
    return static_cast<std::int16_t>(value);
}

std::int32_t Scale(std::int32_t step) {
    return ScaleSemitones[Modulo(step, stepCount)];
}

// Semitones from a step to the next one; from the last to the first it is a semitone.
std::int32_t ToNextStep(std::int32_t step) {
    return step == stepCount - 1 ? 1 : Scale(step + 1) - Scale(step);
}

// The same pitch on another step: what the step gains, the alteration loses.
TSpelledPitch Respell(std::int32_t step, std::int32_t alteration) {
    while (alteration > widestAlteration) {
        alteration -= ToNextStep(step);
        step = Modulo(step + 1, stepCount);
    }
    while (alteration < -widestAlteration) {
        step = Modulo(step - 1, stepCount);
        alteration += ToNextStep(step);
    }
    return {Short(step), Short(alteration)};
}

bool HasPerfectForm(std::int32_t degree) {
    return degree == 0 || degree == 3 || degree == 4 || degree == 7;
}

}  // namespace

std::int16_t pitchClassOf(std::int16_t pitch) {
    return Short(pitch % classCount);
}

std::int16_t octaveOf(std::int16_t pitch) {
    return Short(pitch / classCount);
}

std::int16_t degreeOf(std::int16_t semitones, bool ascending) {
    switch (semitones % classCount) {
        case 1:
        case 2: return ascending && semitones >= 3 ? 8 : 1;
        case 3:
        case 4: return 2;
        case 5:
        case 6: return 3;
        case 7: return 4;
        case 8:
        case 9: return 5;
        case 10:
        case 11: return 6;
        default: return 0;
    }
}

std::int16_t addClass(std::int16_t a, std::int16_t b) {
    return Short((a + b + classCount) % classCount);
}

std::uint16_t classAbove(std::int16_t a, std::int16_t b, std::int16_t direction) {
    return static_cast<std::uint16_t>((b - a * direction + classCount) % classCount);
}

std::int16_t addStep(std::int16_t step, std::int16_t delta) {
    return Short((step + delta + stepCount) % stepCount);
}

// A quality is brought to a scale on which 3 leaves the degree as it stands in the major scale.
TInterval makeInterval(std::int16_t degree, std::int16_t quality) {
    constexpr std::int32_t perfect = 3;  // its index into IntervalQualities; minor stands below, major above
    const std::int32_t known = degree & 7;
    std::int32_t level = quality;
    if (HasPerfectForm(known)) {
        if (level != perfect) level += level > perfect ? -1 : 1;
    } else if (level > perfect) {
        --level;
    }
    return {Short(known), Short(ScaleSemitones[known] + level - perfect)};
}

TSpelledPitch addToPitch(TSpelledPitch pitch, TInterval interval, std::int16_t direction) {
    if (direction == 0) return pitch;
    const std::int32_t sign = direction > 0 ? 1 : -1;
    const std::int32_t step = Modulo(interval.degree * sign + pitch.step, stepCount);
    std::int32_t natural = std::abs(Scale(step) - Scale(pitch.step));
    const bool wrapped = sign > 0 ? step < pitch.step : step > pitch.step;
    if (wrapped) natural = classCount - natural;
    return Respell(step, (interval.semitones - natural) * sign + pitch.alteration);
}

std::int16_t RingIndex(TSpelledPitch pitch) {
    constexpr std::int32_t size = static_cast<std::int32_t>(ringSize);
    return Short(Modulo(5 * pitch.step + pitch.alteration, size));
}
