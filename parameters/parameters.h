#pragma once
#include <cstdint>
#include <string>
#include <vector>

// The 96 parameters, one row each in parameters.cpp. The plug-in object, its window, the LV2 description and
// the command line all read them here; what a value does to the sound is the plug-in object's. Hosts store
// values by number, name and symbol, so none of these ever changes.
//
// Threads: [any], but texts allocate and are not for [audio]; pure functions, but for the names of devices.

constexpr std::int32_t bandCount = 84;     // the notes C1 to B7, with an equalizer bar each
constexpr std::int32_t firstBarNote = 24;  // MIDI
constexpr std::int32_t bandOf440 = 45;     // Hz
constexpr std::int32_t channelCount = 16;
constexpr std::int32_t programCount = 128;

enum Parameter : std::int32_t {
    paramPolyphony = 0,
    paramSensitivity = 1,
    paramVelocity = 2,
    paramFirstBar = 3,
    paramLastBar = paramFirstBar + bandCount - 1,
    paramInstrument = 87,
    paramDevice = 88,
    paramDeviceEnabled = 89,
    paramChannel = 90,
    paramOutputToHost = 91,
    paramActivePage = 92,
    paramChordsEnabled = 93,
    paramChordsDelay = 94,
    paramSendProgramChange = 95,
    parameterCount = 96,
    // Not of the host, but on the same path between the plug-in object and its window.
    codeRecording = 97,
    codeChordText = 98,
    codeEnd = 99,
};

enum class ParameterKind {
    slider,
    bar,
    toggle,
    choice,  // of its points alone
    page,    // of its points, but begins at none of them
};

// A value with a name.
struct ParameterPoint {
    float value;
    std::string label;
};

struct ParameterRow {
    std::int32_t index;
    ParameterKind kind;
    float initial;
    const char* symbol;  // for hosts that store by it; a bar's number follows
    const char* name;    // a bar's note follows
    const char* label;   // where hosts look for a unit; null: the name
    std::string (*display)(float value);
    bool (*read)(const char* text, float& value);  // what a user typed; null where typing is not possible
    std::vector<ParameterPoint> (*points)();       // null where no value has a name
};

struct ParameterSetting {
    std::int32_t index = 0;
    float value = 0;  // finite; 0 to 1 as a rule
};

// The row of parameter 0 to 95, the same one for all bars; null outside.
const ParameterRow* FindParameter(std::int32_t index);

std::string ParameterName(std::int32_t index);  // "No name" outside 0 to 95; at most 22 characters
std::string ParameterLabel(std::int32_t index);
std::string ParameterSymbol(std::int32_t index);
std::string ParameterDisplay(std::int32_t index, float value);
// False, with the value as it was, where the text is none for this parameter.
bool ReadParameter(std::int32_t index, const char* text, float& value);
float ParameterInitialValue(std::int32_t index);  // 0 outside 0 to 95
float ParameterMaximum(std::int32_t index);
constexpr bool IsAutomatable(std::int32_t index) {
    return index < paramInstrument;
}

// --- what a value stands for ---

// A switch counts as on above a half, strictly.
constexpr bool IsOn(float value) {
    return value > 0.5F;
}
float DecibelsOf(float value);        // parameter 1: 0 to -40
std::int8_t VelocityOf(float value);  // parameter 2: 0 to 127
std::int32_t ProgramOf(float value);  // parameter 87: 0 to 127 for values up to 1
std::uint32_t DeviceOf(float value);  // parameter 88: from 0
std::int32_t ChannelOf(float value);  // parameter 90: from 0; 16 or more for values above 1
std::int32_t PageOf(float value);  // parameter 92: from 0; below for values that the window has not written
float DelayOf(float value);        // parameter 94: of the chord display, in ms

// Where a menu of all devices, or channels, stands at a value, and the values that its entries and pages
// have.
float DevicePosition(float value);
float ChannelPosition(float value);
float DeviceValue(float position);
float ChannelValue(float position);
float PageValue(std::int32_t page);
