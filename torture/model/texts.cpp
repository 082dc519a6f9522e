// How parameters are named and shown.
#include <cstdio>

#include "base/truncate.h"
#include "harmony/vocabulary.h"
#include "torture/model/plugin.h"

namespace {

template <typename... Values>
std::string Format(const char* format, Values... values) {
    char text[400];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

constexpr const char* pitchClasses[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "B", "H"};
constexpr const char* pages[] = {"Main frame", "Equa frame", "Options frame", "About frame"};
constexpr const char* deviceNames[] = {"one", "two", "three"};  // of the substitute layer

}  // namespace

std::string ModelPlugin::Name(std::int32_t index) const {
    if (index >= 3 && index <= 86)
        return Format("Equalizer bar %s %d", pitchClasses[(index - 3) % 12], (index + 21) / 12);
    switch (index) {
        case 0: return "Polyphony";
        case 1: return "Sensitivity";
        case 2: return "Velocity";
        case 87: return "MIDI Instrument";
        case 88: return "MIDI Out Device";
        case 89: return "MIDI Out Enabled";
        case 90: return "MIDI Channel";
        case 91: return "Output to Host Enabled";
        case 92: return "Active Page";
        case 93: return "Chords Enabled";
        case 94: return "Chords Delay";
        case 95: return "Send Program Change";
        default: return "No name";
    }
}

std::string ModelPlugin::Display(float value, std::int32_t index) const {
    const auto within = [](std::int32_t number, std::int32_t count) { return number >= 0 && number < count; };
    switch (index) {
        case 0: return value <= 1.0F / 3.0F ? "low" : value <= 2.0F / 3.0F ? "med" : "high";
        case 1: return Format("%d dB", TruncateToInt32(value * -40));
        case 2: return Format("%d", static_cast<signed char>(TruncateToInt32(value * 127)));
        case 87: {
            const std::int32_t program = TruncateToInt32(value * 127);
            return within(program, 128) ? InstrumentNames[program] : "";
        }
        case 88: {
            const std::int32_t id = TruncateToInt32(value * 100);
            return within(id, 3) ? Format("(%d)%s", id + 1, deviceNames[id]) : Format("(%d) N/A", id);
        }
        case 89:
        case 93:
        case 95: return value > 0.5F ? "true" : "false";
        case 90: return Format("%d", TruncateToInt32(value * 15.99 + 1));
        case 92: {
            const std::int32_t page = TruncateToInt32(value * 3.99);
            return within(page, 4) ? pages[page] : "";
        }
        case 94: return Format("%.3f s", static_cast<double>(value * 2000) * 0.001);
        default: return Format("%.2f", static_cast<double>(value));
    }
}
