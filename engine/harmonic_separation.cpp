// A played note puts energy on its own band and on those of its partials 12, 19 and 24 semitones up. This
// takes the partials back: first each band is limited to what its own partials support, then a fixed
// four-partial template is fitted to the limited spectrum by least squares.
#include <algorithm>

#include "base/float_environment.h"
#include "engine/real_time_detector.h"

void TRealTimeTS107::SetHarmonics(std::int32_t base, std::int32_t h2, std::int32_t h3, std::int32_t h4) {
    const FlushToZero arithmetic;
    harmonicBase = base;
    harmonic2 = h2;
    harmonic3 = h3;
    harmonic4 = h4;

    const auto unit = static_cast<float>(std::max(base, 1));
    const float H2 = static_cast<float>(std::max(h2, 0)) / unit;
    const float H3 = static_cast<float>(std::max(h3, 0)) / unit;
    const float H4 = static_cast<float>(std::max(h4, 0)) / unit;
    const float a = H2 * H2;  // the partials' powers
    const float b = H3 * H3;
    const float c = H4 * H4;
    const float d2 = 1.0F / (1.0F + a * a);
    const float d3 = 1.0F / (1.0F + a * a + b * b);
    const float d4 = 1.0F / (1.0F + a * a + b * b + c * c);
    const float x5 = b * c;            // the overlap of two templates 5 bands apart: 19 meets 24
    const float x7 = a * b;            // 7 apart: 12 meets 19
    const float x12 = (1.0F + c) * a;  // 12 apart: 0 meets 12, and 12 meets 24

    // clang-format off
    const float values[] = {
        d4, d4 * a, d4 * b, d4 * c,
        d3, d3 * a, d3 * b, d3 * c,
        d2, d2 * a, d2 * b, d2 * c,
        a, b, c,
        d4 * x5, d4 * x7, d4 * x12,
        d3 * x5, d3 * x7, d3 * x12,
        d2 * x7, d2 * x12,
        1.0F - H2, 1.0F - H3, 1.0F - H4,
    };
    // clang-format on
    static_assert(sizeof values == sizeof harmonicCoefficients);
    std::copy(std::begin(values), std::end(values), harmonicCoefficients);
}

FitCoefficients TRealTimeTS107::Coefficients() const {
    const float* const k = harmonicCoefficients;
    return {{k[Harmonic::D4X5], k[Harmonic::D4X7], k[Harmonic::D4X12], k[Harmonic::D4B], k[Harmonic::D4C]},
            {k[Harmonic::D3X5], k[Harmonic::D3X7], k[Harmonic::D3X12], k[Harmonic::D3A], k[Harmonic::D3B],
             k[Harmonic::D3C]},
            {k[Harmonic::D2X7], k[Harmonic::D2X12], k[Harmonic::D2A], k[Harmonic::D2B], k[Harmonic::D2C]},
            {k[Harmonic::A], k[Harmonic::B], k[Harmonic::C]}};
}

void TRealTimeTS107::SeparateHarmonics() {
    if (!harmonicsEnabled) {
        std::copy_n(energy.Data(), numBands, separated.Data());
        return;
    }
    kernels.limitByPartials(
        {energy.Data(), amplitude.Data(), levelCap.Data(), rhs.Data(), harmonicCoefficients, numBands});
    float* const x = fitted.Data() + fitMargin;
    std::copy_n(levelCap.Data(), numBands, x);
    kernels.fitPartials(x, rhs.Data(), levelCap.Data(), Coefficients(), numBands);
    std::copy_n(x, numBands, separated.Data());
}
