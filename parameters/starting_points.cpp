#include "parameters/starting_points.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "parameters/parameters.h"

namespace {

// clang-format off
constexpr StartingPoint points[] = {
    // polyphony, sensitivity, lowest, highest, slant, refined threshold, name
    {0.80F, 1.000F, 24,  96, 1, 0.25F, "piano"},
    {0.75F, 1.000F, 40,  88, 0, 0.75F, "guitar"},
    {0.75F, 0.875F, 28,  67, 0, 0.50F, "bass"},
    {0.75F, 1.000F, 36,  96, 0, 0.00F, "organ"},
    {0.75F, 1.000F, 60,  96, 0, 0.00F, "flute"},
    {0.80F, 1.000F, 40,  84, 0, 0.00F, "voice"},
};
// clang-format on

const StartingPoint* Find(const std::string& name) {
    return std::find_if(std::begin(points), std::end(points),
                        [&](const StartingPoint& point) { return point.name == name; });
}

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

float RefinedThresholdFor(const std::string& name) {
    const auto* const point = Find(name);
    return point == std::end(points) ? 0.0F : point->refinedThreshold;
}

std::vector<ParameterSetting> SettingsFor(const std::string& name) {
    const auto* const point = Find(name);
    if (point == std::end(points))
        throw std::invalid_argument("no settings for '" + name + "'; there are: " + StartingPointNames());
    std::vector<ParameterSetting> settings = {{paramPolyphony, point->polyphony},
                                              {paramSensitivity, point->sensitivity}};
    for (int bar = 0; bar < bandCount; ++bar)
        settings.push_back({paramFirstBar + bar, BarGain(*point, firstBarNote + bar)});
    return settings;
}

std::vector<ParameterSetting> ReachOf(std::vector<ParameterSetting> settings) {
    std::erase_if(settings, [](const ParameterSetting& each) { return each.index < paramFirstBar; });
    for (ParameterSetting& each : settings) each.value = each.value > 0 ? 1.0F : 0.0F;
    return settings;
}

std::vector<Beginning> Beginnings() {
    std::vector<Beginning> all;
    for (const StartingPoint& point : points) {
        std::string title = point.name;
        title[0] = static_cast<char>(title[0] - 'a' + 'A');
        all.push_back({title, SettingsFor(point.name)});
    }
    Beginning initial{"Initial", all[0].settings};
    for (ParameterSetting& each : initial.settings) each.value = ParameterInitialValue(each.index);
    all.insert(all.begin(), initial);
    return all;
}
