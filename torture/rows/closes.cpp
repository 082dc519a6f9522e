// LIF-9: the end of an instance in the middle of something.
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "editor/editor_factory.h"
#include "editor/gui_editor.h"
#include "tests/support/counting_devices.h"
#include "tests/support/temp_folder.h"
#include "torture/life/host_window.h"
#include "torture/life/instance.h"
#include "torture/life/process_state.h"
#include "torture/row.h"

namespace {

guiEditor* editor = nullptr;  // of the instance of the case

std::unique_ptr<IPluginEditor> MakeKnownEditor(CORVAguivst& effect) {
    auto made = MakeGuiEditor(effect);
    editor = dynamic_cast<guiEditor*>(made.get());
    return made;
}

bool closeWanted = false;

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    if (opcode == audioMasterProcessEvents) closeWanted = true;
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 44100 : 0;
}

// A dialog program that stays until it is ended, and a helper of its own with it.
const TempFolder& Programs() {
    static const TempFolder& folder = *[] {
        auto* const made = new TempFolder;
        made->Program("zenity", "/bin/sleep 1000 & echo $$ $! > " + (*made / "new") + "; /bin/mv " +
                                    (*made / "new") + " " + (*made / "process") + "; wait");
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(Programs().path, ignored);
        });
        return made;
    }();
    return folder;
}

// No such process, or only its entry, which waits for the system.
bool IsGone(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    return !std::getline(file, line) || line.find(") Z ") != std::string::npos;
}

// The processes of a dialog that runs; awaited.
std::vector<pid_t> DialogInPlace(const Trial& trial, const Instance& plug) {
    std::filesystem::remove(Programs() / "process");
    editor->AskForFile({"title", "MIDI Files (*.mid)", "mid", "take.mid"}, [](const std::string&) {});
    for (int i = 0; i < 5000; ++i) {
        plug.Call(effEditIdle);
        if (Programs().Has("process")) {
            std::vector<pid_t> both(2);
            std::ifstream(Programs() / "process") >> both[0] >> both[1];
            return both;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    trial.Fail("the dialog did not come up");
}

enum What { windowOpen, takeRecorded, deviceOpen, insideCallback, dialogRuns, everything, whats };

void TryClose(Trial& trial) {
    const CountingDevices& devices = Substitutes::InPlace().devices;
    static HostWindow& window = *new HostWindow;
    setenv("PATH", Programs().path.c_str(), 1);
    const auto what = static_cast<What>(trial.number % whats);
    const auto is = [what](What one) { return what == one || what == everything; };
    const long opened = devices.opened, closed = devices.closed;
    std::vector<pid_t> dialog;
    {
        Instance plug(Host, MakeKnownEditor);
        std::vector<float> tones = Chord({57, 64}, 8820);
        plug.Call(effOpen);
        plug.Call(effMainsChanged, 0, 1);
        if (is(deviceOpen)) plug.Set(89, 1);
        if (is(takeRecorded)) plug.Object().startRecording();
        if (is(windowOpen) || is(dialogRuns)) {
            trial.Require(plug.Call(effEditOpen, 0, 0, window.Handle()) != 0, "the window did not open");
            if (is(dialogRuns)) dialog = DialogInPlace(trial, plug);
        }
        closeWanted = false;
        for (int i = 0; i < 50 && !closeWanted; ++i) plug.Play(tones);
        trial.Require(closeWanted, "no note came");
    }  // the host closes it as soon as the call has returned from which the note came
    trial.Require(window.Children().empty(), "a window is left");
    trial.Require(devices.opened - opened == (is(deviceOpen) ? 1 : 0), "the device was not opened once");
    trial.Require(devices.closed - closed == devices.opened - opened, "the device was not closed once");
    trial.Require(devices.faults == 0 && devices.stale == 0, "a device met what it should not");
    for (const pid_t process : dialog)
        for (int i = 0; !IsGone(process); ++i) {
            trial.Require(i < 1500, "the dialog's processes are left");
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    static const ProcessState first = ProcessState::AtRest();
    if (what == windowOpen) {
        static const ProcessState settled = ProcessState::AtRest();  // with the text library's thread
        ProcessState::RequireAgain(settled, trial);
    }
    trial.Require(AwaitThat([] { return ProcessState::Now().files <= first.files; }), "files are left open");
    int status = 0;
    trial.Require(waitpid(0, &status, WNOHANG) <= 0, "a child process has ended unseen");
}

const Registered closes({"LIF-9", "an instance may be closed in the middle of anything",
                         inRelease | inAddress, 200 * whats, 60, 60, TryClose});

}  // namespace
