#include "plugin/input_meter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

#if defined(__SSE2__)
// Where a sample is NaN, the maximum so far stays: NaN is the first of the two.
std::size_t PeakOfFours(const float* in, std::size_t count, float& peak) {
    __m128 highest = _mm_setzero_ps();
    std::size_t done = 0;
    for (; done + 4 <= count; done += 4)
        highest = _mm_max_ps(_mm_andnot_ps(_mm_set1_ps(-0.0F), _mm_loadu_ps(in + done)), highest);
    float lanes[4];
    _mm_storeu_ps(lanes, highest);
    peak = *std::max_element(lanes, lanes + 4);
    return done;
}
#else
std::size_t PeakOfFours(const float*, std::size_t, float&) {
    return 0;
}
#endif
std::size_t PeakOfFours(const double*, std::size_t, float&) {
    return 0;
}

}  // namespace

template <typename Sample>
void InputMeter::Measure(const Sample* in, std::size_t count) {
    if (!watched || in == nullptr) return;
    float highest = 0;
    for (std::size_t i = PeakOfFours(in, count, highest); i < count; ++i) {
        Sample sample;  // a host's buffer may lie at any address
        std::memcpy(&sample, in + i, sizeof sample);
        const auto size = static_cast<float>(std::abs(sample));
        if (size > highest) highest = size;
    }
    if (highest > peak.load(std::memory_order_relaxed)) peak.store(highest, std::memory_order_relaxed);
}

template void InputMeter::Measure(const float*, std::size_t);
template void InputMeter::Measure(const double*, std::size_t);
