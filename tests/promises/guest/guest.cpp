// A plain host in a process of its own: it brings the plug-in into a state, and leaves.
//
//   guest FILE WAY STATE [WINDOW]
//
// FILE: the module's, or DEVICE for the linked code, so that the guest can put devices of its own beneath it.
// To file 3 it then writes "o" when a device opens, "s" at the first message, "c" when one closes. WAY:
// dlclose (with the instance alive), exit, quick_exit, _exit, return, other (another thread closes and
// unloads), late (a thread that has played ends after the unload). STATE: alive, editor (open in WINDOW),
// audio (a thread is inside a block). It ends with 17, or with 1 where it could not get that far.
#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

#include "module/plugin_entry.h"
#include "tests/support/devices.h"

namespace {

constexpr int farewell = 17;

void Report(char what) {
    static_cast<void>(!write(3, &what, 1));
}

class ReportingDevices : public FakeDevices {
public:
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        return Report('o'), FakeDevices::midiOutOpen(handle, id);
    }
    std::uint32_t midiOutClose(MidiOutHandle handle) override {
        return Report('c'), FakeDevices::midiOutClose(handle);
    }
    std::uint32_t midiOutShortMsg(MidiOutHandle handle, std::uint32_t message) override {
        if (sent == 0) Report('s');
        return FakeDevices::midiOutShortMsg(handle, message);
    }
};

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 44100 : 0;
}

// Here, so that whoever looks for leaks finds them.
ReportingDevices* devices = nullptr;
void* module = nullptr;
AEffect* effect = nullptr;
std::atomic<int> blocks{0};
std::atomic<bool> unloaded{false};

void Call(std::int32_t opcode, std::intptr_t value = 0, void* ptr = nullptr) {
    effect->dispatcher(effect, opcode, 0, value, ptr, 0);
}

void PlayBlock() {
    static float in[8192], out[8192];
    float* from = in;
    float* to = out;
    for (int i = 0; i < 8000; ++i) in[i] = static_cast<float>(i % 100) / 400;  // 441 Hz, of sorts
    effect->processReplacing(effect, &from, &to, 8192);
    ++blocks;
}

bool Load(const std::string& file) {
    auto entry = OpenPlugin;
    if (file == "DEVICE") {
        devices = new ReportingDevices;
        devices->keepsLines = false;
        SubstituteMidiOut(devices);
    } else {
        module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (module == nullptr) return false;
        entry = reinterpret_cast<decltype(entry)>(dlsym(module, "VSTPluginMain"));
    }
    effect = entry(Host);
    if (effect == nullptr) return false;
    Call(effOpen);
    Call(effMainsChanged, 1);
    if (devices != nullptr) effect->setParameter(effect, 89, 1), PlayBlock();
    return true;
}

void CloseAndUnload() {
    Call(effClose);
    effect = nullptr;
    dlclose(module);
}

int Leave(const std::string& way) {
    if (way == "dlclose") dlclose(module);
    if (way == "exit") std::exit(farewell);
    if (way == "quick_exit") std::quick_exit(farewell);
    if (way == "_exit") _exit(farewell);
    if (way == "other") std::thread(CloseAndUnload).join();
    if (way == "late") {
        std::thread late([] {
            PlayBlock();
            while (!unloaded) std::this_thread::yield();
        });
        while (blocks == 0) std::this_thread::yield();
        CloseAndUnload();
        unloaded = true;
        late.join();
    }
    return farewell;
}

}  // namespace

int main(int count, char** words) {
    if (count < 4 || !Load(words[1])) return 1;
    const std::string way = words[2], state = words[3];
    if (state == "editor") {
        // A window's number goes as a pointer. NOLINTNEXTLINE(performance-no-int-to-ptr)
        Call(effEditOpen, 0, reinterpret_cast<void*>(std::stoul(words[4])));
        Call(effEditIdle);
    }
    if (state == "audio") {
        std::thread([] {
            for (;;) PlayBlock();
        }).detach();
        while (blocks < 3) std::this_thread::yield();
    }
    return Leave(way);
}
