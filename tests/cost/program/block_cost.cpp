// Plays music through the block path. The instructions of CountedSecond are counted from outside.
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "module/plugin_entry.h"

namespace {

constexpr std::int32_t rate = 44100;
constexpr std::int32_t block = 64;

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? rate : 0;
}

// Three seconds of struck, decaying triads with five partials a note.
std::vector<float> Music() {
    std::vector<float> audio(3 * rate);
    for (std::size_t i = 0; i < audio.size(); ++i) {
        const double time = static_cast<double>(i) / rate;
        const double struck = std::fmod(time, 0.5);
        double sum = 0.001;
        for (const double hertz : {130.81, 329.63, 392.0})
            for (int partial = 1; partial <= 5; ++partial)
                sum +=
                    std::sin(2 * std::numbers::pi * hertz * partial * time) / partial * std::exp(-3 * struck);
        audio[i] = static_cast<float>(0.1 * sum);
    }
    return audio;
}

}  // namespace

extern "C" __attribute__((noinline)) void CountedSecond(AEffect* effect, float* audio) {
    std::vector<float> out(block);
    for (std::int32_t at = 0; at + block <= rate; at += block) {
        float* in = audio + at;
        float* to = out.data();
        effect->processReplacing(effect, &in, &to, block);
    }
}

int main() {
    AEffect* const effect = OpenPlugin(Host);
    if (effect == nullptr) return 1;
    std::vector<float> audio = Music();
    for (std::int32_t at = 0; at + block <= rate; at += block) {  // a second to warm up
        float* in = audio.data() + at;
        effect->processReplacing(effect, &in, &in, block);
    }
    CountedSecond(effect, audio.data() + rate);
    effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    return 0;
}
