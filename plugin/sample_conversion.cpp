#include "plugin/sample_conversion.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "base/float_environment.h"
#include "base/truncate.h"

namespace {

template <typename Sample>
Sample Load(const Sample* from) {  // a host's buffer may lie at any address
    Sample value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <typename Sample>
void ConvertOneByOne(const Sample* in, short* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t scaled = TruncateToInt32(Load(in + i) * Sample(30000));
        out[i] = static_cast<short>(static_cast<std::uint16_t>(scaled));
    }
}

#if defined(__SSE2__)
// The processor's own truncation answers 0x80000000 for what does not fit, as wanted.
__m128i TruncateFour(const float* in) {
    return _mm_cvttps_epi32(_mm_mul_ps(_mm_loadu_ps(in), _mm_set1_ps(30000.0F)));
}

__m128i TruncateFour(const double* in) {
    const __m128d scale = _mm_set1_pd(30000.0);
    const __m128i low = _mm_cvttpd_epi32(_mm_mul_pd(_mm_loadu_pd(in), scale));
    const __m128i high = _mm_cvttpd_epi32(_mm_mul_pd(_mm_loadu_pd(in + 2), scale));
    return _mm_unpacklo_epi64(low, high);
}

__m128i Low16(__m128i four) {
    return _mm_srai_epi32(_mm_slli_epi32(four, 16), 16);
}
#endif

template <typename Sample>
void Convert(const Sample* in, short* out, std::size_t count) {
    if (in == nullptr) {
        std::fill_n(out, count, short{0});
        return;
    }
    const FlushToZero arithmetic;  // the same integers, whatever rounding the host is in
    std::size_t done = 0;
#if defined(__SSE2__)
    for (; done + 8 <= count; done += 8) {
        const __m128i eight =
            _mm_packs_epi32(Low16(TruncateFour(in + done)), Low16(TruncateFour(in + done + 4)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + done), eight);
    }
#endif
    ConvertOneByOne(in + done, out + done, count - done);
}

template <typename Sample>
void ConvertAt(Sample gain, const Sample* in, short* out, std::size_t count) {
    if (in == nullptr) return static_cast<void>(std::fill_n(out, count, short{0}));
    const FlushToZero arithmetic;
    const Sample scale = gain * Sample(30000);
    for (std::size_t i = 0; i < count; ++i) {
        const Sample scaled = std::clamp(Load(in + i) * scale, Sample(-32767), Sample(32767));
        out[i] = static_cast<short>(static_cast<std::uint16_t>(TruncateToInt32(scaled)));
    }
}

}  // namespace

void ConvertSamples(const float* in, short* out, std::size_t count, float gain) {
    ConvertAt(gain, in, out, count);
}
void ConvertSamples(const double* in, short* out, std::size_t count, float gain) {
    ConvertAt(static_cast<double>(gain), in, out, count);
}

void ConvertSamples(const float* in, short* out, std::size_t count) {
    Convert(in, out, count);
}
void ConvertSamples(const double* in, short* out, std::size_t count) {
    Convert(in, out, count);
}
void plain::ConvertSamples(const float* in, short* out, std::size_t count) {
    ConvertOneByOne(in, out, count);
}
void plain::ConvertSamples(const double* in, short* out, std::size_t count) {
    ConvertOneByOne(in, out, count);
}

bool SumIsZero(const short* samples, std::size_t count) {
    constexpr std::size_t most = 32768;  // samples whose sum fits 32 bits
    std::int64_t sum = 0;
    while (count > 0) {
        const std::size_t run = std::min(count, most);
        std::int32_t partial = 0;
        std::size_t done = 0;
#if defined(__SSE2__)
        // Pairs by the multiply-add with 1: a quarter of the time of what the compiler makes of the loop
        // below.
        __m128i sums = _mm_setzero_si128();
        for (; done + 8 <= run; done += 8) {
            const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + done));
            sums = _mm_add_epi32(sums, _mm_madd_epi16(eight, _mm_set1_epi16(1)));
        }
        sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, _MM_SHUFFLE(1, 0, 3, 2)));
        sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, _MM_SHUFFLE(2, 3, 0, 1)));
        partial = _mm_cvtsi128_si32(sums);
#endif
        for (; done < run; ++done) partial += samples[done];
        sum += partial;
        samples += run;
        count -= run;
    }
    return sum == 0;
}
