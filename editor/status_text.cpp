#include "editor/status_text.h"

#include <cstdio>

#include "editor/level_column.h"
#include "parameters/parameters.h"

namespace {

constexpr int mostNotes = 6;  // as many as fit

// As the equalizer page names them, from C1 on the left.
std::string NoteOfBar(std::int32_t bar) {
    constexpr const char* names[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
    return names[bar % 12] + std::to_string(bar / 12 + 1);
}

std::string TwoDigits(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", static_cast<double>(value));
    return text;
}

}  // namespace

std::string TouchedText(std::int32_t index, float value) {
    if (index >= paramFirstBar && index <= paramLastBar)
        return "Bar " + NoteOfBar(index - paramFirstBar) + " " + TwoDigits(value);
    switch (index) {
        case paramPolyphony: return "Polyphony " + TwoDigits(value);  // its own text is a word
        case paramSensitivity:
        case paramVelocity: return ParameterName(index) + " " + ParameterDisplay(index, value);
        case paramChordsDelay: return "Delay " + ParameterDisplay(index, value);
        default: return "";
    }
}

std::string SoundingText(std::span<const unsigned char> levels) {
    std::string text;
    int count = 0;
    for (std::size_t band = 0; band < levels.size() && band < bandCount; ++band) {
        if (levels[band] != soundingEntry) continue;
        if (++count > mostNotes) return text + " ...";
        text += (text.empty() ? "" : " ") + NoteOfBar(static_cast<std::int32_t>(band));
    }
    return text;
}
