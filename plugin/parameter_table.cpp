#include "plugin/parameter_table.h"

#include <iterator>

namespace {

// German usage, as the names of the bars have always read: H is B natural.
const char* const barNames[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "B", "H"};

struct Row {
    std::int32_t index;
    float initial;
    const char* name;
};

// clang-format off
const Row rows[] = {
    {paramPolyphony,         0.87F,  "Polyphony"},
    {paramSensitivity,       0.875F, "Sensitivity"},
    {paramVelocity,          0.79F,  "Velocity"},
    {paramInstrument,        0.0F,   "MIDI Instrument"},
    {paramDevice,            0.0F,   "MIDI Out Device"},
    {paramDeviceEnabled,     0.0F,   "MIDI Out Enabled"},
    {paramChannel,           0.0F,   "MIDI Channel"},
    {paramOutputToHost,      1.0F,   "Output to Host Enabled"},
    {paramActivePage,        0.0F,   "Active Page"},
    {paramChordsEnabled,     0.0F,   "Chords Enabled"},
    {paramChordsDelay,       0.0F,   "Chords Delay"},
    {paramSendProgramChange, 0.0F,   "Send Program Change"},
};
// clang-format on

const Row* FindRow(std::int32_t index) {
    for (const Row& row : rows)
        if (row.index == index) return &row;
    return nullptr;
}

bool IsBar(std::int32_t index) {
    return index >= paramFirstBar && index <= paramLastBar;
}

}  // namespace

std::string ParameterName(std::int32_t index) {
    // The octave is one above that of the band's note, and stays so for the sake of saved automation.
    if (IsBar(index))
        return std::string("Equalizer bar ") + barNames[(index - paramFirstBar) % 12] + " " +
               std::to_string((index + 21) / 12);
    const Row* const row = FindRow(index);
    return row != nullptr ? row->name : "No name";
}

std::string ParameterLabel(std::int32_t index) {
    return index == paramVelocity ? "MIDI Velocity" : ParameterName(index);
}

float ParameterInitialValue(std::int32_t index) {
    if (IsBar(index)) return 1.0F;
    const Row* const row = FindRow(index);
    return row != nullptr ? row->initial : 0.0F;
}
