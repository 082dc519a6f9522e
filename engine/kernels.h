#pragma once
#include <cstdint>

// The detector's inner loops. Each stands here as its plain definition: one band after the other, in the
// order of operations that the results depend on, bit for bit. 32-bit integer products and sums wrap.
//
// Threads: pure functions of what they are given. No array overlaps another; lengths in elements.

// One block's step of all resonators. Arrays hold `bands` elements.
struct ResonatorBank {
    float* stateA;
    float* stateB;
    float* energy;        // smoothed power
    std::int32_t* accRe;  // the block folded into one complex number a band
    std::int32_t* accIm;
    const std::int32_t* tapZero;  // weight of the block's newest sample
    const float* feedAA;          // state transition over one block
    const float* feedAB;
    const float* feedBA;
    const float* feedBB;
    const float* inputAR;  // how the accumulators enter the state
    const float* inputAI;
    const float* inputBR;
    const float* inputBI;
    float blockDecay;  // one-pole factor of the energy's smoothing, per block
    std::int32_t bands;
};

// The bands below the lowest that the fit reaches down to: its longest partial distance. The arrays of
// FitPartials hold that many zeros in front of band 0, so that no row needs a test.
constexpr std::int32_t fitMargin = 24;
constexpr std::int32_t fitSweeps = 10;  // part of the behaviour: the fit stops before it has converged

// Pre-multiplied coefficients of the least-squares rows, by how many partials lie below the top band.
// clang-format off
struct FitCoefficients {
    struct Full { float x5, x7, x12, b, c; }    full;  // 12, 19 and 24
    struct Two  { float x5, x7, x12, a, b, c; } two;   // 12 and 19
    struct One  { float x7, x12, a, b, c; }     one;   // 12
    struct None { float a, b, c; }              none;  // none
};
// clang-format on

namespace plain {

// acc += weights x sample, for an element's real and imaginary weight.
void FoldSample(std::int32_t* accRe, std::int32_t* accIm, const std::int32_t* tapsRe,
                const std::int32_t* tapsIm, std::int32_t sample, std::int32_t bands);

// Adds the newest sample, steps the states by one block, zeroes the accumulators, smooths the energy.
void StepResonators(const ResonatorBank& bank, std::int32_t newest);

// The projected Gauss-Seidel sweeps: x is `bands` fitted powers behind fitMargin zeros, replaced in place;
// rhs and cap hold `bands` elements.
void FitPartials(float* x, const float* rhs, const float* cap, const FitCoefficients& k, std::int32_t bands);

}  // namespace plain
