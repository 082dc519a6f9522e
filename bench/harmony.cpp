// rooms: harmony
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "harmony/chord.h"

namespace {

// Sets of bands as they may sound together: different ones out of the detector's 84, in ascending order.
std::vector<std::vector<std::uint32_t>> Bands(std::size_t count) {
    std::minstd_rand random(1);
    std::vector<std::uint32_t> all;
    for (std::uint32_t band = 0; band < 84; ++band) all.push_back(band);
    std::vector<std::vector<std::uint32_t>> sets(256);
    for (auto& set : sets) std::sample(all.begin(), all.end(), std::back_inserter(set), count, random);
    return sets;
}

// One update of the chord listener: from the bands that are on to the text.
void Naming(benchmark::State& state) {
    const auto sets = Bands(static_cast<std::size_t>(state.range(0)));
    std::size_t next = 0;
    for (auto _ : state) {
        const auto& set = sets[next++ % sets.size()];
        benchmark::DoNotOptimize(chordText(chordOfPitches(set)));
    }
}
BENCHMARK(Naming)->Arg(1)->Arg(3)->Arg(4)->Arg(7)->Arg(11)->Unit(benchmark::kMicrosecond);

}  // namespace
