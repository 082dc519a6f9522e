// The plug-in lives on when memory runs out, and when what it calls throws.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "plugin/editor_interface.h"
#include "torture/session.h"
#include "torture/watch.h"

namespace {

// What a host and a user do in a short life of the plug-in. `music` lasts for some seconds.
void LiveAndSave(Session& session, Trial& trial, const std::vector<float>& music, const std::string& file) {
    if (!session.Open()) return;
    session.Call(effOpen);
    session.Call(effSetSampleRate, 0, 0, nullptr, 44100);
    session.Call(effSetSampleRate, 0, 0, nullptr, 48000);
    session.Call(effMainsChanged, 0, 1);
    const auto quietly = [](auto work) {  // what the editor calls it catches by itself
        try {
            work();
        } catch (...) {
        }
    };
    for (std::int32_t index = 0; index < parameterCount; ++index) session.Set(index, 0.6F);
    quietly([&] { session.AllOutputsOn(); });
    char text[256] = "20";
    for (const auto opcode :
         {effGetParamDisplay, effGetParamName, effCanDo, effGetEffectName, effSetProgramName})
        session.Call(opcode, 1, 0, text);
    for (std::size_t at = 0; at < music.size();) {
        const std::size_t count = std::min<std::size_t>(music.size() - at, 1000 + at % 97);
        session.Process(trial, music.data() + at, static_cast<std::int32_t>(count), at % 3);
        at += count;
        if (at % 5 == 0) session.Call(effEditIdle);
    }
    session.Call(effMainsChanged, 0, 0);
    quietly([&] { session.Object().stopRecording(); });
    quietly([&] { session.Object().nothingRecorded(); });
    quietly([&] { session.Object().saveRecording(file); });
    quietly([&] { session.Object().currentChordText(); });
}

// A thread of its own, since locks are recursive: one that was left locked would stop it.
void PlayOnAnotherThread(Session& session, Trial& trial, const std::vector<float>& music) {
    std::thread([&] {
        for (std::size_t at = 0; at + 4096 <= std::min<std::size_t>(music.size(), 48000); at += 4096)
            session.Process(trial, music.data() + at, 4096);
        session.Set(paramVelocity, 0.5F);
        session.Set(paramDeviceEnabled, 0);
    }).join();
}

std::string ScratchFile() {
    return "/tmp/orva_torture_" + std::to_string(getpid()) + ".mid";
}

// The same life with nothing in its way; also what the blocks kept for the process amount to.
void LiveUndisturbed(Trial& trial, const std::vector<float>& music, const std::string& file) {
    Session session(48000);
    LiveAndSave(session, trial, music, file);
    trial.Require(session.effect != nullptr, "the plug-in does not open");
    PlayOnAnotherThread(session, trial, music);
}

// Work in a process of its own; false if that ended badly. What it fails by is told as this case's failure.
template <typename Work>
bool InChild(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 1) _exit(1);  // it has told
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// What goes wrong during a life, on the thread that leads it.
struct Disturbance {
    void (*begin)(Trial& trial, Session& session);
    bool (*end)();  // nothing goes wrong from here on; whether anything did
    bool isLast;    // it should not have come to that any more
};

// A life that is disturbed from an untouched process on, then audio on another thread, then a life that is
// not.
void TryDisturbed(Trial& trial, const Disturbance& disturbance) {
    const std::string file = ScratchFile();
    const std::vector<float> music = BusyMusic(trial, 48000, 2);
    int both[2];  // blocks that stay after two lives: undisturbed ones, and one disturbed and one not
    trial.Require(pipe(both) == 0, "no pipe");
    // What the first message and the first exception of a process leave behind for good.
    SystemMessageBox();
    try {
        std::once_flag once;
        std::call_once(once, [] { throw std::runtime_error("rehearsed"); });
    } catch (const std::runtime_error&) {
    }
    const auto tellKept = [&](std::int64_t before) {
        const std::int64_t kept = Allocations::Live() - before;
        trial.Require(write(both[1], &kept, sizeof kept) == sizeof kept, "the pipe is broken");
    };
    const bool plain = InChild([&] {
        const std::int64_t before = Allocations::Live();
        LiveUndisturbed(trial, music, file);
        LiveUndisturbed(trial, music, file);
        tellKept(before);
    });
    const bool survived = InChild([&] {
        const std::int64_t before = Allocations::Live();
        {
            Session session(48000);
            disturbance.begin(trial, session);
            try {
                LiveAndSave(session, trial, music, file);
            } catch (...) {
                disturbance.end();
                trial.Fail("an exception came out of a call");
            }
            const bool disturbed = disturbance.end();
            trial.Require(!(disturbed && disturbance.isLast), "there is more to go wrong than cases");
            // An editor that could not be made closes the entry for the rest of the process.
            if (editorCreationFailed.exchange(false))
                trial.Require(disturbed, "the entry was closed for no reason");
            if (session.effect != nullptr) PlayOnAnotherThread(session, trial, music);
            if (session.effect != nullptr) session.Close();
            trial.Require(session.devices.opened == session.devices.closed, "a device was left open");
        }
        LiveUndisturbed(trial, music, file);
        tellKept(before);
    });
    unlink(file.c_str());
    trial.Require(plain, "an undisturbed life ended badly");
    trial.Require(survived, "the process died");
    std::int64_t kept[2] = {};
    trial.Require(read(both[0], kept, sizeof kept) == sizeof kept, "the pipe is broken");
    close(both[0]), close(both[1]);
    trial.Require(kept[1] <= kept[0], std::to_string(kept[1] - kept[0]) + " blocks were lost");
}

// --- allocations that fail ---

constexpr std::uint64_t coveredAllocations = 500;

// Case 2n fails the allocation n + 1 alone, case 2n + 1 all from there on, until the life is over.
void TryFailing(Trial& trial) {
    const auto begin = [](Trial& ours, Session&) {
        Allocations::Fail(ours.number / 2 + 1, ours.number % 2 == 1);
    };
    const auto end = [] {
        Allocations::Succeed();
        return Allocations::Failed();
    };
    TryDisturbed(trial, {begin, end, trial.number / 2 + 1 == coveredAllocations});
}

const Registered failing({"MEM-4", "whichever allocation fails, the plug-in works on, and nothing is lost",
                          inRelease, 2 * coveredAllocations, 1, 60, TryFailing, 30});

// --- calls that throw ---

constexpr std::uint64_t coveredCalls = 400;

std::uint64_t callsLeft = 0;  // until the one that throws
std::uint64_t kindThrown = 0;
bool hasThrown = false;

void ThrowInTime() {
    if (callsLeft == 0 || --callsLeft > 0) return;
    hasThrown = true;
    if (kindThrown == 0) throw std::runtime_error("thrown by the other side");
    if (kindThrown == 1) throw std::bad_alloc();
    throw 1;
}

// The host, or the layer of devices, throws in its n-th call, in one of three ways.
void TryThrowing(Trial& trial) {
    const auto begin = [](Trial& ours, Session& session) {
        kindThrown = ours.number % 3;
        callsLeft = ours.number / 6 + 1;
        if (ours.number / 3 % 2 == 0)
            session.atHostCall = ThrowInTime;
        else
            session.devices.atCall = ThrowInTime;
    };
    const auto end = [] {
        callsLeft = 0;
        if (hasThrown) Trial::Figure("thrown", 1);
        return hasThrown;
    };
    TryDisturbed(trial, {begin, end, trial.number / 6 + 1 == coveredCalls});
}

const Registered throwing({"MEM-5", "whichever call of the host's or a device's throws, the plug-in works on",
                           inRelease, 6 * coveredCalls, 1, 60, TryThrowing});

}  // namespace
