#pragma once
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

// The 16-bit sample that a host's sample stands for: times 30000, cut towards zero, the low 16 bits kept;
// 0 for what is not a number and for what 32 bits do not hold. (-2^31 has low bits of 0 by itself.)
template <typename Sample>
short Converted(Sample value) {
    const Sample scaled = value * Sample(30000);
    if (!(scaled > Sample(-2147483648.0) && scaled < Sample(2147483648.0))) return 0;
    return static_cast<short>(static_cast<std::uint16_t>(static_cast<std::int32_t>(scaled)));
}

// Any bits at all: numbers of every size, infinities, and what is none, with its payload.
template <typename Sample>
Sample AnySample(std::mt19937_64& random) {
    const std::uint64_t bits = random();
    Sample value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// From -1 to 1.
template <typename Sample>
Sample UsualSample(std::mt19937_64& random) {
    return static_cast<Sample>(static_cast<std::int64_t>(random())) * Sample(0x1p-63);
}
