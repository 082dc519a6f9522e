// THR-3: devices switched on and off against audio threads.
#include <atomic>
#include <optional>
#include <thread>

#include "tests/support/counting_devices.h"
#include "torture/life/instance.h"
#include "torture/life/watchdog.h"
#include "torture/row.h"

namespace {

constexpr int switchesEach = 200;

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 44100 : 0;
}

// Two audio threads, each with an instance of its own or, in a host that mixes them up, both with one; the
// instances want the same devices.
void TrySwitches(Trial& trial) {
    CountingDevices& devices = Substitutes::InPlace().devices;
    const long opened = devices.opened, closed = devices.closed, sent = devices.sent;
    const bool shared = trial.OneIn(2);
    {
        const Instance first(Host);
        const Instance second(Host);
        const Instance* const plugs[] = {&first, shared ? &first : &second};
        std::atomic<bool> done{false}, whole{true};
        Watchdog watchdog;
        std::thread audio[2];
        for (std::size_t i = 0; i < 2; ++i)
            audio[i] = std::thread([&, i] {
                std::vector<float> tone = Chord({57, 64}, 4410), silence(64);
                while (!done.load(std::memory_order_relaxed)) {
                    watchdog.Step(i, "process");
                    if (!plugs[i]->Play(tone)) whole = false;
                    plugs[i]->Play(silence);
                }
                watchdog.Ended(i);
            });
        std::thread control([&] {
            for (int i = 0; i < switchesEach || devices.sent == sent; ++i) {
                watchdog.Step(2, "a switch");
                const Instance& plug = *plugs[trial.Below(2)];
                if (trial.OneIn(2))
                    plug.Set(
                        88, static_cast<float>(trial.Below(CountingDevices::deviceCount + 1)) / 100 + 0.001F);
                else
                    plug.Set(89, trial.OneIn(3) ? 0.0F : 1.0F);
                if (trial.OneIn(20)) plug.Call(effMainsChanged, 0, 0);
            }
            done = true;
            watchdog.Ended(2);
        });
        watchdog.Await(trial, 3, std::chrono::seconds(5));
        for (std::thread& thread : audio) thread.join();
        control.join();
        trial.Require(whole, "a block came out changed");
    }
    trial.Require(devices.faults == 0, "a device was opened twice, or sent no note");
    trial.Require(devices.stale == 0, "a message went to a device that was closed");
    trial.Require(devices.opened > opened, "no device was opened");
    trial.Require(devices.opened - opened == devices.closed - closed, "a device was left open");
}

const Registered switches({"THR-3", "devices go on and off against two audio threads, and each is given back",
                           inAll, 200'000 / switchesEach, 25, 60, TrySwitches, 60});

}  // namespace
