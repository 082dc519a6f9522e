#include "listening/features.h"

#include <algorithm>
#include <array>
#include <bit>

namespace {

constexpr std::int32_t Steps(double dB) {
    return static_cast<std::int32_t>(dB * stepsPerDb + (dB < 0 ? -0.5 : 0.5));
}

constexpr std::int32_t lowestLevel = Steps(-140), highestLevel = Steps(20);
constexpr std::int32_t lowestReference = Steps(-85);
constexpr std::int32_t fall = Steps(0.1);    // of the reference, a frame
constexpr std::int32_t depth = Steps(70);    // under the reference, where levels end
constexpr std::int32_t fastest = Steps(12);  // change of a level in a frame
constexpr std::int32_t middle = 9216;        // 45 dB / 20 dB x 4096
// Factors over 65536, from level steps to features: 4096 / 20 dB and 4096 / 5 dB.
constexpr std::int32_t FeaturesPerStep(double decibels) {
    const double factor = 65536 * 4096 / (decibels * stepsPerDb) + 0.5;
    return static_cast<std::int32_t>(factor);
}
constexpr std::int32_t perLevel = FeaturesPerStep(20), perChange = FeaturesPerStep(5);

// log2(1 + i / 256) in 65536ths: a digit is 1 where the square passes 2.
constexpr std::uint32_t Log2Of(std::uint32_t i) {
    std::uint64_t x = std::uint64_t{256 + i} << 22;  // 2.30 bits
    std::uint32_t digits = 0;
    for (int bit = 0; bit < 18; ++bit) {
        x = x * x >> 30;
        digits <<= 1;
        if (x < std::uint64_t{2} << 30) continue;
        digits |= 1;
        x >>= 1;
    }
    return (digits + 2) >> 2;
}

constexpr auto log2Table = [] {
    std::array<std::uint32_t, 257> table{};
    for (std::uint32_t i = 0; i < 256; ++i) table[i] = Log2Of(i);
    table[256] = 65536;
    return table;
}();

std::int16_t Feature(std::int32_t steps, std::int32_t factor) {
    return static_cast<std::int16_t>((steps * factor + 0x8000) >> 16);
}

}  // namespace

std::int32_t LevelOf(float power) {
    const auto bits = std::bit_cast<std::int32_t>(power);
    constexpr std::int32_t tooSmall = std::bit_cast<std::int32_t>(1e-14F);
    constexpr std::int32_t infinite = 0x7F800000;
    if (bits < tooSmall || bits > infinite) return lowestLevel;
    const auto index = static_cast<std::size_t>(bits >> 15 & 0xFF);
    const auto rest = static_cast<std::uint32_t>(bits & 0x7FFF);
    const std::uint32_t fraction =
        log2Table[index] + ((log2Table[index + 1] - log2Table[index]) * rest >> 15);  // 65536ths
    const std::int32_t exponent = (bits >> 23) - 127;
    const std::int32_t level = exponent * levelStepsPerOctave + static_cast<std::int32_t>(fraction >> 4);
    return std::clamp(level, lowestLevel, highestLevel);
}

void EarFeatures::Reset() {
    reference = lowestReference;
    std::fill_n(levels, netBands, lowestLevel);
    std::fill_n(pairs, 2 * netBands, std::int16_t{0});
}

const std::int16_t* EarFeatures::Step(const float* powers) {
    std::int32_t before[netBands];
    std::copy_n(levels, netBands, before);
    for (std::int32_t band = 0; band < netBands; ++band) levels[band] = LevelOf(powers[band]);
    const std::int32_t loudest = *std::max_element(levels, levels + netBands);
    reference = std::max({loudest, lowestReference, reference - fall});
    const std::int32_t lowest = reference - depth;
    for (std::int32_t band = 0; band < netBands; ++band) {
        const std::int32_t level = std::max(levels[band], lowest);
        const std::int32_t change = std::clamp(level - std::max(before[band], lowest), -fastest, fastest);
        std::int16_t* const pair = &pairs[0] + std::ptrdiff_t{2} * band;
        pair[0] = static_cast<std::int16_t>(Feature(level - reference, perLevel) + middle);
        pair[1] = Feature(change, perChange);
    }
    return pairs;
}
