// The module's file through many lives, every way in which a host may leave, and the end of an instance in
// the middle of something.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <fstream>

#include "editor/editor_factory.h"
#include "editor/gui_editor.h"
#include "plugin/gui_plugin_ex.h"
#include "tests/promises/process_state.h"
#include "tests/support/devices.h"
#include "tests/support/host.h"
#include "tests/support/host_window.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"

namespace {

// From load to unload. With a window, that is opened, drawn and closed on the way.
void Live(const HostWindow* window) {
    void* const file = dlopen(ORVA_MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(file, nullptr);
    {
        Host host;
        ASSERT_TRUE(
            host.Open(reinterpret_cast<AEffect* (*)(audioMasterCallback)>(dlsym(file, "VSTPluginMain"))));
        host.Call(effOpen);
        host.Call(effMainsChanged, 0, 1);
        ASSERT_TRUE(host.Play(Tones({57, 64}, 0.1)));
        if (window != nullptr) {
            ASSERT_NE(host.Call(effEditOpen, 0, 0, window->Handle()), 0);
            host.Call(effEditIdle);
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
            const ProcessState before = ProcessState::AtRest();
            for (std::uint64_t life = Scaled(100); life > 0 && !testing::Test::HasFailure(); --life)
                Live(life % 10 == 0 ? &window : nullptr);
            EXPECT_TRUE(before.Returns())
                << ProcessState().threads.size() << " threads, " << ProcessState().files << " files; before "
                << before.threads.size() << ", " << before.files;
            EXPECT_TRUE(window.Children().empty());
        },
        3600);
}

// Starts the guest, which ends with 17; returns what it wrote to its file 3.
std::string Guest(std::vector<std::string> words, const std::string& how) {
    words.insert(words.begin(), ORVA_GUEST_FILE);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, ends[1], 3);
    pid_t child = 0;
    EXPECT_EQ(posix_spawn(&child, arguments[0], &files, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&files);
    close(ends[1]);
    int status = 0;
    waitpid(child, &status, 0);  // one that hangs reaches the limit of its trial
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 17) << how << ": status " << status;
    char text[64];
    const ssize_t length = read(ends[0], text, sizeof text);
    close(ends[0]);
    return {text, static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

TEST(Module, AHostMayLeaveInAnyWayWithAnythingOpen) {
    RunTrials({35, 1, 20, true}, [](Trial& trial) {
        constexpr const char* allWays[] = {"exit",    "quick_exit", "_exit", "return",
                                           "dlclose", "other",      "late"};
        constexpr const char* states[] = {"alive", "audio", "editor", "device", "device and audio"};
        const std::string way = allWays[trial.number % 7], state = states[trial.number / 7];
        const bool unloads = trial.number % 7 >= 4, closes = trial.number % 7 >= 5;
        if (state.starts_with("device")) {
            if (unloads) return;
            const bool destructorsRun = way == "exit" || way == "return";
            EXPECT_EQ(Guest({"DEVICE", way, state == "device" ? "alive" : "audio"}, way + ", " + state),
                      destructorsRun ? "osc" : "os");
        } else if (state == "editor") {
            // A host that leaves the window open has given nothing back, and what the toolkit has is no leak.
            setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
            const HostWindow window;
            Guest({ORVA_MODULE_FILE, way, state,
                   std::to_string(reinterpret_cast<std::uintptr_t>(window.Handle()))},
                  way + ", editor");
        } else {  // nobody plays what is closed
            Guest({ORVA_MODULE_FILE, way, closes ? "alive" : state}, way + ", " + state);
        }
    });
}

guiEditor* editor = nullptr;  // of the case's instance

std::unique_ptr<IPluginEditor> MakeKnownEditor(CORVAguivst& effect) {
    auto made = MakeGuiEditor(effect);
    editor = dynamic_cast<guiEditor*>(made.get());
    return made;
}

// No such process, or only its entry, which waits for the system.
bool IsGone(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    return !std::getline(file, line) || line.find(") Z ") != std::string::npos;
}

TEST(Module, AnInstanceMayBeClosedInTheMiddleOfAnything) {
    RunTrials({16, 4}, [](Trial& trial) {
        // A dialog program that stays until it is ended, and a helper of its own with it.
        const TempFolder programs;
        programs.Program("zenity", "/bin/sleep 1000 & echo $$ $! > " + (programs / "new") + "; /bin/mv " +
                                       (programs / "new") + " " + (programs / "process") + "; wait");
        programs.BecomePath(true);
        const bool device = trial.OneIn(2), take = trial.OneIn(2), dialog = trial.number % 3 == 0;
        const HostWindow window;
        FakeDevices devices;
        Messages messages;
        SubstituteMidiOut(&devices);
        pid_t processes[2] = {};
        {
            Host host;
            ASSERT_TRUE(host.Open([](audioMasterCallback callback) {
                return (new CORVAguivstEx(callback, MakeKnownEditor))->getAeffect();
            }));
            host.Call(effOpen), host.Call(effMainsChanged, 0, 1);
            if (device) host.Set(89, 1);
            if (take) host.Object<CORVAguivst>().startRecording();
            const bool opens = dialog || trial.OneIn(2);
            ASSERT_EQ(opens && host.Call(effEditOpen, 0, 0, window.Handle()) != 0, opens);
            if (dialog) {
                editor->AskForFile({"title", "MIDI Files (*.mid)", "mid", "take.mid"},
                                   [](const std::string&) {});
                ASSERT_TRUE(AwaitThat([&] { return host.Call(effEditIdle), programs.Has("process"); }));
                std::ifstream(programs / "process") >> processes[0] >> processes[1];
            }
            host.Play(Tones({57, 64}, 0.5));
            EXPECT_GT(host.Sounding(), 0);
        }
        EXPECT_TRUE(window.Children().empty());
        EXPECT_EQ(devices.opened, device ? 1 : 0);
        EXPECT_EQ(devices.OpenCount() + devices.faults + devices.stale, 0);
        SubstituteMidiOut(nullptr);
        for (const pid_t process : processes)
            EXPECT_TRUE(process == 0 || AwaitThat([&] { return IsGone(process); })) << "of the dialog";
    });
}

}  // namespace
