// LIF-4: the module's file through many lives.
#include <dlfcn.h>
#include <malloc.h>

#include "torture/life/host_window.h"
#include "torture/life/instance.h"
#include "torture/life/process_state.h"
#include "torture/row.h"

namespace {

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 44100 : 0;
}

class LoadedModule {
public:
    explicit LoadedModule(const Trial& trial) : file(dlopen(ORVA_MODULE_FILE, RTLD_NOW | RTLD_LOCAL)) {
        trial.Require(file != nullptr, "the module does not load");
    }
    ~LoadedModule() { dlclose(file); }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    AEffect* Open() const {
        return reinterpret_cast<AEffect* (*)(audioMasterCallback)>(dlsym(file, "VSTPluginMain"))(Host);
    }

private:
    void* const file;
};

// From load to unload, ten blocks long. With a window, that is opened, drawn and closed on the way.
void Live(const Trial& trial, const HostWindow* window) {
    const LoadedModule module(trial);
    const Instance plug(module.Open());
    trial.Require(plug.effect != nullptr, "not opened");
    plug.Call(effOpen);
    plug.Call(effMainsChanged, 0, 1);
    std::vector<float> tones = Chord({57, 64}, 512);
    for (int block = 0; block < 10; ++block) trial.Require(plug.Play(tones), "a block came out changed");
    if (window == nullptr) return;
    trial.Require(plug.Call(effEditOpen, 0, 0, window->Handle()) != 0, "the window did not open");
    plug.Call(effEditIdle);
    plug.Call(effEditClose);
}

// The state that each life must leave behind: with what is made once and kept, of ours and of the libraries.
ProcessState Settled(const Trial& trial, const HostWindow& window) {
    Live(trial, &window);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    constexpr int fontsKept = 256;  // by the drawing library, after their last use
    for (int i = 0; i < fontsKept; ++i) Live(trial, &window);
#endif
    // The text library's thread lasts as long as its map of fonts, which is in the toolkit's hands.
    ProcessState now;
    const bool alone = AwaitThat([&] {
        now = ProcessState::AtRest();
        const std::size_t fontThreads = now.threads.count("[pango] fontcon");
        return now.threads.size() - fontThreads == 1 && fontThreads <= 1;
    });
    trial.Require(alone, "threads beside the fonts' one");
    return now;
}

void TryLives(Trial& trial) {
    static const HostWindow& window = *new HostWindow;
    static const ProcessState before = Settled(trial, window);
    Live(trial, trial.number % 10 == 9 ? &window : nullptr);
    ProcessState::RequireAgain(before, trial);
    trial.Require(window.Children().empty(), "a window is left");
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    static long lives = 0;
    static double settled = 0;  // memory after a hundred lives
    constexpr long settling = 100;
    if (++lives % settling != 0) return;
    malloc_trim(0);  // what the allocator only keeps at hand is the host's
    if (lives == settling) settled = ResidentBytes();
    const double growth = ResidentBytes() - settled;
    Trial::Figure("growth, KiB", growth / 1024);
    trial.Require(growth <= 64 * 1024, "grown by " + std::to_string(growth / 1024) + " KiB");
#endif
}

const Registered lives({"LIF-4", "10,000 lives of the module leave the process as it was",
                        inRelease | inAddress, 10000, 10000, 60, TryLives, 60});
}  // namespace
