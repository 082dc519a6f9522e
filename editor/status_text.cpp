#include "editor/status_text.h"

#include <cmath>
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

std::string Formatted(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string TwoDigits(float value) {
    return Formatted("%.2f", static_cast<double>(value));
}

}  // namespace

std::string TouchedText(std::int32_t index, float value) {
    if (index >= paramFirstBar && index <= paramLastBar)
        return "Bar " + NoteOfBar(index - paramFirstBar) + " " + TwoDigits(value);
    switch (index) {
        case paramPolyphony: return "Polyphony " + TwoDigits(value);  // its own text is a word
        case paramSensitivity:
        case paramVelocity: return ParameterName(index) + " " + ParameterDisplay(index, value);
        case paramChordsDelay: return Formatted("Delay %.3g s", static_cast<double>(DelayOf(value)) / 1000);
        default: return "";
    }
}

std::string TakeText(double seconds, std::uint32_t notes) {
    const auto whole = static_cast<long long>(seconds);
    char text[96];
    std::snprintf(text, sizeof text, "%lld:%02lld  %lu note%s", whole / 60, whole % 60,
                  static_cast<unsigned long>(notes), notes == 1 ? "" : "s");
    return text;
}

std::string KeyText(std::int32_t band) {
    return NoteOfBar(band) + "  note " + std::to_string(band + firstBarNote) +
           Formatted("  %.1f Hz", 440 * std::exp2((band - bandOf440) / 12.0));
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
