// Plays music with every output on, and has the instructions of each block counted from outside: one dump of
// the counter a block, in the order of the blocks, which begins with the first that has signal.
//   block_costs BLOCKS
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numbers>
#include <random>
#include <vector>

#include "devices/midi_out_devices.h"
#include "module/plugin_entry.h"
#include "plugin/gui_plugin.h"

namespace {

constexpr std::int32_t rate = 48000;
constexpr std::size_t block = 64;

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? rate : 0;
}

class OneDevice : public MidiOutDevices {
    std::uint32_t midiOutGetNumDevs() override { return 1; }
    std::uint32_t midiOutGetDevCapsW(std::uint32_t, MidiOutCaps&) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t) override {
        return handle = 1, MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutClose(MidiOutHandle) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutShortMsg(MidiOutHandle, std::uint32_t) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutReset(MidiOutHandle) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutLongMsg(MidiOutHandle, const MidiLongMessage&) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutGetErrorTextW(std::uint32_t, MidiOutErrorTextW&) override {
        return MMSYSERR_NOERROR;
    }
    SystemVersion GetVersionExA() override { return {10, 0}; }
} device;

// A new chord of six random notes with three partials each every 100 ms, which is how often a chord is named.
std::vector<float> Music(std::size_t samples) {
    std::vector<float> audio(samples, 0.001F);
    std::minstd_rand random(1);
    for (std::size_t begin = 0; begin < samples; begin += rate / 10)
        for (int note = 0; note < 6; ++note) {
            const double hertz = 65.4 * std::exp2(static_cast<double>(random() % 60) / 12);
            for (int partial = 1; partial <= 3; ++partial)
                for (std::size_t i = begin; i < std::min(samples, begin + rate / 10); ++i)
                    audio[i] += static_cast<float>(
                        0.05 / partial *
                        std::sin(2 * std::numbers::pi * hertz * partial * static_cast<double>(i) / rate));
        }
    return audio;
}

}  // namespace

int main(int count, char** words) {
    const std::size_t blocks = count > 1 ? static_cast<std::size_t>(std::atoll(words[1])) : 0;
    SubstituteMidiOut(&device);
    AEffect* const effect = OpenPlugin(Host);
    if (effect == nullptr || blocks == 0) return 1;
    effect->setParameter(effect, paramPolyphony, 1);
    for (const auto output : {paramOutputToHost, paramDeviceEnabled, paramChordsEnabled})
        effect->setParameter(effect, output, 1);
    dynamic_cast<CORVAguivst&>(*static_cast<AudioEffect*>(effect->object)).startRecording();
    std::vector<float> audio = Music(blocks * block), out(block), silence(block);
    float* to = out.data();
    float* quiet = silence.data();
    effect->processReplacing(effect, &quiet, &to, block);  // makes the room for a block
    CALLGRIND_START_INSTRUMENTATION;
    for (std::size_t i = 0; i < blocks; ++i) {
        float* in = audio.data() + i * block;
        CALLGRIND_ZERO_STATS;
        effect->processReplacing(effect, &in, &to, block);
        CALLGRIND_DUMP_STATS;
    }
    CALLGRIND_STOP_INSTRUMENTATION;
    effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    return 0;
}
