#include "plugin/parameter_display.h"

#include <cstdio>
#include <string>

#include "base/text.h"
#include "base/truncate.h"
#include "devices/midi_device_list.h"
#include "harmony/vocabulary.h"
#include "plugin/device_switch.h"
#include "plugin/parameter_table.h"
#include "vst2/audio_effect.h"

namespace {

constexpr std::size_t room = AudioEffect::textRoom;
constexpr double channelScale = 15.99;  // so that 1 is the last channel; in double precision
constexpr double pageScale = 3.99;

const char* const pageNames[] = {"Main frame", "Equa frame", "Options frame", "About frame"};

const char* TrueOrFalse(float value) {
    return IsOn(value) ? "true" : "false";
}

// A device counts from 1 where there is one, its number from 0 where there is none.
std::string DeviceText(float value) {
    const std::uint32_t index = DeviceSwitch::DeviceIndex(value);
    if (index < MidiOutDeviceCount()) return "(" + std::to_string(index + 1) + ")" + MidiOutDeviceName(index);
    return "(" + std::to_string(static_cast<std::int32_t>(index)) + ") N/A";
}

// The editor keeps values from 2 upward in this parameter, which have no text here.
const char* PageText(float value) {
    const std::int32_t page = TruncateToInt32(static_cast<double>(value) * pageScale);
    return page >= 0 && page < 4 ? pageNames[page] : "";
}

const char* InstrumentText(float value) {
    const std::int32_t program = ProgramOf(value);
    return program >= 0 && program < 128 ? InstrumentNames[program] : "";
}

}  // namespace

std::int32_t ProgramOf(float value) {
    return TruncateToInt32(value * 127.0F);
}
std::int32_t ChannelOf(float value) {
    return TruncateToInt32(static_cast<double>(value) * channelScale);
}
float DelayOf(float value) {
    return value * 2000.0F;
}

void ParameterDisplay(float value, std::int32_t index, char* text) {
    switch (index) {
        case paramInstrument: CopyText(text, room, InstrumentText(value)); break;
        case paramDevice: CopyText(text, room, DeviceText(value)); break;
        case paramDeviceEnabled:
        case paramChordsEnabled:
        case paramSendProgramChange: CopyText(text, room, TrueOrFalse(value)); break;
        case paramChannel:
            std::snprintf(text, room, "%d", TruncateToInt32(static_cast<double>(value) * channelScale + 1.0));
            break;
        case paramActivePage: CopyText(text, room, PageText(value)); break;
        case paramChordsDelay:
            std::snprintf(text, room, "%.3f s", static_cast<double>(DelayOf(value)) * 0.001);
            break;
        default: std::snprintf(text, room, "%.2f", static_cast<double>(value)); break;
    }
}
