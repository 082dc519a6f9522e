// rooms: module
// What the open window costs its host: processor time of one idle call, at the host's usual pace, on a
// display without a screen, with the window at its own size and at three times that. `per_column_us` is the
// median of the calls that draw a column of the picture, some 20 a second.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <vector>

#include "tests/editor/editor_host.h"
#include "vst2/vendor_call.h"

namespace {

double ProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// All 84 bands on and an input level that comes and goes, or silence; the window's size in percent. The
// detector's flags and levels stand still; the picture runs.
void Idle(benchmark::State& state) {
    const DisplayServer display;
    EditorHost host;
    host.Call(effVendorSpecific, vendorCall, vendorWindowScale, nullptr,
              static_cast<float>(state.range(1)) / 100);
    if (!host.Open()) return state.SkipWithError("no window");
    TRealTimeTS107& detector = host.plugin.detector;
    for (int band = 0; band < detector.numBands; ++band) {
        detector.noteOn[band] = state.range(0) != 0;
        detector.separated[band] = state.range(0) != 0 ? 0.01F * static_cast<float>(1 + band % 7) : 0.0F;
    }
    host.plugin.noteRecorder.OnFrame();
    for (int i = 0; i < 30; ++i) host.Call(effEditIdle);  // the first pictures
    std::vector<double> columns;
    for ([[maybe_unused]] auto iteration : state) {
        std::this_thread::sleep_for(std::chrono::milliseconds(33));
        const float sample = state.range(0) != 0 && columns.size() % 2 == 0 ? 0.5F : 0.0F;
        host.plugin.inputMeter.Measure(&sample, 1);
        const float average = host.plugin.levelAverage;
        const double begin = ProcessorSeconds();
        host.Call(effEditIdle);
        const double cost = ProcessorSeconds() - begin;
        state.SetIterationTime(cost);
        if (host.plugin.levelAverage == average) continue;
        columns.push_back(cost);
    }
    std::sort(columns.begin(), columns.end());
    state.counters["per_column_us"] = columns.empty() ? 0 : 1e6 * columns[columns.size() / 2];
    state.counters["most_us"] = columns.empty() ? 0 : 1e6 * columns.back();
}
BENCHMARK(Idle)
    ->ArgNames({"bands_on", "percent"})
    ->ArgsProduct({{0, 1}, {100, 300}})
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
