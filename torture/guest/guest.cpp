// A plain host that knows nothing of the plug-in but its file: it loads it, brings it into a state, and
// leaves.
//
//   orva-guest FILE start                 a life from load to unload; writes to file 3 what it took: time and
//   work, ms orva-guest FILE WAY STATE [WINDOW]    leaves by WAY with the plug-in in STATE
//
// WAY: dlclose (with the instance alive), exit, quick_exit, _exit, return, other (another thread closes and
// unloads), late (a thread that has played ends after the unload). STATE: alive, editor (open in WINDOW),
// audio (a thread is inside a block). It ends with 17, or with 1 where it could not get that far.
#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>

#include "vst2/records.h"

namespace {

constexpr int farewell = 17;

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 44100 : 0;
}

void* module = nullptr;
AEffect* effect = nullptr;  // here, so that whoever looks for leaks finds it
std::atomic<int> blocks{0};
std::atomic<bool> unloaded{false};

void Call(std::int32_t opcode, std::intptr_t value = 0, void* ptr = nullptr) {
    effect->dispatcher(effect, opcode, 0, value, ptr, 0);
}

bool Load(const char* file) {
    module = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) return false;
    effect = reinterpret_cast<AEffect* (*)(audioMasterCallback)>(dlsym(module, "VSTPluginMain"))(Host);
    if (effect == nullptr) return false;
    Call(effOpen);
    Call(effMainsChanged, 1);
    return true;
}

void PlayBlock() {
    static float in[4096], out[4096];
    float* from = in;
    float* to = out;
    for (int i = 0; i < 4096; ++i) in[i] = static_cast<float>(i % 100) / 400;  // 441 Hz, of sorts
    effect->processReplacing(effect, &from, &to, 4096);
    ++blocks;
}

// Until the process ends.
void PlayOn() {
    for (;;) PlayBlock();
}

void CloseAndUnload() {
    Call(effClose);
    effect = nullptr;
    dlclose(module);
}

int Start(const char* file) {
    const auto begin = std::chrono::steady_clock::now();
    const std::clock_t workBefore = std::clock();
    if (!Load(file)) return 1;
    CloseAndUnload();
    const std::chrono::duration<double, std::milli> length = std::chrono::steady_clock::now() - begin;
    const double ms[] = {length.count(),
                         static_cast<double>(std::clock() - workBefore) * 1000 / CLOCKS_PER_SEC};
    return write(3, ms, sizeof ms) == sizeof ms ? farewell : 1;
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
    if (count == 3 && words[2] == std::string("start")) return Start(words[1]);
    if (count < 4 || !Load(words[1])) return 1;
    const std::string way = words[2], state = words[3];
    if (state == "editor") {
        // A window's number goes as a pointer. NOLINTNEXTLINE(performance-no-int-to-ptr)
        Call(effEditOpen, 0, reinterpret_cast<void*>(std::stoul(words[4])));
        Call(effEditIdle);
    }
    if (state == "audio") {
        std::thread(PlayOn).detach();
        while (blocks < 3) std::this_thread::yield();
    }
    return Leave(way);
}
