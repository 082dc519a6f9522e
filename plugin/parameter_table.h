#pragma once
#include <array>
#include <cstdint>
#include <string>

// The 96 parameters as hosts see them: names and initial values. What a value does is the plug-in object's.
//
// Threads: [any], never [audio]; pure functions.

constexpr std::int32_t parameterCount = 96;

enum Parameter : std::int32_t {
    paramPolyphony = 0,
    paramSensitivity = 1,
    paramVelocity = 2,
    paramFirstBar = 3,  // one equalizer bar a band
    paramLastBar = 86,
    paramInstrument = 87,
    paramDevice = 88,
    paramDeviceEnabled = 89,
    paramChannel = 90,
    paramOutputToHost = 91,
    paramActivePage = 92,
    paramChordsEnabled = 93,
    paramChordsDelay = 94,
    paramSendProgramChange = 95,
};

// At most 23 bytes with the terminator. "No name" outside 0 to 95.
std::string ParameterName(std::int32_t index);
// The same as the name, but for parameter 2.
std::string ParameterLabel(std::int32_t index);
float ParameterInitialValue(std::int32_t index);  // 0 outside 0 to 95

// A switch counts as on above a half, strictly.
constexpr bool IsOn(float value) {
    return value > 0.5F;
}
