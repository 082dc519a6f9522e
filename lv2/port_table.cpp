#include "lv2/port_table.h"

#include <iterator>

#include "harmony/vocabulary.h"

namespace {

// By parameter, without the bars between the third and the fourth.
const char* const symbols[] = {
    "polyphony",       "sensitivity",      "velocity",     "midi_instrument",
    "midi_out_device", "midi_out_enabled", "midi_channel", "output_to_host_enabled",
    "active_page",     "chords_enabled",   "chords_delay", "send_program_change",
};

constexpr std::int32_t bars = paramLastBar - paramFirstBar + 1;
constexpr std::int32_t instruments = 128;
constexpr std::int32_t channels = 16;

// Pages have the values that the window writes, from 2 upward; the initial 0 leaves the first page in place.
constexpr float firstPage = 2;
const char* const pages[] = {"Main", "Equalizer", "Options", "About"};

std::string Symbol(std::int32_t index) {
    if (index < paramFirstBar) return symbols[index];
    if (index > paramLastBar) return symbols[index - bars];
    return "equalizer_bar_" + std::to_string(index - paramFirstBar + 1);
}

std::vector<ScalePoint> PointsOf(std::int32_t index) {
    std::vector<ScalePoint> points;
    switch (index) {
        case paramInstrument:
            for (std::int32_t i = 0; i < instruments; ++i)
                points.push_back({static_cast<float>(i) / (instruments - 1), InstrumentNames[i]});
            break;
        case paramChannel:
            for (std::int32_t i = 0; i < channels; ++i)
                points.push_back({static_cast<float>(i) / (channels - 1), std::to_string(i + 1)});
            break;
        case paramActivePage:
            for (std::size_t i = 0; i < std::size(pages); ++i)
                points.push_back({firstPage + static_cast<float>(i), pages[i]});
            break;
        default: break;
    }
    return points;
}

bool IsSwitch(std::int32_t index) {
    return index == paramDeviceEnabled || index == paramOutputToHost || index == paramChordsEnabled ||
           index == paramSendProgramChange;
}

}  // namespace

ControlPort DescribeParameter(std::int32_t index) {
    ControlPort port;
    port.symbol = Symbol(index);
    port.name = ParameterName(index);
    port.initial = ParameterInitialValue(index);
    port.points = PointsOf(index);
    port.toggled = IsSwitch(index);
    port.enumeration = index == paramInstrument || index == paramChannel;
    port.automatic = index < paramInstrument;
    if (index == paramActivePage) {
        port.maximum = port.points.back().value;
        port.onGui = false;
    }
    return port;
}

ControlPort DescribeHearing(Lv2Port index) {
    ControlPort port;
    if (index == portEar) {
        port.symbol = "ear";
        port.name = "Ear";
        port.points = {{0, "Classic"}, {1, "Refined"}};
        port.enumeration = true;
        port.automatic = false;
    } else if (index == portEarThreshold) {
        port.symbol = "refined_threshold";
        port.name = "Refined Threshold";
        port.minimum = -4;
        port.maximum = 4;
        port.points = {{-4, "more notes"}, {4, "fewer notes"}};
    } else {
        port.symbol = "input_level";
        port.name = "Input Level (dB)";
        port.minimum = -20;
        port.maximum = 40;
    }
    return port;
}
