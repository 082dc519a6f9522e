#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "parameters/parameters.h"

// The ports of the LV2 plug-in: audio in and out, the notes, one control port a parameter, and
// behind them what the other plug-in format has no parameter for. Hosts keep
// values by symbol and connect by index, so neither ever changes.
//
// Threads: [any], never [audio]; pure functions.

enum Lv2Port : std::uint32_t {
    portAudioIn = 0,
    portAudioOut = 1,
    portMidi = 2,
    portFirstControl = 3,                         // of parameter 0; the others follow
    portEar = portFirstControl + parameterCount,  // what is no parameter: how the plug-in hears
    portEarThreshold,
    portInputLevel,
    portCount,
};

// Bytes that a host is asked to offer for the notes of one run: 682 events of 24 bytes each.
constexpr std::uint32_t midiPortBytes = 16384;

// What a host learns of a control port.
struct ControlPort {
    std::string symbol;
    std::string name;
    float minimum = 0;
    float maximum = 1;
    float initial = 0;
    bool toggled = false;
    bool enumeration = false;  // the points are all there is to choose from
    bool automatic = true;     // worth an automation lane
    bool onGui = true;         // worth a control in a host's own view of the parameters
    std::vector<ParameterPoint> points;
};

ControlPort DescribeParameter(std::int32_t index);  // 0 to 95
ControlPort DescribeHearing(Lv2Port port);          // from portEar on
