// THR-5: a host that calls back from within its callbacks. THR-6: a host with a lock of its own around both.
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>

#include "tests/support/counting_devices.h"
#include "torture/life/host_window.h"
#include "torture/life/instance.h"
#include "torture/life/watchdog.h"
#include "torture/row.h"

namespace {

// --- THR-5 ---

constexpr std::int32_t callbacks[] = {
    audioMasterAutomate,         audioMasterVersion,          audioMasterWantMidi,
    audioMasterProcessEvents,    audioMasterGetSampleRate,    audioMasterGetVendorString,
    audioMasterGetProductString, audioMasterGetVendorVersion, audioMasterCanDo,
    audioMasterUpdateDisplay};
enum Deed {
    setParameter,
    getParameter,
    suspend,
    resume,
    process,
    openEditor,
    closeEditor,
    canDo,
    closePlugIn,
    deeds
};
constexpr std::size_t combinations = std::size(callbacks) * deeds;

constexpr int deepest = 8, stackLimit = 40;

struct ReentrantHost {
    Trial* trial = nullptr;
    std::intptr_t version = 2400;
    std::int32_t when = 0;
    Deed deed = setParameter;
    std::int32_t index = 0;  // of the parameter that it sets
    bool armed = false;
    int depth = 0, depthSeen = 0;
    long done = 0, notesOn = 0;
    bool closeWanted = false, whole = true;
    HostWindow* window = nullptr;  // kept from case to case
};
ReentrantHost host;

void Do(AEffect* effect, Deed deed) {
    Trial& trial = *host.trial;
    char question[] = "sendVstMidiEvent";
    switch (deed) {
        case setParameter:
            effect->setParameter(effect, host.index, static_cast<float>(trial.Below(3)) / 2);
            break;
        case getParameter: effect->getParameter(effect, static_cast<std::int32_t>(trial.Below(96))); break;
        case suspend: effect->dispatcher(effect, effMainsChanged, 0, 0, nullptr, 0); break;
        case resume: effect->dispatcher(effect, effMainsChanged, 0, 1, nullptr, 0); break;
        case process: {
            std::vector<float> block = Chord({60}, 64), out(64, 1.0F);
            float* from = block.data();
            float* to = out.data();
            effect->processReplacing(effect, &from, &to, 64);
            // One that is still being built passes nothing on.
            if (effect->object != nullptr && block != out) host.whole = false;
            break;
        }
        case openEditor: effect->dispatcher(effect, effEditOpen, 0, 0, host.window->Handle(), 0); break;
        case closeEditor: effect->dispatcher(effect, effEditClose, 0, 0, nullptr, 0); break;
        case canDo: effect->dispatcher(effect, effCanDo, 0, 0, question, 0); break;
        default: host.closeWanted = true; break;  // once the call that is under way has returned
    }
}

std::intptr_t Host(AEffect* effect, std::int32_t opcode, std::int32_t, std::intptr_t, void* data, float) {
    if (host.armed && effect != nullptr && opcode == host.when && host.depth < stackLimit) {
        host.depthSeen = std::max(host.depthSeen, ++host.depth);
        ++host.done;
        Do(effect, host.deed);
        --host.depth;
    }
    if (opcode == audioMasterProcessEvents) {
        const auto* const events = static_cast<const VstEvents*>(data);
        const char status = reinterpret_cast<const VstMidiEvent*>(events->events[0])->midiData[0];
        if ((static_cast<unsigned char>(status) & 0xF0U) == 0x90U) ++host.notesOn;
    }
    switch (opcode) {
        case audioMasterVersion: return host.version;
        case audioMasterGetSampleRate: return 44100;
        case audioMasterGetVendorString:
        case audioMasterGetProductString: std::strcpy(static_cast<char*>(data), "Maker"); return 1;
        default: return 0;
    }
}

// What a host does with a plug-in, a step at a time, until a callback has asked for its end.
void LiveWith(Instance& plug, bool window) {
    std::vector<float> tones = Chord({57, 64, 72}, 4410), silence(512);
    const std::function<void()> steps[] = {
        [&] { plug.Call(effOpen); },
        [&] { plug.Call(effSetSampleRate, 0, 0, nullptr, 44100); },
        [&] { plug.Call(effMainsChanged, 0, 1); },
        [&] { host.whole &= plug.Play(tones); },
        [&] { plug.Set(0, 0.8F); },
        [&] { plug.Set(2, 0.3F); },
        [&] { host.whole &= plug.Play(tones); },
        [&] { plug.Set(91, 0); },
        [&] { plug.Set(91, 1); },
        [&] { plug.Set(89, 1); },
        [&] { plug.Set(95, 1); },
        [&] { plug.Set(90, 0.4F); },
        [&] { plug.Object().setParameterFromEditor(2, 0.6F); },
        [&] {
            if (window) plug.Call(effEditOpen, 0, 0, host.window->Handle());
        },
        [&] { host.whole &= plug.Play(tones); },
        [&] { plug.Call(effEditIdle); },
        [&] { plug.Object().setParameterFromEditor(1, 0.6F); },
        [&] { plug.Call(effMainsChanged, 0, 1); },
        [&] { host.whole &= plug.Play(silence); },
        [&] { host.whole &= plug.Play(tones); },
        [&] { plug.Call(effMainsChanged, 0, 0); },
        [&] { plug.Call(effEditClose); },
    };
    for (const auto& step : steps) {
        step();
        if (host.closeWanted) return;
    }
}

void TryReentrantHost(Trial& trial) {
    Substitutes::InPlace();
    static HostWindow* const window = new HostWindow;
    host = ReentrantHost();
    host.trial = &trial;
    host.window = window;
    host.version = trial.number / combinations % 2 == 0 ? 2400 : 2300;  // kept by a process from its first on
    host.when = callbacks[trial.number % std::size(callbacks)];
    host.deed = static_cast<Deed>(trial.number / std::size(callbacks) % deeds);
    static constexpr std::int32_t indices[] = {0, 1, 2, 5, 87, 88, 89, 90, 91, 93, 94, 95};
    host.index = indices[trial.number / combinations / 2 % std::size(indices)];
    const std::string which =
        "callback " + std::to_string(host.when) + ", deed " + std::to_string(host.deed) + ": ";
    for (int round = 0; round < 10; ++round) {
        host.armed = true;
        host.closeWanted = false;
        Instance plug(Host);
        trial.Require(plug.effect != nullptr, which + "not opened");
        LiveWith(plug, round % 5 == 0);
        host.armed = false;
        trial.Require(host.whole, which + "a block came out changed");
        trial.Require(host.depthSeen <= deepest, which + "as deep as " + std::to_string(host.depthSeen));
        if (host.closeWanted) continue;
        // Nothing is held: another thread comes through the recorder's lock, and the gate lets a block in.
        std::thread([&] {
            plug.Object().noteRecorder.Lock();
            plug.Object().noteRecorder.Unlock();
        }).join();
        for (const auto& [index, value] :
             {std::pair{0, 0.87F}, {1, 0.875F}, {2, 0.79F}, {91, 1.0F}, {5, 1.0F}})
            plug.Set(index, value);
        plug.Call(effMainsChanged, 0, 0);
        host.notesOn = 0;
        std::vector<float> tones = Chord({69, 76}, 13230);
        plug.Play(tones);
        trial.Require(host.notesOn == 2,
                      which + std::to_string(host.notesOn) + " notes of two are heard afterwards");
    }
    Trial::Figure("depth", host.depthSeen);
    const CountingDevices& devices = Substitutes::InPlace().devices;
    trial.Require(devices.opened == devices.closed && devices.faults == 0, which + "a device was left open");
}

// --- THR-6 ---

std::recursive_mutex hostsLock;
std::atomic<bool> lockInCallback{false};

std::intptr_t LockingHost(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    std::unique_lock<std::recursive_mutex> held(hostsLock, std::defer_lock);
    if (lockInCallback) held.lock();
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 44100 : 0;
}

constexpr int roundsEach = 500;

// The audio thread processes, under the host's lock or (every other case) without; the other thread has it
// around each of its calls. Either meets the recorder's lock on the other's way.
void TryLockingHost(Trial& trial) {
    Substitutes::InPlace();
    const bool lockAroundBlocks = trial.number % 2 == 0;
    lockInCallback = true;
    const Instance plug(LockingHost);
    Watchdog watchdog;
    std::atomic<bool> done{false}, whole{true};
    std::atomic<long> longest{0};  // us
    const auto timed = [&](std::size_t thread, const char* doing, auto call) {
        watchdog.Step(thread, doing);
        const auto begin = std::chrono::steady_clock::now();
        call();
        const auto took =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
        if (took.count() > longest) longest = took.count();
    };
    std::thread audio([&] {
        std::vector<float> tone = Chord({57, 64}, 1500), silence(64);
        while (!done) {
            std::unique_lock<std::recursive_mutex> held(hostsLock, std::defer_lock);
            if (lockAroundBlocks) held.lock();
            timed(0, "process", [&] {
                if (!plug.Play(tone)) whole = false;
            });
            plug.Play(silence);
        }
        watchdog.Ended(0);
    });
    std::thread control([&] {
        for (int round = 0; round < roundsEach; ++round) {
            const std::lock_guard<std::recursive_mutex> held(hostsLock);
            switch (trial.Below(8)) {
                case 0: timed(1, "suspend", [&] { plug.Call(effMainsChanged, 0, 0); }); break;
                case 1: timed(1, "rate", [&] { plug.Call(effSetSampleRate, 0, 0, nullptr, 48000); }); break;
                case 2:
                    timed(1, "velocity", [&] { plug.Set(2, static_cast<float>(trial.Below(9)) / 8); });
                    break;
                case 3:
                    timed(1, "channel", [&] { plug.Set(90, static_cast<float>(trial.Below(9)) / 8); });
                    break;
                case 4: timed(1, "output", [&] { plug.Set(91, static_cast<float>(trial.Below(2))); }); break;
                case 5: timed(1, "device", [&] { plug.Set(89, static_cast<float>(trial.Below(2))); }); break;
                case 6: timed(1, "record", [&] { plug.Object().startRecording(); }); break;
                default: timed(1, "stop", [&] { plug.Object().stopRecording(); }); break;
            }
        }
        done = true;
        watchdog.Ended(1);
    });
    watchdog.Await(trial, 2, std::chrono::seconds(5));
    audio.join();
    control.join();
    trial.Require(whole, "a block came out changed");
    Trial::Figure("longest call, ms", static_cast<double>(longest) / 1000);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // The sanitizers' own pace is no promise; there, the watchdog alone judges.
    trial.Require(longest <= 150'000, "a call took " + std::to_string(longest / 1000) + " ms");
#endif
}

const Registered reentrant({"THR-5", "a host may call back from each of its callbacks", inRelease | inAddress,
                            90 * combinations, combinations, 60, TryReentrantHost});
const Registered locking({"THR-6",
                          "a host's own lock, in its callback and around its calls, locks nothing up", inAll,
                          100'000 / roundsEach, 10, 120, TryLockingHost});

}  // namespace
