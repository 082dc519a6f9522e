#pragma once
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "torture/row.h"

constexpr std::size_t oddSettings = 64;

// Values of a parameter: those at which something may turn, and any bits and usual values at random.
inline std::vector<float> OddSettings(Trial& trial) {
    using Limits = std::numeric_limits<float>;
    std::vector<float> values = {2.0F, 2.5F, 3.0F, 4.0F, 5.0F, -1.0F, Limits::signaling_NaN()};
    for (const float size : {0.0F, Limits::denorm_min(), Limits::min(), 1e-30F, 1e30F, Limits::max(),
                             Limits::infinity(), Limits::quiet_NaN(), std::bit_cast<float>(0x7FC01234U)})
        for (const float value : {size, -size}) values.push_back(value);
    for (const float edge : {1.0F / 3.0F, 0.5F, 2.0F / 3.0F, 1.0F})
        for (const float beside : {std::nextafter(edge, -1.0F), edge, std::nextafter(edge, 9.0F)})
            values.push_back(beside);
    while (values.size() < oddSettings)
        values.push_back(values.size() % 2 == 0
                             ? std::bit_cast<float>(static_cast<std::uint32_t>(trial.random()))
                             : static_cast<float>(trial.Below(1001)) / 1000.0F);
    return values;
}
