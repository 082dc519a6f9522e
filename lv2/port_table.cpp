#include "lv2/port_table.h"

ControlPort DescribeParameter(std::int32_t index) {
    const ParameterRow& row = *FindParameter(index);
    ControlPort port;
    port.symbol = ParameterSymbol(index);
    port.name = ParameterName(index);
    port.maximum = ParameterMaximum(index);
    port.initial = row.initial;
    if (row.points != nullptr) port.points = row.points();
    port.toggled = row.kind == ParameterKind::toggle;
    port.enumeration = row.kind == ParameterKind::choice;
    port.automatic = IsAutomatable(index);
    port.onGui = row.kind != ParameterKind::page;
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
