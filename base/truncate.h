#pragma once
#include <cstdint>
#include <limits>

// Float to integer, defined for every value. A plain cast is undefined where the value does not fit; the
// processor's own truncation gives the lowest integer there (0x80000000), and so do these, on every
// machine: for values out of range, infinities and what is not a number. In range they cut towards zero.
//
// Threads: [any]; pure functions.

// The limits are spelt as powers of two, which every floating-point type holds exactly.
template <typename Float>
constexpr std::int32_t TruncateToInt32(Float value) {
    // As a float, -2147483649 rounds to -2^31, which the fallback gives just as well.
    return value > Float(-2147483649.0) && value < Float(2147483648.0)
               ? static_cast<std::int32_t>(value)
               : std::numeric_limits<std::int32_t>::min();
}

template <typename Float>
constexpr std::int64_t TruncateToInt64(Float value) {
    return value >= Float(-9223372036854775808.0) && value < Float(9223372036854775808.0)
               ? static_cast<std::int64_t>(value)
               : std::numeric_limits<std::int64_t>::min();
}

// Unsigned results take the low bits of the wider signed one, as a 64-bit processor does: negative values
// wrap, values of 2^32 and above lose their upper bits.
template <typename Float>
constexpr std::uint32_t TruncateToUint32(Float value) {
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(TruncateToInt64(value)));
}
