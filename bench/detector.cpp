// rooms: engine
// The detector alone, on one core, as a multiple of real time, and its plain restatement beside it.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

#include "engine/real_time_detector.h"
#include "tests/engine/plain_detector.h"
#include "tests/engine/signals.h"

namespace {

constexpr std::size_t blockSamples = 512;

// One second of sound per iteration, in blocks of a usual host.
template <typename Detector>
void Run(benchmark::State& state, const Pcm& audio, int rate, const DetectorKernels* kernels = nullptr) {
    Detector detector(rate, 45, 84);
    if constexpr (requires { detector.kernels; })
        if (kernels != nullptr) detector.kernels = *kernels;
    if constexpr (requires { detector.stepsByFrame; }) detector.stepsByFrame = true;
    detector.SetTuningEnabled(false);  // as the plug-in has it
    detector.SetEqualizerEnabled(true);
    detector.SetFloorDb(-35);
    detector.SetRelativeThreshold(0.13F);
    for ([[maybe_unused]] auto iteration : state) {
        for (std::size_t at = 0; at < audio.size(); at += blockSamples)
            detector.Process(&audio[at], Bytes(std::min(blockSamples, audio.size() - at)));
        benchmark::DoNotOptimize(detector.energy[45]);
        benchmark::ClobberMemory();
    }
    const double seconds = static_cast<double>(audio.size()) / rate;
    state.counters["x_real_time"] =
        benchmark::Counter(seconds, benchmark::Counter::kIsIterationInvariantRate);
}

template <typename Detector>
void OnMusic(benchmark::State& state) {
    const int rate = static_cast<int>(state.range(0));
    Run<Detector>(state, Music(rate, 1), rate);
}

template <typename Detector>
void OnNoise(benchmark::State& state) {
    const int rate = static_cast<int>(state.range(0));
    Run<Detector>(state, Shorts(Noise(rate, 1)), rate);
}

// The inner loops of each instruction set that this machine has.
[[maybe_unused]] const bool setsAreListed = [] {
    for (const DetectorKernels& kernels : AllKernels())
        for (const int rate : {44100, 48000, 96000})
            benchmark::RegisterBenchmark(
                ("set/" + std::string(kernels.name) + "/" + std::to_string(rate)).c_str(),
                [=](benchmark::State& state) { Run<TRealTimeTS107>(state, Music(rate, 1), rate, &kernels); });
    return true;
}();

}  // namespace

BENCHMARK(OnMusic<TRealTimeTS107>)->Name("detector/music")->Arg(44100)->Arg(48000)->Arg(96000);
BENCHMARK(OnNoise<TRealTimeTS107>)->Name("detector/noise")->Arg(44100)->Arg(48000)->Arg(96000);
BENCHMARK(OnMusic<PlainDetector>)->Name("plain/music")->Arg(44100)->Arg(48000)->Arg(96000);
BENCHMARK(OnNoise<PlainDetector>)->Name("plain/noise")->Arg(44100)->Arg(48000)->Arg(96000);
