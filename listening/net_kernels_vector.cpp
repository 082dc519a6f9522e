// The net's loops on many bands at a time, compiled once for each instruction set. Sums of whole numbers do
// not depend on their order, so every set gives the same bits.
#include <algorithm>
#include <cstring>

#include "listening/net_kernels.h"

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "listening/net_kernels_vector.cpp"

#include "hwy/foreach_target.h"  // includes this file again for each set
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace net_vectors {
namespace HWY_NAMESPACE {

// Below SSSE3 there is no rounding multiplication of 16 bits: the plain form serves as well.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128 || HWY_TARGET == HWY_SSE2

const NetKernels& Kernels() {
    return PlainNetKernels();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::CappedTag<std::int32_t, 16>;  // bands along the vector
using Pairs = hn::Repartition<std::int16_t, Wide>;
using Vec = hn::Vec<Wide>;
constexpr std::int32_t together = 4;  // outputs whose sums share each load of an input

// sum += the products of a pair of activations with a pair of weights.
HWY_INLINE Vec AddPair(Vec sum, hn::Vec<Pairs> activations, hn::Vec<Pairs> weights) {
#if HWY_TARGET == HWY_AVX3_DL
    // This set's multiply-add takes the sum along. The compiler does not count it to the set, so by name.
    __asm__("vpdpwssd %2, %1, %0" : "+v"(sum.raw) : "v"(activations.raw), "v"(weights.raw));
    return sum;
#elif HWY_ARCH_X86
    const Wide d;
    auto unused = hn::Zero(d);  // on this architecture the sum of adjacent products stays in its lane
    return hn::ReorderWidenMulAccumulate(d, activations, weights, sum, unused);
#else
    const Wide d;
    const auto x = hn::BitCast(d, activations);
    const auto w = hn::BitCast(d, weights);
    const auto low =
        hn::Mul(hn::ShiftRight<16>(hn::ShiftLeft<16>(x)), hn::ShiftRight<16>(hn::ShiftLeft<16>(w)));
    return hn::Add(sum, hn::Add(low, hn::Mul(hn::ShiftRight<16>(x), hn::ShiftRight<16>(w))));
#endif
}

HWY_INLINE hn::Vec<Pairs> BroadcastPair(const std::int16_t* weights) {
    std::int32_t pair;
    std::memcpy(&pair, weights, sizeof pair);
    return hn::BitCast(Pairs(), hn::Set(Wide(), pair));
}

// The sums of four outputs, `first` and on, for as many vectors of bands from `band` on.
template <int vectors>
struct Sums {
    Vec of[together][vectors];

    HWY_INLINE Sums(const NetLayer& layer, const std::int16_t* const* rows, std::int32_t first,
                    std::int32_t band) {
        const Wide d;
        const auto lanes = static_cast<std::int32_t>(hn::Lanes(d));
        for (int c = 0; c < together; ++c)
            for (int v = 0; v < vectors; ++v)
                of[c][v] = layer.biasByBand
                               ? hn::LoadU(d, layer.bias + (first + c) * paddedNetBands + band + v * lanes)
                               : hn::Set(d, layer.bias[first + c]);
        const std::int16_t* weights = layer.weights + 2 * first * layer.inputs;
        for (std::int32_t i = 0; i < layer.inputs; ++i, weights += 2 * together) {
            hn::Vec<Pairs> x[vectors];
            for (int v = 0; v < vectors; ++v) x[v] = hn::LoadU(Pairs(), rows[i] + 2 * (band + v * lanes));
            for (int c = 0; c < together; ++c) {
                const auto w = BroadcastPair(weights + 2 * c);
                for (int v = 0; v < vectors; ++v) of[c][v] = AddPair(of[c][v], x[v], w);
            }
        }
    }
};

// Calls use(Sums, first output, first band) for all outputs and bands.
template <typename Use>
HWY_INLINE void ForAll(const NetLayer& layer, const std::int16_t* const* rows, Use use) {
    const auto lanes = static_cast<std::int32_t>(hn::Lanes(Wide()));
    const std::int32_t end = (netBands + lanes - 1) / lanes * lanes;
    for (std::int32_t first = 0; first < layer.outputs; first += together) {
        std::int32_t band = 0;
        for (; band + 3 * lanes <= end; band += 3 * lanes)
            use(Sums<3>(layer, rows, first, band), first, band);
        if (band + 2 * lanes <= end)
            use(Sums<2>(layer, rows, first, band), first, band);
        else if (band < end)
            use(Sums<1>(layer, rows, first, band), first, band);
    }
}

HWY_INLINE Vec Cut(Vec sum, const NetLayer& layer, std::int32_t output) {
    const Wide d;
    const Vec shifted = hn::ShiftRightSame(sum, layer.shift[output]);
    return hn::Min(hn::Max(shifted, hn::Set(d, layer.lowest)), hn::Set(d, 32767));
}

void Apply(const NetLayer& layer, const std::int16_t* const* rows, std::int16_t* const* out) {
    const auto store = [&](const auto& sums, std::int32_t first, std::int32_t band) {
        const Wide d;
        const Pairs pairs;
        constexpr int vectors = sizeof(sums.of[0]) / sizeof(sums.of[0][0]);
        const auto lanes = static_cast<std::int32_t>(hn::Lanes(d));
        for (int c = 0; c < together; c += 2) {
            const auto scale = BroadcastPair(layer.scale + first + c);
            for (int v = 0; v < vectors; ++v) {
                const Vec low = hn::And(Cut(sums.of[c][v], layer, first + c), hn::Set(d, 0xFFFF));
                const Vec high = hn::ShiftLeft<16>(Cut(sums.of[c + 1][v], layer, first + c + 1));
                const auto both = hn::BitCast(pairs, hn::Or(low, high));
                hn::Store(hn::MulFixedPoint15(both, scale), pairs,
                          out[(first + c) / 2] + 2 * (band + v * lanes));
            }
        }
    };
    ForAll(layer, rows, store);
    for (std::int32_t pair = 0; pair < layer.outputs / 2; ++pair)
        std::fill(out[pair] + 2 * netBands, out[pair] + 2 * paddedNetBands, std::int16_t{0});
}

void Sum(const NetLayer& layer, const std::int16_t* const* rows, std::int32_t* out) {
    ForAll(layer, rows, [&](const auto& sums, std::int32_t first, std::int32_t band) {
        const Wide d;
        constexpr int vectors = sizeof(sums.of[0]) / sizeof(sums.of[0][0]);
        const auto lanes = static_cast<std::int32_t>(hn::Lanes(d));
        for (int c = 0; c < together; ++c)
            for (int v = 0; v < vectors; ++v)
                hn::Store(sums.of[c][v], d, out + (first + c) * paddedNetBands + band + v * lanes);
    });
}

const NetKernels& Kernels() {
    static const NetKernels kernels = {hwy::TargetName(HWY_TARGET), Apply, Sum};
    return kernels;
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace net_vectors
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace net_vectors {

HWY_EXPORT(Kernels);

const NetKernels& ChosenKernels() {
    return HWY_DYNAMIC_DISPATCH(Kernels)();
}

}  // namespace net_vectors

const NetKernels& BestNetKernels() {
    return net_vectors::ChosenKernels();
}

#ifdef HWY_COMPILE_ONLY_STATIC  // one set, named on the compiler's command line: a build for another machine
std::vector<NetKernels> AllNetKernels() {
    return {PlainNetKernels(), BestNetKernels()};
}
#else
std::vector<NetKernels> AllNetKernels() {
    std::vector<NetKernels> all = {PlainNetKernels()};
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        const NetKernels& set = BestNetKernels();
        if (set.apply != PlainNetKernels().apply) all.push_back(set);
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    return all;
}
#endif
#endif
