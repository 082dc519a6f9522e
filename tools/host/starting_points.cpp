#include "tools/host/starting_points.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "parameters/parameters.h"

namespace {

constexpr int firstBarNote = 24;  // MIDI

// clang-format off
constexpr StartingPoint points[] = {
    // polyphony, sensitivity, lowest, highest, slant, name
    {0.80F, 1.000F, 24,  96, 1, "piano"},
    {0.75F, 1.000F, 40,  88, 0, "guitar"},
    {0.75F, 0.875F, 28,  67, 0, "bass"},
    {0.75F, 1.000F, 36,  96, 0, "organ"},
    {0.75F, 1.000F, 60,  96, 0, "flute"},
    {0.80F, 1.000F, 40,  84, 0, "voice"},
};
// clang-format on

float BarGain(const StartingPoint& point, int note) {
    if (note < point.lowest || note > point.highest) return 0;
    const double octaves = (note - point.lowest) / 12.0;
    return static_cast<float>(std::pow(10, -point.slant * octaves / 20));  // dB of amplitude
}

}  // namespace

std::span<const StartingPoint> StartingPoints() {
    return points;
}

std::string StartingPointNames() {
    std::string names;
    for (const StartingPoint& point : points) names += (names.empty() ? "" : ", ") + std::string(point.name);
    return names;
}

std::vector<ParameterSetting> SettingsFor(const std::string& name) {
    const auto* const point = std::find_if(std::begin(points), std::end(points),
                                           [&](const StartingPoint& p) { return p.name == name; });
    if (point == std::end(points))
        throw std::invalid_argument("no settings for '" + name + "'; there are: " + StartingPointNames());
    std::vector<ParameterSetting> settings = {{paramPolyphony, point->polyphony},
                                              {paramSensitivity, point->sensitivity}};
    for (int bar = 0; bar < bandCount; ++bar)
        settings.push_back({paramFirstBar + bar, BarGain(*point, firstBarNote + bar)});
    return settings;
}
