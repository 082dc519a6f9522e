// rooms: base
// What the machine could do at best: the multiply-adds that the detector needs, two of 16 bits a sample and
// band, from registers, and nothing else. No loading of weights, no resonators, no frames.
#include <benchmark/benchmark.h>
#if defined(__x86_64__)
#include <immintrin.h>

namespace {

constexpr int rounds = 1000, sums = 10;  // as many sums as it takes to hide an operation's latency

void Count(benchmark::State& state, int products) {
    const double each = static_cast<double>(rounds) * sums * products;
    state.counters["multiply_adds"] = benchmark::Counter(each, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["x_real_time"] =
        benchmark::Counter(each / (2.0 * 84 * static_cast<double>(state.range(0))),
                           benchmark::Counter::kIsIterationInvariantRate);
}

__attribute__((target("avx2"))) void Avx2(benchmark::State& state) {
    if (!__builtin_cpu_supports("avx2")) return state.SkipWithError("not on this machine");
    __m256i sum[sums];
    for (__m256i& one : sum) one = _mm256_setzero_si256();
    __m256i weights = _mm256_set1_epi16(3), samples = _mm256_set1_epi16(5);
    for ([[maybe_unused]] auto iteration : state)
        for (int round = 0; round < rounds; ++round) {
            __asm__ volatile("" : "+x"(weights), "+x"(samples));  // anew each time
#pragma GCC unroll 10
            for (__m256i& one : sum) one = _mm256_add_epi32(one, _mm256_madd_epi16(weights, samples));
        }
    for (__m256i& one : sum) benchmark::DoNotOptimize(one);
    Count(state, 16);
}

__attribute__((target("avx512f,avx512bw,avx512vnni"))) void Vnni(benchmark::State& state) {
    if (!__builtin_cpu_supports("avx512vnni")) return state.SkipWithError("not on this machine");
    __m512i sum[sums];
    for (__m512i& one : sum) one = _mm512_setzero_si512();
    __m512i weights = _mm512_set1_epi16(3), samples = _mm512_set1_epi16(5);
    for ([[maybe_unused]] auto iteration : state)
        for (int round = 0; round < rounds; ++round) {
            __asm__ volatile("" : "+v"(weights), "+v"(samples));
#pragma GCC unroll 10
            for (__m512i& one : sum) one = _mm512_dpwssd_epi32(one, weights, samples);
        }
    for (__m512i& one : sum) benchmark::DoNotOptimize(one);
    Count(state, 32);
}

BENCHMARK(Avx2)->Name("floor/AVX2")->Arg(44100)->Arg(48000)->Arg(96000);
BENCHMARK(Vnni)->Name("floor/AVX3_DL")->Arg(44100)->Arg(48000)->Arg(96000);

}  // namespace
#endif
