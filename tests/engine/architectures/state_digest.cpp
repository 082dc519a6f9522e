// Prints, per rate and signal, a digest of the detector's whole state after the signal.
#include <cstdio>
#include <string>
#include <vector>

#include "tests/engine/detector_state.h"
#include "tests/engine/signals.h"

namespace {

std::uint64_t Digest(const DetectorState& state) {
    std::uint64_t digest = 14695981039346656037U;  // FNV-1a
    for (const StateWord& word : state)
        for (int byte = 0; byte < 8; ++byte)
            digest = (digest ^ (word.bits >> 8 * byte & 0xFF)) * 1099511628211U;
    return digest;
}

}  // namespace

int main() {
    std::fprintf(stderr, "%s\n", BestKernels().name);
    for (const int rate : {8000, 11025, 16000, 22050, 32000, 44100, 48000, 88200, 96000, 176400, 192000}) {
        Pcm fading = Shorts(Sine(440, 1, rate, 0.1), 1);
        fading.resize(fading.size() + Samples(rate, 1));
        const std::vector<Pcm> signals = {Music(rate, 1, 20), Shorts(Noise(rate, 0.5)), Square(rate, 0.3, 50),
                                          Pcm(Samples(rate, 0.2), -32768), fading};
        for (std::size_t kind = 0; kind < signals.size(); ++kind) {
            TRealTimeTS107 detector(rate, 45, 84);
            detector.SetTuningEnabled(kind % 2 == 0);
            detector.SetFloorDb(-35);
            const Pcm& audio = signals[kind];
            for (std::size_t at = 0, length = 1; at < audio.size();
                 at += length, length = length * 7 % 701 + 1) {
                length = std::min(length, audio.size() - at);
                detector.Process(&audio[at], Bytes(length));
            }
            std::printf("%d %zu: %016llx\n", rate, kind,
                        static_cast<unsigned long long>(Digest(StateOf(detector))));
        }
    }
    return 0;
}
