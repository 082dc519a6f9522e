#include "hosting/parameter_scale.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "parameters/parameters.h"

namespace {

// For displays that are numbers, with their unit behind them.
bool ReadNumber(std::int32_t index, const std::string& text, float& value) {
    float number = 0;
    std::istringstream typed(text);
    if (!(typed >> number)) return false;
    if (index == paramChordsDelay) number = number * 1000 / DelayOf(1);  // typed are seconds
    if (!(number >= 0 && number <= 1)) return false;
    value = number;
    return true;
}

std::array<std::int32_t, parameterCount> CountSteps() {
    std::array<std::int32_t, parameterCount> steps{};
    for (std::int32_t index = 0; index < parameterCount; ++index) {
        const ParameterRow& row = *FindParameter(index);
        std::int32_t& count = steps[static_cast<std::size_t>(index)];
        if (row.kind == ParameterKind::toggle) count = 1;
        if (row.kind == ParameterKind::choice) count = static_cast<std::int32_t>(row.points().size()) - 1;
        if (row.kind == ParameterKind::page) count = static_cast<std::int32_t>(ParameterMaximum(index));
    }
    return steps;
}

}  // namespace

std::int32_t ParameterSteps(std::int32_t index) {
    static const std::array<std::int32_t, parameterCount> steps = CountSteps();
    return index >= 0 && index < parameterCount ? steps[static_cast<std::size_t>(index)] : 0;
}

double PlainMaximum(std::int32_t index) {
    return std::max(1, ParameterSteps(index));
}

bool ReadParameterText(std::int32_t index, const std::string& text, float& value) {
    if (index <= paramVelocity) return ReadParameter(index, text.c_str(), value);
    const std::int32_t steps = ParameterSteps(index);
    for (std::int32_t step = 0; step < steps + 1 && steps > 0; ++step) {
        const float at = ParameterMaximum(index) * static_cast<float>(step) / static_cast<float>(steps);
        if (ParameterDisplay(index, at) != text) continue;
        value = at;
        return true;
    }
    return steps == 0 && index != paramDevice && ReadNumber(index, text, value);
}
