// A played note puts energy on its own band and on those of its partials 12, 19 and 24 semitones up. This
// takes the partials back: first each band is limited to what its own partials support, then a fixed
// four-partial template is fitted to the limited spectrum by least squares.
#include <algorithm>
#include <cmath>

#include "engine/real_time_detector.h"

namespace {

constexpr std::int32_t partialDistances[] = {12, 19, 24};  // semitones from the fundamental

// Positions in harmonicCoefficients.
// clang-format off
enum Coefficient {
    D4, D4A, D4B, D4C,
    D3, D3A, D3B, D3C,
    D2, D2A, D2B, D2C,
    A, B, C,
    D4X5, D4X7, D4X12,
    D3X5, D3X7, D3X12,
    D2X7, D2X12,
    Limit2, Limit3, Limit4,
};
// clang-format on

}  // namespace

void TRealTimeTS107::SetHarmonics(std::int32_t base, std::int32_t h2, std::int32_t h3, std::int32_t h4) {
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
    return {{k[D4X5], k[D4X7], k[D4X12], k[D4B], k[D4C]},
            {k[D3X5], k[D3X7], k[D3X12], k[D3A], k[D3B], k[D3C]},
            {k[D2X7], k[D2X12], k[D2A], k[D2B], k[D2C]},
            {k[A], k[B], k[C]}};
}

void TRealTimeTS107::SeparateHarmonics() {
    if (!harmonicsEnabled) {
        std::copy_n(energy.Data(), numBands, separated.Data());
        return;
    }
    for (std::int32_t i = 0; i < numBands; ++i) amplitude[i] = std::sqrt(energy[i]);
    LimitByPartials();
    FormRightHandSide();
    float* const x = fitted.Data();
    std::copy_n(levelCap.Data(), numBands, x + fitMargin);
    plain::FitPartials(x, rhs.Data(), levelCap.Data(), Coefficients(), numBands);
    std::copy_n(x + fitMargin, numBands, separated.Data());
}

// Denies a band the power that its partials do not support. A partial at or above its expected amplitude
// costs nothing; a weaker one lowers the band by its shortfall.
void TRealTimeTS107::LimitByPartials() {
    const float* const limit = harmonicCoefficients + Limit2;
    std::int32_t i = 0;
    for (; i < numBands - 19; ++i) {  // two or three partials within the spectrum
        const std::int32_t partials = i < numBands - 24 ? 3 : 2;
        const float a = amplitude[i];
        float m = a;
        for (std::int32_t p = 0; p < partials; ++p) {
            const float t = a * limit[p] + amplitude[i + partialDistances[p]];
            if (t < 0.0F) {
                m = 0.0F;
                break;
            }
            if (t < m) m = t;
        }
        levelCap[i] = m * m;
    }
    for (; i < numBands - 12; ++i) {  // one
        const float a = amplitude[i];
        const float t = a * limit[0] + amplitude[i + 12];
        levelCap[i] = t < 0.0F ? 0.0F : t >= a ? energy[i] : t * t;
    }
    for (; i < numBands; ++i) levelCap[i] = energy[i];  // none
}

void TRealTimeTS107::FormRightHandSide() {
    const float* const k = harmonicCoefficients;
    const float* const L = levelCap.Data();
    std::int32_t i = 0;
    for (; i < numBands - 24; ++i)
        rhs[i] = k[D4] * L[i] + k[D4A] * L[i + 12] + k[D4B] * L[i + 19] + k[D4C] * L[i + 24];
    for (; i < numBands - 19; ++i) rhs[i] = k[D3] * L[i] + k[D3A] * L[i + 12] + k[D3B] * L[i + 19];
    for (; i < numBands - 12; ++i) rhs[i] = k[D2] * L[i] + k[D2A] * L[i + 12];
    for (; i < numBands; ++i) rhs[i] = L[i];
}
