// rooms: listening
// Both ears together on one core, as a multiple of real time, and the net alone with each instruction set.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <string>

#include "listening/refined_detector.h"
#include "tests/engine/signals.h"

namespace {

constexpr std::size_t blockSamples = 512;

// One second of music per iteration. The inner detector hears with whatever the machine has best, but for the
// names given.
void BothEars(benchmark::State& state, int rate, const std::string& set) {
    TRealTimeTS107 inner(rate, 45, netBands);
    NetKernels kernels = BestNetKernels();
    for (const DetectorKernels& of : AllKernels())
        if (of.name == set) inner.kernels = of;
    for (const NetKernels& of : AllNetKernels())
        if (of.name == set) kernels = of;
    const auto refined = std::make_unique<TRefinedDetector>(inner, TRefinedDetector::Look::live, kernels);
    inner.handler = refined.get();
    inner.stepsByFrame = true;
    inner.SetTuningEnabled(false);  // as the plug-in has it
    inner.SetEqualizerEnabled(true);
    inner.SetFloorDb(-35);
    inner.SetRelativeThreshold(0.13F);
    const Pcm audio = Music(rate, 1);
    for ([[maybe_unused]] auto iteration : state) {
        for (std::size_t at = 0; at < audio.size(); at += blockSamples)
            inner.Process(&audio[at], Bytes(std::min(blockSamples, audio.size() - at)));
        benchmark::DoNotOptimize(refined->bandOn[45]);
        benchmark::ClobberMemory();
    }
    state.counters["x_real_time"] = benchmark::Counter(1, benchmark::Counter::kIsIterationInvariantRate);
}

// One second of frames per iteration.
void NetAlone(benchmark::State& state, const NetKernels& kernels) {
    const auto net = std::make_unique<EarNet>(kernels);
    EarFeatures features;
    const float silence[netBands] = {};
    for ([[maybe_unused]] auto iteration : state)
        for (int frame = 0; frame < 100; ++frame) net->Step(features.Step(silence));
    state.counters["x_real_time"] = benchmark::Counter(1, benchmark::Counter::kIsIterationInvariantRate);
}

[[maybe_unused]] const bool setsAreListed = [] {
    for (const NetKernels& kernels : AllNetKernels()) {
        const std::string name(kernels.name);
        for (const int rate : {44100, 48000, 96000})
            benchmark::RegisterBenchmark(("both/" + name + "/" + std::to_string(rate)).c_str(),
                                         [=](benchmark::State& state) { BothEars(state, rate, name); });
        benchmark::RegisterBenchmark(("net/" + name).c_str(),
                                     [=](benchmark::State& state) { NetAlone(state, kernels); });
    }
    return true;
}();

}  // namespace
