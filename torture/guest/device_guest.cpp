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

#include "tests/support/counting_devices.h"
#include "torture/life/instance.h"

namespace {

constexpr int farewell = 17;

void Tell(char what) {
    static_cast<void>(!write(3, &what, 1));
}

class TellingDevices : public CountingDevices {
public:
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        Tell('o');
        return CountingDevices::midiOutOpen(handle, id);
    }
    std::uint32_t midiOutClose(MidiOutHandle handle) override {
        Tell('c');
        return CountingDevices::midiOutClose(handle);
    }
    std::uint32_t midiOutShortMsg(MidiOutHandle handle, std::uint32_t message) override {
        if (sent == 0) Tell('s');
        return CountingDevices::midiOutShortMsg(handle, message);
    }
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
