// The fit of the partials, four bands at a time; compiled once for each instruction set, as the other kernels
// are.
#include "engine/kernels.h"

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels_fit.cpp"

#include "hwy/foreach_target.h"  // includes this file again for each set
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace vectors {
namespace HWY_NAMESPACE {

// The sets for which the other kernels are the plain ones need no fit of their own.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SSE2

namespace hn = hwy::HWY_NAMESPACE;

using Four = hn::FixedTag<float, 4>;

// A row depends on rows at least five away, so four rows go at once; and a sweep reads no further than 27
// rows ahead of its four, so the next sweep may follow seven groups behind it. With 21 groups of four, three
// sweeps are under way at any time, and the next three follow without a gap. Each is a chain of dependent
// operations: three of them keep the machine busy.
constexpr std::int32_t groups = 21;
constexpr std::int32_t fittedBands = 4 * groups;
constexpr std::int32_t fullGroups = (fittedBands - 24) / 4;
constexpr std::int32_t tailGroups = groups - fullGroups;
constexpr std::int32_t lag = 7;  // groups between two sweeps
static_assert(3 * lag == groups && 4 * lag >= 27 + 1);

// The coefficients of the rows near the top, four rows a group. A term that a row lacks has coefficient 0
// (or, in the pair of the seventh, a cleared upper neighbour): all values are at least 0, so adding 0 changes
// no bit.
struct alignas(64) Tail {
    float x5[4], x7[4], x7Upper[4], x12[4], a[4], b[4], c[4];
};

void FillTail(const FitCoefficients& k, Tail* tail) {
    for (std::int32_t row = 4 * fullGroups; row < fittedBands; ++row) {
        Tail& t = tail[row / 4 - fullGroups];
        const std::int32_t r = row % 4;
        const bool two = row < fittedBands - 19;
        const bool one = !two && row < fittedBands - 12;
        t.x5[r] = two ? k.two.x5 : 0;
        t.x7[r] = two ? k.two.x7 : one ? k.one.x7 : 0;
        t.x7Upper[r] = two ? 1.0F : 0.0F;
        t.x12[r] = two ? k.two.x12 : one ? k.one.x12 : k.none.a;
        t.a[r] = two ? k.two.a : one ? k.one.a : 0;
        t.b[r] = two ? k.two.b : one ? k.one.b : k.none.b;
        t.c[r] = two ? k.two.c : one ? k.one.c : k.none.c;
    }
}

struct Fit {
    float* x;
    const float* rhs;
    const float* cap;
    const Tail* tail;
    hn::Vec<Four> x5, x7, x12, b, c;
};

// One of the three sweeps under way: its last two groups, from which the next takes its nearest neighbours
// without a detour through memory.
struct Sweep {
    hn::Vec<Four> last, beforeLast;
};

// value < 0 ? 0 : value, then > cap ? cap : value. Where neither holds the value stays as it is, a zero of
// either sign among them; on this architecture minimum and maximum do so when the value is their second
// operand.
HWY_INLINE hn::Vec<Four> Clamp(hn::Vec<Four> value, hn::Vec<Four> cap) {
    const auto zero = hn::Zero(Four());
#if HWY_ARCH_X86
    return hn::Min(cap, hn::Max(zero, value));
#else
    const auto positive = hn::IfThenElse(hn::Lt(value, zero), zero, value);
    return hn::IfThenElse(hn::Gt(positive, cap), cap, positive);
#endif
}

// The same but for a zero's sign, by the bits as integers: at one cycle instead of four for each of the two
// operations, a quarter of the fit's time. No later sum depends on the sign of a zero, so only the last
// sweep's matters.
HWY_INLINE hn::Vec<Four> ClampQuickly(hn::Vec<Four> value, hn::Vec<Four> cap) {
    const hn::RebindToSigned<Four> di;
    const auto positive = hn::Max(hn::BitCast(di, value), hn::Zero(di));
    return hn::BitCast(Four(), hn::Min(positive, hn::BitCast(di, cap)));
}

template <bool last>
HWY_INLINE void Finish(const Fit& fit, Sweep& sweep, std::int32_t row, hn::Vec<Four> cross) {
    const Four d;
    const auto value = hn::Sub(hn::LoadU(d, fit.rhs + row), cross);
    const auto cap = hn::LoadU(d, fit.cap + row);
    constexpr bool exact = last || HWY_TARGET == HWY_SSSE3;  // which has no such operations
    const auto clamped = exact ? Clamp(value, cap) : ClampQuickly(value, cap);
    hn::StoreU(clamped, d, fit.x + row);
    sweep.beforeLast = sweep.last;
    sweep.last = clamped;
}

template <bool last>
HWY_INLINE void FullGroup(const Fit& fit, Sweep& sweep, std::int32_t group) {
    const Four d;
    const std::int32_t row = 4 * group;
    const float* const p = fit.x + row;
    const auto below5 = hn::CombineShiftRightBytes<12>(d, sweep.last, sweep.beforeLast);
    const auto below7 = hn::CombineShiftRightBytes<4>(d, sweep.last, sweep.beforeLast);
    auto cross = hn::Mul(fit.x5, hn::Add(below5, hn::LoadU(d, p + 5)));
    cross = hn::Add(cross, hn::Mul(fit.x7, hn::Add(below7, hn::LoadU(d, p + 7))));
    cross = hn::Add(cross, hn::Mul(fit.x12, hn::Add(hn::LoadU(d, p - 12), hn::LoadU(d, p + 12))));
    cross = hn::Add(cross, hn::Mul(fit.b, hn::Add(hn::LoadU(d, p - 19), hn::LoadU(d, p + 19))));
    cross = hn::Add(cross, hn::Mul(fit.c, hn::Add(hn::LoadU(d, p - 24), hn::LoadU(d, p + 24))));
    Finish<last>(fit, sweep, row, cross);
}

template <bool last>
HWY_INLINE void TailGroup(const Fit& fit, Sweep& sweep, std::int32_t group) {
    const Four d;
    const std::int32_t row = 4 * group;
    const float* const p = fit.x + row;
    const Tail& t = fit.tail[group - fullGroups];
    const auto below5 = hn::CombineShiftRightBytes<12>(d, sweep.last, sweep.beforeLast);
    const auto below7 = hn::CombineShiftRightBytes<4>(d, sweep.last, sweep.beforeLast);
    const auto above7 = hn::Mul(hn::LoadU(d, p + 7), hn::Load(d, t.x7Upper));
    auto cross = hn::Mul(hn::Load(d, t.x5), below5);
    cross = hn::Add(cross, hn::Mul(hn::Load(d, t.x7), hn::Add(below7, above7)));
    cross = hn::Add(cross, hn::Mul(hn::Load(d, t.x12), hn::LoadU(d, p - 12)));
    cross = hn::Add(cross, hn::Mul(hn::Load(d, t.a), hn::LoadU(d, p + 12)));
    cross = hn::Add(cross, hn::Mul(hn::Load(d, t.b), hn::Add(hn::LoadU(d, p - 19), hn::LoadU(d, p + 19))));
    cross = hn::Add(cross, hn::Mul(hn::Load(d, t.c), hn::LoadU(d, p - 24)));
    Finish<last>(fit, sweep, row, cross);
}

// Seven groups of one sweep: from 0, from 7, or from 14, where all but the first lie near the top.
constexpr std::int32_t resting = -1;

template <std::int32_t start, bool last = false>
HWY_INLINE void Group(const Fit& fit, Sweep& sweep, std::int32_t step) {
    if constexpr (start == 2 * lag)
        TailGroup<last>(fit, sweep, start + step);
    else if constexpr (start != resting)
        FullGroup<last>(fit, sweep, start + step);
}

template <std::int32_t start, bool last = false>
HWY_INLINE void FirstGroup(const Fit& fit, Sweep& sweep) {
    if constexpr (start == 0) sweep.last = sweep.beforeLast = hn::Zero(Four());
    if constexpr (start != resting) FullGroup<last>(fit, sweep, start);
}

template <std::int32_t startA, std::int32_t startB, std::int32_t startC, bool lastIsA = false>
HWY_INLINE void Phase(const Fit& fit, Sweep& a, Sweep& b, Sweep& c) {
    static_assert(fullGroups == 2 * lag + 1);
    FirstGroup<startA, lastIsA>(fit, a);
    FirstGroup<startB>(fit, b);
    FirstGroup<startC>(fit, c);
    for (std::int32_t step = 1; step < lag; ++step) {
        Group<startA, lastIsA>(fit, a, step);
        Group<startB>(fit, b, step);
        Group<startC>(fit, c, step);
    }
}

void FitPartials(float* x, const float* rhs, const float* cap, const FitCoefficients& k, std::int32_t bands) {
    if (bands != fittedBands) return plain::FitPartials(x, rhs, cap, k, bands);
    const Four d;
    Tail tail[tailGroups];
    FillTail(k, tail);
    const Fit fit{x,
                  rhs,
                  cap,
                  tail,
                  hn::Set(d, k.full.x5),
                  hn::Set(d, k.full.x7),
                  hn::Set(d, k.full.x12),
                  hn::Set(d, k.full.b),
                  hn::Set(d, k.full.c)};
    Sweep a{hn::Zero(d), hn::Zero(d)};  // sweeps 1, 4, 7 and 10
    Sweep b = a;                        // 2, 5 and 8
    Sweep c = a;                        // 3, 6 and 9
    static_assert(fitSweeps == 10);
    Phase<0, resting, resting>(fit, a, b, c);
    Phase<lag, 0, resting>(fit, a, b, c);
    for (int round = 0; round < 2; ++round) {
        Phase<2 * lag, lag, 0>(fit, a, b, c);
        Phase<0, 2 * lag, lag>(fit, a, b, c);
        Phase<lag, 0, 2 * lag>(fit, a, b, c);
    }
    Phase<2 * lag, lag, 0>(fit, a, b, c);
    Phase<0, 2 * lag, lag, true>(fit, a, b, c);
    Phase<lag, resting, 2 * lag, true>(fit, a, b, c);
    Phase<2 * lag, resting, resting, true>(fit, a, b, c);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace vectors
HWY_AFTER_NAMESPACE();
