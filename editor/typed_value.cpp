#include "editor/typed_value.h"

#include <algorithm>
#include <cstdio>
#include <locale>
#include <sstream>

#include "base/truncate.h"
#include "parameters/parameters.h"

namespace {

bool IsBar(std::int32_t index) {
    return index >= paramFirstBar && index <= paramLastBar;
}

// From what is typed to the value, by a number of units in the whole range.
struct Scale {
    double units;
    bool wholeNumbers;
};

Scale ScaleOf(std::int32_t index) {
    switch (index) {
        case paramSensitivity: return {-40, false};
        case paramVelocity:
        case paramInstrument: return {127, true};
        case paramChordsDelay: return {2, false};
        default: return {1, false};
    }
}

}  // namespace

bool TakesTyping(std::int32_t index) {
    return IsBar(index) || index == paramPolyphony || index == paramSensitivity || index == paramVelocity ||
           index == paramChordsDelay || index == paramInstrument;
}

std::string TypingText(std::int32_t index, float value) {
    const auto [units, wholeNumbers] = ScaleOf(index);
    if (wholeNumbers) return std::to_string(TruncateToInt32(value * static_cast<float>(units)));
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", units * static_cast<double>(value));
    return text;
}

std::string TypingRange(std::int32_t index) {
    if (IsBar(index)) return "Bar: 0 to 1";
    switch (index) {
        case paramPolyphony: return "Polyphony: 0 to 1";
        case paramSensitivity: return "Sensitivity: 0 to -40 dB";
        case paramVelocity: return "Velocity: 0 to 127";
        case paramChordsDelay: return "Delay: 0 to 2 s";
        case paramInstrument: return "Sound: 0 to 127";
        default: return "";
    }
}

bool ReadTyped(std::int32_t index, std::string text, float& value) {
    std::replace(text.begin(), text.end(), ',', '.');
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double typed = 0;
    if (!TakesTyping(index) || !(stream >> typed)) return false;
    const auto [units, wholeNumbers] = ScaleOf(index);
    if (index == paramSensitivity && typed > 0) typed = -typed;  // the minus is easily left out
    const double share = typed / units;
    if (!(share >= 0 && share <= 1)) return false;
    // The middle of what truncates to the number.
    value = wholeNumbers ? std::min(static_cast<float>((static_cast<int>(typed) + 0.5) / units), 1.0F)
                         : static_cast<float>(share);
    return true;
}
