#pragma once
#include <cstddef>

// The host's samples as the detector takes them: times 30000, cut towards zero to 32 bits, of which the low
// 16 are kept. Nothing saturates: beyond about plus or minus 1.09 a sample wraps. One that does not fit
// 32 bits, or is not a number, becomes 0.
//
// in: count samples, any alignment, or null for silence; out: space for count. Threads: [any], pure
// functions.
void ConvertSamples(const float* in, short* out, std::size_t count);
void ConvertSamples(const double* in, short* out, std::size_t count);

// The same louder or softer by the factor `gain`, and cut to 32767 where it would wrap.
void ConvertSamples(const float* in, short* out, std::size_t count, float gain);
void ConvertSamples(const double* in, short* out, std::size_t count, float gain);

// What the first two do, one sample after the other.
namespace plain {
void ConvertSamples(const float* in, short* out, std::size_t count);
void ConvertSamples(const double* in, short* out, std::size_t count);
}  // namespace plain

// The silence test: a block is silent when its samples add up to zero. The sum is 64 bits wide.
bool SumIsZero(const short* samples, std::size_t count);
