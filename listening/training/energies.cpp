// Reads 32-bit float samples, mono, from standard input and writes, for every frame of 10 ms, the energies of
// the 84 bands as the plug-in's own detector computes them: what the net is trained on is what it will be
// given.
//
//   listening_energies RATE < SAMPLES > ENERGIES
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "engine/real_time_detector.h"

namespace {

constexpr int referenceBand = 45, bands = 84;  // as in the plug-in
constexpr float fullScale = 30000.0F;          // the 16-bit value that the plug-in gives to a sample of 1

class TFrameWriter : public INoteHandler {
public:
    explicit TFrameWriter(TRealTimeTS107& heard) : detector(heard) {}
    void Attach(INoteDetector* /*detector*/) override {}
    void OnFrame() override {
        float frame[bands];
        for (int band = 0; band < bands; ++band) frame[band] = detector.energy[band];
        complete = std::fwrite(frame, sizeof frame, 1, stdout) == 1 && complete;
    }
    bool complete = true;

private:
    TRealTimeTS107& detector;
};

}  // namespace

int main(int count, char** words) {
    const int rate = count == 2 ? static_cast<int>(std::strtol(words[1], nullptr, 10)) : 0;
    if (rate < 8000) {
        std::fputs("usage: listening_energies RATE < SAMPLES > ENERGIES\n", stderr);
        return 2;
    }
    TRealTimeTS107 detector(rate, referenceBand, bands);
    detector.SetMonoEnabled(false);
    detector.SetTuningEnabled(false);
    TFrameWriter writer(detector);
    detector.handler = &writer;

    std::vector<float> samples(4096);
    std::vector<short> shorts(samples.size());
    while (const std::size_t got = std::fread(samples.data(), sizeof(float), samples.size(), stdin)) {
        for (std::size_t i = 0; i < got; ++i)
            shorts[i] = static_cast<short>(std::fmin(std::fmax(samples[i], -1.0F), 1.0F) * fullScale);
        detector.Process(shorts.data(), static_cast<unsigned>(got * sizeof(short)));
    }
    return writer.complete && std::fflush(stdout) == 0 ? 0 : 1;
}
