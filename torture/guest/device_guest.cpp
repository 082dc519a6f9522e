// A host with the plug-in built in, so that it can put devices of its own beneath it. It plays to a device
// that is open, and leaves.
//
//   orva-device-guest WAY STATE
//
// WAY: exit, quick_exit, _exit or return. STATE: alive or audio (a thread is inside a block). To file 3 it
// writes "o" when a device opens, "s" when the first message is sent, "c" when one closes. It ends with 17.
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

#include "platform/midi_out_devices.h"
#include "torture/life/instance.h"

namespace {

constexpr int farewell = 17;

void Tell(char what) {
    static_cast<void>(!write(3, &what, 1));
}

class TellingDevices : public MidiOutDevices {
public:
    std::uint32_t midiOutGetNumDevs() override { return 1; }
    std::uint32_t midiOutGetDevCapsW(std::uint32_t, MidiOutCaps&) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t) override {
        handle = 1;
        Tell('o');
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutClose(MidiOutHandle) override {
        Tell('c');
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutShortMsg(MidiOutHandle, std::uint32_t) override {
        if (!sent.exchange(true)) Tell('s');
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutReset(MidiOutHandle) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutLongMsg(MidiOutHandle, const MidiLongMessage&) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutGetErrorTextW(std::uint32_t, MidiOutErrorTextW&) override {
        return MMSYSERR_BADERRNUM;
    }
    SystemVersion GetVersionExA() override { return {6, 2}; }

private:
    std::atomic<bool> sent{false};
};

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 44100 : 0;
}

// Here, so that whoever looks for leaks finds them.
TellingDevices* devices = nullptr;
Instance* plug = nullptr;
std::atomic<int> blocks{0};

void PlayOn() {
    std::vector<float> tones = Chord({57, 64}, 8820), silence(64);
    for (;;) plug->Play(tones), plug->Play(silence), ++blocks;
}

}  // namespace

int main(int count, char** words) {
    if (count != 3) return 1;
    const std::string way = words[1], state = words[2];
    devices = new TellingDevices;
    SubstituteMidiOut(devices);
    plug = new Instance(Host);
    plug->Set(89, 1);
    std::vector<float> tones = Chord({57, 64}, 8820);
    plug->Play(tones);
    if (state == "audio") {
        std::thread(PlayOn).detach();
        while (blocks < 3) std::this_thread::yield();
    }
    if (way == "exit") std::exit(farewell);
    if (way == "quick_exit") std::quick_exit(farewell);
    if (way == "_exit") _exit(farewell);
    return farewell;
}
