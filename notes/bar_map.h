#pragma once
#include <cstdint>
#include <map>
#include <memory_resource>

// A bar of a score; it stands in the map under the tick at which it begins.
struct TBar {
    std::uint32_t barIndex = 0;
    std::uint32_t beatsPerBar = 0;

    friend bool operator==(const TBar&, const TBar&) = default;
};

using TBars = std::pmr::map<std::uint32_t, TBar>;

inline constexpr std::uint32_t closestBars = 11025;  // ticks, half a second: no two bars stand closer
inline constexpr std::uint32_t widestBars = 220500;  // ticks, ten seconds: a wider gap is filled

// Ticks of one bar of `numerator` beats at `bpm` quarter notes a minute, where 2^shift is the beat's note
// value: numerator * (22050 * 240) / (bpm << shift), in 64 bits. A shift of 32 or more, or a tempo of 0,
// gives 0.
std::uint64_t BarSpacing(std::uint32_t numerator, std::uint32_t shift, std::uint32_t bpm);
