// The module's file through many lives, and every way in which a host may leave.
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>

#include "module/plugin_entry.h"
#include "plugin/gui_plugin.h"
#include "tests/support/devices.h"
#include "tests/support/host.h"
#include "tests/support/music.h"
#include "tests/support/parent_window.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"
#include "tests/support/watch.h"
#include "vst2/vendor_call.h"

namespace {

using Entry = AEffect* (*)(audioMasterCallback);

// What a process shows of itself, and a plug-in that has gone must have left as it was.
using ProcessState = std::multiset<std::string>;

ProcessState StateNow() {
    ProcessState state = {setlocale(LC_ALL, nullptr), std::filesystem::current_path()};
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
        state.insert("thread " + ReadAll(task.path() / "comm"));
    const std::filesystem::directory_iterator files("/proc/self/fd");
    state.insert(std::to_string(std::distance(begin(files), end(files))) + " files");
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    for (int number = 1; number < 65; ++number) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_DFL) state.insert("handles signal " + std::to_string(number));
        if (sigismember(&blocked, number) == 1) state.insert("blocks signal " + std::to_string(number));
    }
    std::string variables = "variables:";
    for (char** entry = environ; *entry != nullptr; ++entry) variables += std::string(" ") + *entry;
    return state.insert(variables), state;
}

// From load to unload. With a window, that is opened at each size, drawn, darkened or lightened and closed on
// the way, again and again.
void Live(const HostWindow* window) {
    const std::uint64_t openings = std::min<std::uint64_t>(10, Scaled(3));
    void* const file = dlopen(ORVA_MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(file, nullptr);
    {
        Host host;
        ASSERT_TRUE(host.Open(reinterpret_cast<Entry>(dlsym(file, "VSTPluginMain"))));
        host.Call(effOpen);
        host.Call(effMainsChanged, 0, 1);
        ASSERT_TRUE(host.Play(Tones({57, 64}, 0.1)));
        const auto set = [&](std::intptr_t setting, std::uint64_t value) {
            host.Call(effVendorSpecific, vendorCall, setting, nullptr, static_cast<float>(value));
        };
        for (std::uint64_t opening = 0; window != nullptr && opening < openings; ++opening) {
            set(vendorWindowScale, 1 + opening % 3);
            ASSERT_NE(host.Call(effEditOpen, 0, 0, window->Handle()), 0);
            for (const std::uint64_t dark : {opening % 2, 1 - opening % 2}) {
                set(vendorWindowDark, dark);
                EXPECT_TRUE(AwaitThat([&] {
                    host.Call(effEditIdle);
                    const std::vector<std::uint8_t> bytes = window->Pixels(0, 0, 400, 320);
                    return bytes.size() > 4 && (bytes[0] < 128) == (dark == 1) &&
                           std::set<std::uint8_t>(bytes.begin(), bytes.end()).size() > 32;
                }));
            }
            host.Call(effEditClose);
        }
    }
    dlclose(file);
}

TEST(Module, ManyLivesLeaveTheProcessAsItWas) {
    InChild(
        [](Trial&) {
            static const HostWindow& window = *new HostWindow;  // outlives the check for leaks
            for (int i = 0; i < 3; ++i) Live(&window);
            // Pango reads its fonts on a thread of its own, which may still begin, or have a file open, when
            // a window has closed.
            const ProcessState before = AtRest(5, StateNow);
            const std::int64_t blocks = Allocations::Live();
            for (std::uint64_t life = Scaled(100); life > 0 && !testing::Test::HasFailure(); --life)
                Live(life % 10 == 0 ? &window : nullptr);
            AwaitThat([&] { return StateNow() == before; }, std::chrono::seconds(10));
            EXPECT_EQ(StateNow(), before);
            EXPECT_LT(Allocations::Live(), blocks + 30);  // fewer than windows; Pango's thread may have some
            EXPECT_TRUE(window.Children().empty());
        },
        3600);
}

extern "C" void __lsan_disable() __attribute__((weak));

// Here, so that whoever looks for leaks finds them.
InstalledDevices* guestDevices = nullptr;
void* module = nullptr;
Host* guest = nullptr;

// Brings the plug-in into a state: the module's file, or the linked code above devices that report.
void Enter(const std::string& state) {
    Entry entry = OpenPlugin;
    if (!state.starts_with("device")) {
        module = dlopen(ORVA_MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
        entry = reinterpret_cast<Entry>(dlsym(module, "VSTPluginMain"));
    }
    guest = new Host;
    guest->keepsEvents = false;
    if (!guest->Open(entry)) return;
    guest->Call(effOpen);
    guest->Call(effMainsChanged, 0, 1);
    if (module == nullptr) {
        guestDevices = new InstalledDevices;
        guestDevices->during = [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); };
        guest->Set(89, 1);
        guest->Play(Tones({57, 64}, 0.2));
    }
    if (state == "editor") {
        // A host that leaves the window open has given nothing back, and what the toolkit has is no leak.
        if (__lsan_disable != nullptr) __lsan_disable();
        guest->Call(effEditOpen, 0, 0, (new HostWindow)->Handle());
        guest->Call(effEditIdle);
    }
    if (state.ends_with("audio")) {
        static std::atomic<int> blocks{0};
        std::thread([] {
            for (Audio tone = Tones({57}, 0.2);; ++blocks)
                guest->Process(Way::replacing, tone.data(), tone.data(), 8192);
        }).detach();
        while (blocks < 3) std::this_thread::yield();
    }
}

constexpr int farewell = 17;

void Leave(const std::string& way) {
    static std::atomic<bool> played{false}, unloaded{false};
    const auto unload = [] { guest->Close(), dlclose(module), unloaded = true; };
    if (way == "quick_exit") std::quick_exit(farewell);
    if (way == "_exit") _exit(farewell);
    if (way == "dlclose") dlclose(module);  // with the instance alive
    if (way == "another thread") std::thread(unload).join();
    if (way == "late thread") {  // one that has played ends after the unload
        std::thread late([] {
            guest->Play(Tones({57}, 0.1));
            for (played = true; !unloaded;) std::this_thread::yield();
        });
        while (!played) std::this_thread::yield();
        unload();
        late.join();
    }
    std::exit(farewell);
}

TEST(Module, AHostMayLeaveInAnyWayWithAnythingOpen) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // each host is a new start of this program
    for (const std::string state : {"alive", "audio", "editor", "device", "device and audio"})
        for (const std::string way :
             {"exit", "quick_exit", "_exit", "dlclose", "another thread", "late thread"}) {
            const bool exits = way.ends_with("exit"), closes = way.ends_with("thread");
            if ((state.starts_with("device") && !exits) || (state == "audio" && closes)) continue;
            const bool ends = state.starts_with("device") && way == "exit";
            EXPECT_EXIT((Enter(state), Leave(way)), testing::ExitedWithCode(farewell),
                        ends ? "send 1 .*close 1" : "")
                << state << ", " << way;
        }
}

}  // namespace
