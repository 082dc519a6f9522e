// rooms: module
// The whole path of a block, as a host drives it: samples in, audio and events out. Times are given as
// multiples of real time: 100 x means that a second of audio costs 10 ms of one core.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

#include "module/plugin_entry.h"

namespace {

enum Signal { music, noise };

std::intptr_t sampleRate = 44100;  // what the host below answers, Hz
std::int64_t eventsSent = 0;

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    switch (opcode) {
        case audioMasterVersion: return 2400;
        case audioMasterGetSampleRate: return sampleRate;
        case audioMasterProcessEvents: return ++eventsSent, 0;
        default: return 0;
    }
}

// Two seconds. Music is four voices, each a tone of six partials that decays over its half second.
std::vector<float> Audio(Signal signal) {
    std::vector<float> audio(static_cast<std::size_t>(2 * sampleRate));
    std::minstd_rand random(1);
    if (signal == noise) {
        std::uniform_real_distribution<float> uniform(-0.7F, 0.7F);
        for (float& sample : audio) sample = uniform(random);
        return audio;
    }
    const auto note = static_cast<std::size_t>(sampleRate / 2);
    for (std::size_t begin = 0; begin < audio.size(); begin += note)
        for (int voice = 0; voice < 4; ++voice) {
            const double hertz = 55 * std::exp2(static_cast<double>(random() % 36) / 12 + voice * 0.5);
            for (int partial = 1; partial <= 6; ++partial) {
                const double step = 2 * std::numbers::pi * hertz * partial / static_cast<double>(sampleRate);
                for (std::size_t i = 0; i < std::min(note, audio.size() - begin); ++i) {
                    const double fade = std::exp(-4 * static_cast<double>(i) / static_cast<double>(note));
                    audio[begin + i] +=
                        static_cast<float>(0.12 / partial * fade * std::sin(step * static_cast<double>(i)));
                }
            }
        }
    return audio;
}

void BlockPath(benchmark::State& state) {
    const auto signal = static_cast<Signal>(state.range(0));
    const auto block = static_cast<std::int32_t>(state.range(1));
    sampleRate = static_cast<std::intptr_t>(state.range(2));
    eventsSent = 0;
    std::vector<float> in = Audio(signal),
                       out(static_cast<std::size_t>(block));  // of a host, whose buffers are warm
    AEffect* const effect = OpenPlugin(Host);
    if (effect == nullptr) return state.SkipWithError("the plug-in did not open");
    const std::size_t blocks = in.size() / static_cast<std::size_t>(block);
    std::size_t next = 0;
    for (auto step : state) {
        float* from = in.data() + next * static_cast<std::size_t>(block);
        float* to = out.data();
        effect->processReplacing(effect, &from, &to, block);
        benchmark::ClobberMemory();
        next = next + 1 == blocks ? 0 : next + 1;
    }
    effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    const double seconds = static_cast<double>(state.iterations()) * block / static_cast<double>(sampleRate);
    state.counters["x_real_time"] = benchmark::Counter(seconds, benchmark::Counter::kIsRate);
    state.counters["events_per_s"] = static_cast<double>(eventsSent) / seconds;
}
BENCHMARK(BlockPath)
    ->ArgNames({"noise", "block", "rate"})
    ->ArgsProduct({{music, noise}, {32, 64, 512}, {44100, 48000, 96000}});

// The heap that one instance holds after some audio, by the allocator's own count: of many at once, since it
// counts what it keeps at hand for the next small request as used.
void OneInstance(benchmark::State& state) {
    sampleRate = static_cast<std::intptr_t>(state.range(0));
    std::vector<float> audio = Audio(noise);
    std::vector<AEffect*> effects(64);
    const auto held = [] {
        const auto statistics = mallinfo2();
        return static_cast<double>(statistics.uordblks) + static_cast<double>(statistics.hblkhd);
    };
    double bytes = 0;
    for (auto step : state) {
        const double before = held();
        for (AEffect*& effect : effects) {
            effect = OpenPlugin(Host);
            for (std::size_t at = 0; at < static_cast<std::size_t>(sampleRate) / 8; at += 512) {
                float* block = audio.data() + at;
                effect->processReplacing(effect, &block, &block, 512);
            }
        }
        bytes = (held() - before) / static_cast<double>(effects.size());
        for (AEffect* const effect : effects) effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    }
    state.counters["heap_bytes"] = bytes;
}
BENCHMARK(OneInstance)->ArgName("rate")->Arg(44100)->Arg(48000)->Arg(96000)->Unit(benchmark::kMillisecond);

// Many instances in one process, each in turn for a block of 512, so that none finds its tables in the
// nearest cache. Told as the number that one core could carry in real time.
void ManyInstances(benchmark::State& state) {
    sampleRate = 44100;
    std::vector<float> in = Audio(music), out(512);
    std::vector<AEffect*> effects(static_cast<std::size_t>(state.range(0)));
    for (AEffect*& effect : effects) effect = OpenPlugin(Host);
    std::size_t at = 0;
    for (auto step : state) {
        float* from = in.data() + at;
        float* to = out.data();
        for (AEffect* const effect : effects) effect->processReplacing(effect, &from, &to, 512);
        at = at + 1024 <= in.size() ? at + 512 : 0;
    }
    for (AEffect* const effect : effects) effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    const double seconds = static_cast<double>(state.iterations()) * 512 / static_cast<double>(sampleRate);
    state.counters["instances_per_core"] =
        benchmark::Counter(seconds * static_cast<double>(effects.size()), benchmark::Counter::kIsRate);
}
BENCHMARK(ManyInstances)->ArgName("instances")->Arg(1)->Arg(500)->Unit(benchmark::kMillisecond);

}  // namespace
