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

// What the window calls it, and in which units: how many of them the whole range has.
struct Typed {
    const char* name;
    double units;
    const char* unit;
    bool wholeNumbers;
};

Typed TypedOf(std::int32_t index) {
    switch (index) {
        case paramPolyphony: return {"Polyphony", 1, "", false};
        case paramSensitivity: return {"Sensitivity", static_cast<double>(DecibelsOf(1)), " dB", false};
        case paramVelocity: return {"Velocity", static_cast<double>(VelocityOf(1)), "", true};
        case paramInstrument: return {"Sound", static_cast<double>(ProgramOf(1)), "", true};
        case paramChordsDelay: return {"Delay", static_cast<double>(DelayOf(1)) / 1000, " s", false};
        default: return {IsBar(index) ? "Bar" : nullptr, 1, "", false};
    }
}

}  // namespace

bool TakesTyping(std::int32_t index) {
    return TypedOf(index).name != nullptr;
}

std::string TypingText(std::int32_t index, float value) {
    const Typed typed = TypedOf(index);
    if (typed.wholeNumbers) return std::to_string(TruncateToInt32(value * static_cast<float>(typed.units)));
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", typed.units * static_cast<double>(value));
    return text;
}

std::string RangeText(std::int32_t index) {
    return "0 to " + TypingText(index, 1) + TypedOf(index).unit;
}

std::string TypingRange(std::int32_t index) {
    return std::string(TypedOf(index).name) + ": " + RangeText(index);
}

bool ReadTyped(std::int32_t index, std::string text, float& value) {
    std::replace(text.begin(), text.end(), ',', '.');
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double number = 0;
    if (!TakesTyping(index) || !(stream >> number)) return false;
    const Typed typed = TypedOf(index);
    if (typed.units < 0 && number > 0) number = -number;  // the minus is easily left out
    const double share = number / typed.units;
    if (!(share >= 0 && share <= 1)) return false;
    // The middle of what truncates to the number.
    value = typed.wholeNumbers
                ? std::min(static_cast<float>((static_cast<int>(number) + 0.5) / typed.units), 1.0F)
                : static_cast<float>(share);
    return true;
}
