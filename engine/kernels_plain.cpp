#include <algorithm>
#include <cmath>

#include "engine/kernels.h"

// The definitions. Nothing here is written for speed beyond keeping bounds in locals.

namespace plain {

namespace {

// 32-bit sums and products wrap; unsigned arithmetic says so without undefined behaviour.
std::int32_t MultiplyAdd(std::int32_t sum, std::int32_t weight, std::int32_t sample) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) +
                                     static_cast<std::uint32_t>(weight) * static_cast<std::uint32_t>(sample));
}

float Clamp(float value, float cap) {
    const float positive = value < 0.0F ? 0.0F : value;
    return positive > cap ? cap : positive;
}

}  // namespace

void FoldSample(std::int32_t* accRe, std::int32_t* accIm, const std::int32_t* tapsRe,
                const std::int32_t* tapsIm, std::int32_t sample, std::int32_t bands) {
    for (std::int32_t i = 0; i < bands; ++i) {
        accRe[i] = MultiplyAdd(accRe[i], tapsRe[i], sample);
        accIm[i] = MultiplyAdd(accIm[i], tapsIm[i], sample);
    }
}

void StepResonators(const ResonatorBank& bank, std::int32_t newest) {
    for (std::int32_t i = 0; i < bank.bands; ++i) {
        // The newest sample's weight is the pole to the power 0, so it has no imaginary part.
        const auto re = static_cast<float>(MultiplyAdd(bank.accRe[i], bank.tapZero[i], newest));
        const auto im = static_cast<float>(bank.accIm[i]);
        const float a = bank.stateA[i];
        const float b = bank.stateB[i];
        const float nextA =
            ((a * bank.feedAA[i] + b * bank.feedAB[i]) + re * bank.inputAR[i]) + im * bank.inputAI[i];
        const float nextB =
            ((a * bank.feedBA[i] + b * bank.feedBB[i]) + re * bank.inputBR[i]) + im * bank.inputBI[i];
        bank.stateA[i] = nextA;
        bank.stateB[i] = nextB;
        bank.accRe[i] = 0;
        bank.accIm[i] = 0;
        bank.energy[i] = (bank.energy[i] * bank.blockDecay + nextA * nextA) + nextB * nextB;
    }
}

void StepBlocks(const ResonatorBank& bank, const std::int16_t* samples, std::int32_t blocks) {
    const std::int32_t older = bank.blockLength - 1;
    for (; blocks > 0; --blocks, samples += bank.blockLength) {
        for (std::int32_t n = 0; n < older; ++n) {
            const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(older - n - 1) * bank.stride;
            FoldSample(bank.accRe, bank.accIm, bank.tapsRe + row, bank.tapsIm + row, samples[n], bank.bands);
        }
        StepResonators(bank, samples[older]);
    }
}

// A band can be a peak only if the one below is strictly weaker and the one above not stronger.
void FindPeaks(const PeakFlags& p) {
    p.rising[1] = p.energy[0] < p.energy[1];
    for (std::int32_t i = 2; i < p.bands; ++i) {
        const std::int32_t j = i - 1;
        p.peakOlder[j] = p.peakOld[j];
        p.peakOld[j] = p.peakNow[j];
        p.rising[i] = p.energy[j] < p.energy[i];
        p.peakNow[j] =
            !p.rising[i] && p.rising[j] && p.energy[j - 1] + p.energy[i] < p.energy[j] * p.peakRatio;
    }
}

// Denies a band the power that its partials do not support. A partial at or above its expected amplitude
// costs nothing; a weaker one lowers the band by its shortfall.
void LimitByPartials(const PartialLimit& limit) {
    const std::int32_t distances[] = {12, 19, 24};  // semitones from the fundamental
    const float* const k = limit.coefficients;
    const float* const amplitude = limit.amplitude;
    const std::int32_t bands = limit.bands;
    for (std::int32_t i = 0; i < bands; ++i) limit.amplitude[i] = std::sqrt(limit.energy[i]);

    std::int32_t i = 0;
    for (; i < bands - 19; ++i) {  // three or two partials within the spectrum
        const std::int32_t partials = i < bands - 24 ? 3 : 2;
        const float a = amplitude[i];
        float m = a;
        for (std::int32_t p = 0; p < partials && m >= 0.0F; ++p) {
            const float t = a * k[Harmonic::Limit2 + p] + amplitude[i + distances[p]];
            if (t < m) m = t;
        }
        limit.levelCap[i] = m < 0.0F ? 0.0F : m * m;
    }
    for (; i < bands - 12; ++i) {  // one
        const float a = amplitude[i];
        const float t = a * k[Harmonic::Limit2] + amplitude[i + 12];
        limit.levelCap[i] = t < 0.0F ? 0.0F : t >= a ? limit.energy[i] : t * t;
    }
    for (; i < bands; ++i) limit.levelCap[i] = limit.energy[i];  // none

    const float* const L = limit.levelCap;
    i = 0;
    for (; i < bands - 24; ++i)
        limit.rhs[i] = k[Harmonic::D4] * L[i] + k[Harmonic::D4A] * L[i + 12] + k[Harmonic::D4B] * L[i + 19] +
                       k[Harmonic::D4C] * L[i + 24];
    for (; i < bands - 19; ++i)
        limit.rhs[i] = k[Harmonic::D3] * L[i] + k[Harmonic::D3A] * L[i + 12] + k[Harmonic::D3B] * L[i + 19];
    for (; i < bands - 12; ++i) limit.rhs[i] = k[Harmonic::D2] * L[i] + k[Harmonic::D2A] * L[i + 12];
    for (; i < bands; ++i) limit.rhs[i] = L[i];
}

// x[i] = clamp(rhs[i] - cross(i), 0, cap[i]), where cross(i) is what the notes whose partials share a band
// with a note on i already explain. Below band 0 stand zeros, which leave a pair's sum as it is.
void FitPartials(float* x, const float* rhs, const float* cap, const FitCoefficients& k, std::int32_t bands) {
    const std::int32_t fullEnd = bands - 24;  // from here on the partial 24 bands up is gone
    const std::int32_t twoEnd = bands - 19;   // and from here on the one 19 up
    const std::int32_t oneEnd = bands - 12;   // and here the one 12 up
    for (int sweep = 0; sweep < fitSweeps; ++sweep) {
        std::int32_t i = 0;
        for (; i < fullEnd; ++i) {
            float* const p = x + i;
            float cross = k.full.x5 * (p[-5] + p[5]);
            cross += k.full.x7 * (p[-7] + p[7]);
            cross += k.full.x12 * (p[-12] + p[12]);
            cross += k.full.b * (p[-19] + p[19]);
            cross += k.full.c * (p[-24] + p[24]);
            *p = Clamp(rhs[i] - cross, cap[i]);
        }
        for (; i < twoEnd; ++i) {
            float* const p = x + i;
            float cross = k.two.x5 * p[-5];
            cross += k.two.x7 * (p[-7] + p[7]);
            cross += k.two.x12 * p[-12];
            cross += k.two.a * p[12];
            cross += k.two.b * (p[-19] + p[19]);
            cross += k.two.c * p[-24];
            *p = Clamp(rhs[i] - cross, cap[i]);
        }
        for (; i < oneEnd; ++i) {
            float* const p = x + i;
            float cross = k.one.x7 * p[-7];
            cross += k.one.x12 * p[-12];
            cross += k.one.a * p[12];
            cross += k.one.b * p[-19];
            cross += k.one.c * p[-24];
            *p = Clamp(rhs[i] - cross, cap[i]);
        }
        for (; i < bands; ++i) {
            float* const p = x + i;
            float cross = k.none.a * p[-12];
            cross += k.none.b * p[-19];
            cross += k.none.c * p[-24];
            *p = Clamp(rhs[i] - cross, cap[i]);
        }
    }
}

}  // namespace plain

const DetectorKernels& PlainKernels() {
    static constexpr DetectorKernels kernels = {"plain", plain::StepBlocks, plain::FindPeaks,
                                                plain::LimitByPartials, plain::FitPartials};
    return kernels;
}
