// The detector's inner loops on many bands at a time. This file is compiled once for each instruction set;
// the one that the machine has is chosen at run time. Every operation and every order of sums is that of the
// plain definitions, so every instruction set gives the same bits.
#include <cstring>

#include "engine/kernels.h"

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels_vector.cpp"

#include "hwy/foreach_target.h"  // includes this file again for each set
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace vectors {
namespace HWY_NAMESPACE {

// Below SSSE3 there is no shift across two vectors and no fast 32-bit multiply: the plain form serves as
// well.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128 || HWY_TARGET == HWY_SSE2

DetectorKernels Kernels() {
    return PlainKernels();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::CappedTag<float, bandStep>;  // bands along the vector
using WideInt = hn::RebindToSigned<Wide>;
using WideShort = hn::Repartition<std::int16_t, WideInt>;
using Four = hn::FixedTag<float, 4>;

// --- fold and step ---

// sum += pairs of weights x a pair of samples, in wrapping 32 bits, a band a lane.
HWY_INLINE hn::Vec<WideInt> AddPair(hn::Vec<WideInt> sum, hn::Vec<WideShort> weights,
                                    hn::Vec<WideShort> samples) {
    const WideInt di;
#if HWY_TARGET == HWY_AVX3_DL
    // This set's multiply-add takes the sum along. The compiler does not count it to the set, so by name.
    __asm__("vpdpwssd %2, %1, %0" : "+v"(sum.raw) : "v"(samples.raw), "vm"(weights.raw));
    return sum;
#elif HWY_ARCH_X86
    auto unused = hn::Zero(di);  // on this architecture the sum of adjacent products stays in its lane
    return hn::ReorderWidenMulAccumulate(di, weights, samples, sum, unused);
#else
    // Elsewhere the product of adjacent pairs may land in another lane, so the two halves of each 32-bit lane
    // are multiplied one after the other.
    const auto weight = hn::BitCast(di, weights);
    const auto sample = hn::BitCast(di, samples);
    const auto low =
        hn::Mul(hn::ShiftRight<16>(hn::ShiftLeft<16>(weight)), hn::ShiftRight<16>(hn::ShiftLeft<16>(sample)));
    const auto high = hn::Mul(hn::ShiftRight<16>(weight), hn::ShiftRight<16>(sample));
    return hn::Add(sum, hn::Add(low, high));
#endif
}

HWY_INLINE hn::Vec<WideShort> BroadcastPair(const std::int16_t* samples) {
    std::int32_t pair;
    std::memcpy(&pair, samples, sizeof pair);
    return hn::BitCast(WideShort(), hn::Set(WideInt(), pair));
}

// The resonators of one vector of bands, in registers for a run of blocks.
struct Resonators {
    hn::Vec<Wide> stateA, stateB, energy;
    const hn::Vec<Wide> feedAA, feedAB, feedBA, feedBB, inputAR, inputAI, inputBR, inputBI, decay;

    HWY_INLINE void Step(hn::Vec<Wide> re, hn::Vec<Wide> im) {
        const auto nextA =
            hn::Add(hn::Add(hn::Add(hn::Mul(stateA, feedAA), hn::Mul(stateB, feedAB)), hn::Mul(re, inputAR)),
                    hn::Mul(im, inputAI));
        const auto nextB =
            hn::Add(hn::Add(hn::Add(hn::Mul(stateA, feedBA), hn::Mul(stateB, feedBB)), hn::Mul(re, inputBR)),
                    hn::Mul(im, inputBI));
        stateA = nextA;
        stateB = nextB;
        energy = hn::Add(hn::Add(hn::Mul(energy, decay), hn::Mul(nextA, nextA)), hn::Mul(nextB, nextB));
    }
};

HWY_INLINE Resonators LoadResonators(const ResonatorBank& bank, std::int32_t i) {
    const Wide d;
    return {hn::Load(d, bank.stateA + i),  hn::Load(d, bank.stateB + i),  hn::Load(d, bank.energy + i),
            hn::Load(d, bank.feedAA + i),  hn::Load(d, bank.feedAB + i),  hn::Load(d, bank.feedBA + i),
            hn::Load(d, bank.feedBB + i),  hn::Load(d, bank.inputAR + i), hn::Load(d, bank.inputAI + i),
            hn::Load(d, bank.inputBR + i), hn::Load(d, bank.inputBI + i), hn::Set(d, bank.blockDecay)};
}

HWY_INLINE void StoreResonators(const ResonatorBank& bank, std::int32_t i, const Resonators& resonators) {
    const Wide d;
    hn::Store(resonators.stateA, d, bank.stateA + i);
    hn::Store(resonators.stateB, d, bank.stateB + i);
    hn::Store(resonators.energy, d, bank.energy + i);
}

// With weights of 16 bits, two samples a row: rows of them for the real part, and for the imaginary part one
// less where the newest sample, which has no imaginary weight, stands alone in its row. A block length known
// to the compiler lets it unroll; 0 leaves it open.
struct PairRows {
    std::int32_t length;
    std::int32_t re = (length + 1) / 2;
    std::int32_t im = length / 2;
};

// Steps `vectors` vectors of bands side by side, from band i on. A resonator's step is a chain of dependent
// operations, and one chain alone leaves the machine waiting.
template <std::int32_t fixedLength, std::int32_t vectors>
HWY_INLINE void FoldAndStep(const ResonatorBank& bank, const std::int16_t* block, std::int32_t blocks,
                            std::int32_t i) {
    const WideInt di;
    const WideShort ds;
    const Wide d;
    const auto lanes = static_cast<std::int32_t>(hn::Lanes(di));
    const PairRows rows{fixedLength != 0 ? fixedLength : bank.blockLength};
    Resonators first = LoadResonators(bank, i);
    Resonators last = LoadResonators(bank, i + (vectors - 1) * lanes);
    for (std::int32_t n = 0; n < blocks; ++n, block += rows.length) {
        hn::Vec<WideInt> re[vectors], im[vectors];
        for (std::int32_t v = 0; v < vectors; ++v) re[v] = im[v] = hn::Zero(di);
        for (std::int32_t p = 0; p < rows.re; ++p) {
            const auto pair = BroadcastPair(block + 2 * p);
            for (std::int32_t v = 0; v < vectors; ++v) {
                const std::int32_t at = 2 * (p * bank.stride + i + v * lanes);
                re[v] = AddPair(re[v], hn::Load(ds, bank.pairsRe + at), pair);
                if (p < rows.im) im[v] = AddPair(im[v], hn::Load(ds, bank.pairsIm + at), pair);
            }
        }
        first.Step(hn::ConvertTo(d, re[0]), hn::ConvertTo(d, im[0]));
        if (vectors == 2) last.Step(hn::ConvertTo(d, re[vectors - 1]), hn::ConvertTo(d, im[vectors - 1]));
    }
    StoreResonators(bank, i, first);
    if (vectors == 2) StoreResonators(bank, i + lanes, last);
}

#if HWY_TARGET == HWY_AVX2

// The same with the fold of some blocks first, whose weights then stay in registers.
constexpr std::int32_t blocksAtOnce = 21;  // half a frame
struct alignas(64) Folded {
    float re[blocksAtOnce * 8], im[blocksAtOnce * 8];
};

template <std::int32_t rows>
HWY_INLINE void Fold(const std::int16_t* weights, std::int32_t stride, const std::int16_t* block,
                     std::int32_t length, std::int32_t blocks, float* sums) {
    const Wide d;
    hn::Vec<WideShort> kept[rows];
    for (std::int32_t p = 0; p < rows; ++p) kept[p] = hn::Load(WideShort(), weights + 2 * p * stride);
    for (std::int32_t n = 0; n < blocks; ++n, block += length) {
        auto sum = hn::Zero(WideInt());
        for (std::int32_t p = 0; p < rows; ++p) sum = AddPair(sum, kept[p], BroadcastPair(block + 2 * p));
        hn::Store(hn::ConvertTo(d, sum), d, sums + 8 * n);
    }
}

template <std::int32_t fixedLength, std::int32_t vectors>
HWY_INLINE void FoldThenStep(const ResonatorBank& bank, const std::int16_t* block, std::int32_t blocks,
                             std::int32_t i) {
    const Wide d;
    constexpr PairRows rows{fixedLength};
    Folded folded[vectors];
    while (blocks > 0) {
        const std::int32_t run = HWY_MIN(blocks, blocksAtOnce);
        for (std::int32_t v = 0; v < vectors; ++v) {
            const std::int32_t at = 2 * (i + 8 * v);
            Fold<rows.re>(bank.pairsRe + at, bank.stride, block, rows.length, run, folded[v].re);
            Fold<rows.im>(bank.pairsIm + at, bank.stride, block, rows.length, run, folded[v].im);
        }
        Resonators first = LoadResonators(bank, i);
        Resonators last = LoadResonators(bank, i + 8 * (vectors - 1));
        for (std::int32_t n = 0; n < 8 * run; n += 8) {
            first.Step(hn::Load(d, folded[0].re + n), hn::Load(d, folded[0].im + n));
            if (vectors == 2)
                last.Step(hn::Load(d, folded[vectors - 1].re + n), hn::Load(d, folded[vectors - 1].im + n));
        }
        StoreResonators(bank, i, first);
        if (vectors == 2) StoreResonators(bank, i + 8, last);
        blocks -= run;
        block += static_cast<std::ptrdiff_t>(run) * rows.length;
    }
}

// Two vectors together want more than 16 registers, a tenth more time at 44.1 kHz; long blocks are better
// folded first, a tenth less at 96 kHz.
template <std::int32_t fixedLength>
HWY_INLINE void StepPairs(const ResonatorBank& bank, const std::int16_t* samples, std::int32_t blocks) {
    std::int32_t i = 0;
    if constexpr (fixedLength > 12) {
        for (; i + 8 < bank.bands; i += 16) FoldThenStep<fixedLength, 2>(bank, samples, blocks, i);
        if (i < bank.bands) FoldThenStep<fixedLength, 1>(bank, samples, blocks, i);
    } else {
        for (; i < bank.bands; i += 8) FoldAndStep<fixedLength, 1>(bank, samples, blocks, i);
    }
}

#else

template <std::int32_t fixedLength>
HWY_INLINE void StepPairs(const ResonatorBank& bank, const std::int16_t* samples, std::int32_t blocks) {
    const auto lanes = static_cast<std::int32_t>(hn::Lanes(Wide()));
    std::int32_t i = 0;
    for (; i + lanes < bank.bands; i += 2 * lanes) FoldAndStep<fixedLength, 2>(bank, samples, blocks, i);
    if (i < bank.bands) FoldAndStep<fixedLength, 1>(bank, samples, blocks, i);
}

#endif

// With weights of 32 bits, as low rates need them.
HWY_INLINE void StepTaps(const ResonatorBank& bank, const std::int16_t* samples, std::int32_t blocks) {
    const WideInt di;
    const std::int32_t older = bank.blockLength - 1;
    for (std::int32_t i = 0; i < bank.bands; i += static_cast<std::int32_t>(hn::Lanes(di))) {
        Resonators resonators = LoadResonators(bank, i);
        const std::int16_t* block = samples;
        for (std::int32_t n = 0; n < blocks; ++n, block += bank.blockLength) {
            auto re = hn::Mul(hn::Load(di, bank.tapZero + i), hn::Set(di, block[older]));
            auto im = hn::Zero(di);
            for (std::int32_t k = 0; k < older; ++k) {
                const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(older - k - 1) * bank.stride + i;
                const auto sample = hn::Set(di, block[k]);
                re = hn::Add(re, hn::Mul(hn::Load(di, bank.tapsRe + at), sample));
                im = hn::Add(im, hn::Mul(hn::Load(di, bank.tapsIm + at), sample));
            }
            resonators.Step(hn::ConvertTo(Wide(), re), hn::ConvertTo(Wide(), im));
        }
        StoreResonators(bank, i, resonators);
    }
}

void StepBlocks(const ResonatorBank& bank, const std::int16_t* samples, std::int32_t blocks) {
    if (bank.pairsRe == nullptr) return StepTaps(bank, samples, blocks);
    switch (bank.blockLength) {
        case 11: return StepPairs<11>(bank, samples, blocks);  // 44.1 kHz
        case 12: return StepPairs<12>(bank, samples, blocks);  // 48 kHz
        case 22: return StepPairs<22>(bank, samples, blocks);  // 88.2 kHz
        case 24: return StepPairs<24>(bank, samples, blocks);  // 96 kHz
        default: return StepPairs<0>(bank, samples, blocks);
    }
}

// --- the frame ---

// From a mask of bands to flags.
template <typename Mask>
HWY_INLINE void StoreFlags(Mask mask, bool* flags) {
    const hn::RebindToUnsigned<Wide> bits;
    const auto ones = hn::ShiftRight<31>(hn::BitCast(bits, hn::VecFromMask(Wide(), mask)));
    const hn::Rebind<std::uint8_t, Wide> bytes;
    hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(WideInt(), ones)), bytes,
               reinterpret_cast<std::uint8_t*>(flags));
}

// The same test on all bands, the top one and what lies behind it included, where it finds nothing to rise
// to; only the top band's peak has to be taken back.
void FindPeaks(const PeakFlags& p) {
    const Wide d;
    const auto flags = static_cast<std::size_t>(PaddedBands(p.bands));
    std::memcpy(p.peakOlder, p.peakOld, flags);
    std::memcpy(p.peakOld, p.peakNow, flags);
    const auto ratio = hn::Set(d, p.peakRatio);
    for (std::int32_t j = 1; j < p.bands; j += static_cast<std::int32_t>(hn::Lanes(d))) {
        const auto below = hn::Load(d, p.energy + j - 1);
        const auto energy = hn::LoadU(d, p.energy + j);
        const auto above = hn::LoadU(d, p.energy + j + 1);
        const auto rising = hn::Lt(below, energy);
        const auto stands = hn::Lt(hn::Add(below, above), hn::Mul(energy, ratio));
        StoreFlags(rising, p.rising + j);
        StoreFlags(hn::And(hn::And(stands, rising), hn::Ge(energy, above)), p.peakNow + j);
    }
    p.peakNow[p.bands - 1] = false;
}

void LimitByPartials(const PartialLimit& limit) {
    const Wide d;
    const auto step = static_cast<std::int32_t>(hn::Lanes(d));
    const std::int32_t bands = limit.bands;
    const std::int32_t fullEnd = bands - 24;
    const float* const k = limit.coefficients;
    float* const amplitude = limit.amplitude;
    float* const cap = limit.levelCap;

    for (std::int32_t i = 0; i < bands; i += step)
        hn::Store(hn::Sqrt(hn::Load(d, limit.energy + i)), d, amplitude + i);

    // All three partials within the spectrum. The last vector runs past that range, into rows that are
    // computed anew below, and reads no further than the arrays' padding.
    const auto zero = hn::Zero(d);
    for (std::int32_t i = 0; i < fullEnd; i += step) {
        const auto a = hn::Load(d, amplitude + i);
        const auto shortfall = [&](Harmonic::Position factor, std::int32_t distance) HWY_ATTR {
            return hn::Add(hn::Mul(a, hn::Set(d, k[factor])), hn::LoadU(d, amplitude + i + distance));
        };
        const auto m =
            hn::Min(hn::Min(hn::Min(a, shortfall(Harmonic::Limit2, 12)), shortfall(Harmonic::Limit3, 19)),
                    shortfall(Harmonic::Limit4, 24));
        hn::Store(hn::IfThenElse(hn::Lt(m, zero), zero, hn::Mul(m, m)), d, cap + i);
    }
    std::int32_t i = fullEnd;
    for (; i < bands - 19; ++i) {
        const float a = amplitude[i];
        const float t2 = a * k[Harmonic::Limit2] + amplitude[i + 12];
        const float t3 = a * k[Harmonic::Limit3] + amplitude[i + 19];
        float m = t2 < a ? t2 : a;
        m = t3 < m ? t3 : m;
        cap[i] = m < 0.0F ? 0.0F : m * m;
    }
    for (; i < bands - 12; ++i) {
        const float a = amplitude[i];
        const float t = a * k[Harmonic::Limit2] + amplitude[i + 12];
        cap[i] = t < 0.0F ? 0.0F : t >= a ? limit.energy[i] : t * t;
    }
    for (; i < PaddedBands(bands); ++i) cap[i] = limit.energy[i];

    for (i = 0; i < fullEnd; i += step) {
        const auto term = [&](Harmonic::Position factor, std::int32_t distance) HWY_ATTR {
            return hn::Mul(hn::Set(d, k[factor]), hn::LoadU(d, cap + i + distance));
        };
        hn::Store(
            hn::Add(hn::Add(hn::Add(term(Harmonic::D4, 0), term(Harmonic::D4A, 12)), term(Harmonic::D4B, 19)),
                    term(Harmonic::D4C, 24)),
            d, limit.rhs + i);
    }
    for (i = fullEnd; i < bands - 19; ++i)
        limit.rhs[i] =
            k[Harmonic::D3] * cap[i] + k[Harmonic::D3A] * cap[i + 12] + k[Harmonic::D3B] * cap[i + 19];
    for (; i < bands - 12; ++i) limit.rhs[i] = k[Harmonic::D2] * cap[i] + k[Harmonic::D2A] * cap[i + 12];
    for (; i < bands; ++i) limit.rhs[i] = cap[i];
}

// In a file of its own, in the same namespaces.
void FitPartials(float* x, const float* rhs, const float* cap, const FitCoefficients& k, std::int32_t bands);

DetectorKernels Kernels() {
    return {hwy::TargetName(HWY_TARGET), StepBlocks, FindPeaks, LimitByPartials, FitPartials};
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace vectors
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vectors {

HWY_EXPORT(Kernels);

DetectorKernels ChosenKernels() {
    return HWY_DYNAMIC_DISPATCH(Kernels)();
}

}  // namespace vectors

DetectorKernels BestKernels() {
    return vectors::ChosenKernels();
}

#ifdef HWY_COMPILE_ONLY_STATIC  // one set, named on the compiler's command line: a build for another machine
std::vector<DetectorKernels> AllKernels() {
    return {PlainKernels(), BestKernels()};
}
#else
std::vector<DetectorKernels> AllKernels() {
    std::vector<DetectorKernels> all = {PlainKernels()};
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        const DetectorKernels set = BestKernels();
        if (set.stepBlocks != PlainKernels().stepBlocks) all.push_back(set);
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    return all;
}
#endif
#endif
