#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

// The detector's inner loops. Each has its plain definition: one band after the other, in the order of
// operations that the results depend on, bit for bit; 32-bit integer products and sums wrap. The vector forms
// beside them do the same operations on many bands at a time and give the same bits.
//
// Threads: pure functions of what they are given. No array overlaps another unless said; lengths in elements.

// Arrays of bands are laid out in whole vectors of the widest kind: this many elements at a time.
constexpr std::int32_t bandStep = 16;
constexpr std::int32_t PaddedBands(std::int32_t bands) {
    return (bands + bandStep - 1) / bandStep * bandStep;
}

// One block's step of all resonators. Arrays hold PaddedBands(bands) elements; what lies past `bands` is zero
// and stays so.
struct ResonatorBank {
    float* stateA;
    float* stateB;
    float* energy;        // smoothed power
    std::int32_t* accRe;  // the block folded into one complex number a band; zeroed by the step
    std::int32_t* accIm;
    // (blockLength - 1) rows of `stride` weights; row k - 1 belongs to the sample k samples older than the
    // newest.
    const std::int32_t* tapsRe;
    const std::int32_t* tapsIm;
    const std::int32_t* tapZero;  // weight of the block's newest sample
    // The same weights in 16 bits, two samples a row, bands interleaved by pairs: row p holds, per band, the
    // weights of the block's samples 2p and 2p + 1 counted from the oldest. Null where they do not fit.
    const std::int16_t* pairsRe;
    const std::int16_t* pairsIm;
    const float* feedAA;  // state transition over one block
    const float* feedAB;
    const float* feedBA;
    const float* feedBB;
    const float* inputAR;  // how the accumulators enter the state
    const float* inputAI;
    const float* inputBR;
    const float* inputBI;
    float blockDecay;  // one-pole factor of the energy's smoothing, per block
    std::int32_t blockLength;
    std::int32_t bands;
    std::int32_t stride;  // PaddedBands(bands)
};

// The bands below the lowest that the fit reaches down to, and above the highest that it reaches up to: its
// longest partial distance, in whole vectors. The array of FitPartials holds that many zeros on either side,
// so that no row needs a test.
constexpr std::int32_t fitMargin = 32;
constexpr std::size_t fitMargins = std::size_t{2} * fitMargin;
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

// The first half of the separation. Arrays hold PaddedBands(bands) elements, amplitude and levelCap a
// bandStep of zeros behind them.
struct PartialLimit {
    const float* energy;
    float* amplitude;           // out: square root of energy
    float* levelCap;            // out: what a band's partials support, as power
    float* rhs;                 // out: right-hand side of the fit
    const float* coefficients;  // harmonicCoefficients
    std::int32_t bands;
};

// The peak test. Arrays hold PaddedBands(bands) elements, and a bandStep behind them, zeros all; flags are 0
// or 1.
struct PeakFlags {
    const float* energy;
    bool* rising;
    bool* peakOlder;
    bool* peakOld;
    bool* peakNow;
    float peakRatio;
    std::int32_t bands;
};

// Positions in harmonicCoefficients: the groups in which they are computed, a row each.
// clang-format off
struct Harmonic {
    enum Position {
        D4, D4A, D4B, D4C,
        D3, D3A, D3B, D3C,
        D2, D2A, D2B, D2C,
        A, B, C,
        D4X5, D4X7, D4X12,
        D3X5, D3X7, D3X12,
        D2X7, D2X12,
        Limit2, Limit3, Limit4,
        count,
    };
};
// clang-format on

// One set of inner loops.
struct DetectorKernels {
    const char* name;
    // Folds `blocks` whole blocks of blockLength samples each, and steps the resonators after each. Where
    // blockLength is odd, one element behind the last block must be readable.
    void (*stepBlocks)(const ResonatorBank& bank, const std::int16_t* samples, std::int32_t blocks);
    void (*findPeaks)(const PeakFlags& peaks);
    void (*limitByPartials)(const PartialLimit& limit);
    // The projected Gauss-Seidel sweeps: x points at band 0 of `bands` fitted powers between margins of
    // zeros, and is replaced in place; rhs and cap hold `bands` elements.
    void (*fitPartials)(float* x, const float* rhs, const float* cap, const FitCoefficients& k,
                        std::int32_t bands);
};

// The fastest set that this machine has. Two detectors may use different sets.
DetectorKernels BestKernels();
const DetectorKernels& PlainKernels();  // the definitions
// Every set that this machine has, the plain one among them, for tests and benchmarks. Not while another
// thread makes a detector.
std::vector<DetectorKernels> AllKernels();

namespace plain {

// acc += weights x sample, for the real and the imaginary weight of each band.
void FoldSample(std::int32_t* accRe, std::int32_t* accIm, const std::int32_t* tapsRe,
                const std::int32_t* tapsIm, std::int32_t sample, std::int32_t bands);
// Adds the newest sample, steps the states by one block, zeroes the accumulators, smooths the energy.
void StepResonators(const ResonatorBank& bank, std::int32_t newest);

void StepBlocks(const ResonatorBank& bank, const std::int16_t* samples, std::int32_t blocks);
void FindPeaks(const PeakFlags& peaks);
void LimitByPartials(const PartialLimit& limit);
void FitPartials(float* x, const float* rhs, const float* cap, const FitCoefficients& k, std::int32_t bands);

}  // namespace plain
