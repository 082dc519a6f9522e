#include "engine/kernels.h"

// This file is compiled for speed by the compiler's own vectorisation where the order of operations allows
// it: bounds and pointers are copied into locals, and bands run along memory.

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

void FoldSample(std::int32_t* __restrict accRe, std::int32_t* __restrict accIm,
                const std::int32_t* __restrict tapsRe, const std::int32_t* __restrict tapsIm,
                std::int32_t sample, std::int32_t bands) {
    for (std::int32_t i = 0; i < bands; ++i) accRe[i] = MultiplyAdd(accRe[i], tapsRe[i], sample);
    for (std::int32_t i = 0; i < bands; ++i) accIm[i] = MultiplyAdd(accIm[i], tapsIm[i], sample);
}

void StepResonators(const ResonatorBank& bank, std::int32_t newest) {
    float* __restrict const stateA = bank.stateA;
    float* __restrict const stateB = bank.stateB;
    float* __restrict const energy = bank.energy;
    std::int32_t* __restrict const accRe = bank.accRe;
    std::int32_t* __restrict const accIm = bank.accIm;
    const std::int32_t* __restrict const tapZero = bank.tapZero;
    const float* __restrict const feedAA = bank.feedAA;
    const float* __restrict const feedAB = bank.feedAB;
    const float* __restrict const feedBA = bank.feedBA;
    const float* __restrict const feedBB = bank.feedBB;
    const float* __restrict const inputAR = bank.inputAR;
    const float* __restrict const inputAI = bank.inputAI;
    const float* __restrict const inputBR = bank.inputBR;
    const float* __restrict const inputBI = bank.inputBI;
    const float decay = bank.blockDecay;
    const std::int32_t bands = bank.bands;

    for (std::int32_t i = 0; i < bands; ++i) {
        // The newest sample's weight is the pole to the power 0, so it has no imaginary part.
        const auto re = static_cast<float>(MultiplyAdd(accRe[i], tapZero[i], newest));
        const auto im = static_cast<float>(accIm[i]);
        const float a = stateA[i];
        const float b = stateB[i];
        const float nextA = ((a * feedAA[i] + b * feedAB[i]) + re * inputAR[i]) + im * inputAI[i];
        const float nextB = ((a * feedBA[i] + b * feedBB[i]) + re * inputBR[i]) + im * inputBI[i];
        stateA[i] = nextA;
        stateB[i] = nextB;
        accRe[i] = 0;
        accIm[i] = 0;
        energy[i] = (energy[i] * decay + nextA * nextA) + nextB * nextB;
    }
}

// x[i] = clamp(rhs[i] - cross(i), 0, cap[i]), where cross(i) is what the notes whose partials share a band
// with a note on i already explain. Below band 0 stand zeros, which leave a pair's sum as it is.
void FitPartials(float* x, const float* rhs, const float* cap, const FitCoefficients& k, std::int32_t bands) {
    float* const at = x + fitMargin;
    const std::int32_t fullEnd = bands - 24;  // from here on the partial 24 bands up is gone
    const std::int32_t twoEnd = bands - 19;   // and from here on the one 19 up
    const std::int32_t oneEnd = bands - 12;   // and here the one 12 up
    for (int sweep = 0; sweep < fitSweeps; ++sweep) {
        std::int32_t i = 0;
        for (; i < fullEnd; ++i) {
            float* const p = at + i;
            float cross = k.full.x5 * (p[-5] + p[5]);
            cross += k.full.x7 * (p[-7] + p[7]);
            cross += k.full.x12 * (p[-12] + p[12]);
            cross += k.full.b * (p[-19] + p[19]);
            cross += k.full.c * (p[-24] + p[24]);
            *p = Clamp(rhs[i] - cross, cap[i]);
        }
        for (; i < twoEnd; ++i) {
            float* const p = at + i;
            float cross = k.two.x5 * p[-5];
            cross += k.two.x7 * (p[-7] + p[7]);
            cross += k.two.x12 * p[-12];
            cross += k.two.a * p[12];
            cross += k.two.b * (p[-19] + p[19]);
            cross += k.two.c * p[-24];
            *p = Clamp(rhs[i] - cross, cap[i]);
        }
        for (; i < oneEnd; ++i) {
            float* const p = at + i;
            float cross = k.one.x7 * p[-7];
            cross += k.one.x12 * p[-12];
            cross += k.one.a * p[12];
            cross += k.one.b * p[-19];
            cross += k.one.c * p[-24];
            *p = Clamp(rhs[i] - cross, cap[i]);
        }
        for (; i < bands; ++i) {
            float* const p = at + i;
            float cross = k.none.a * p[-12];
            cross += k.none.b * p[-19];
            cross += k.none.c * p[-24];
            *p = Clamp(rhs[i] - cross, cap[i]);
        }
    }
}

}  // namespace plain
