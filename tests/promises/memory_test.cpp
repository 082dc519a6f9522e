// The plug-in lives on when memory runs out, and when a host or a device throws or answers nonsense.
#include "plugin/editor_interface.h"
#include "tests/support/devices.h"
#include "tests/support/linked_host.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"
#include "tests/support/watch.h"

namespace {

// What a host and a user do in a short life of the plug-in. What the editor calls, it catches by itself.
void LiveAndSave(Host& host, const Audio& music, const std::string& file) {
    const auto quietly = [](auto work) {
        try {
            work();
        } catch (...) {
        }
    };
    if (!host.Open(OpenPlugin)) return;
    auto& object = host.Object<CORVAguivst>();
    host.Call(effOpen);
    host.Call(effSetSampleRate, 0, 0, nullptr, 44100);
    host.Call(effMainsChanged, 0, 1);
    for (std::int32_t index = 0; index < parameterCount; ++index) host.Set(index, 0.6F);
    host.Set(paramDevice, 0.01F), host.Set(paramDeviceEnabled, 1);
    quietly([&] { object.startRecording(); });
    char text[256] = "20";
    for (const auto opcode : {effGetParamDisplay, effGetParamName, effCanDo, effSetProgramName})
        host.Call(opcode, 1, 0, text);
    for (std::size_t at = 0; at + 1024 <= music.size(); at += 1000 + at % 24) {
        float out[1000];
        host.Process(Way::replacing, const_cast<float*>(&music[at]), out, 1000);
        if (at % 5 == 0) host.Call(effEditIdle);
    }
    host.Call(effMainsChanged, 0, 0);
    quietly([&] { object.stopRecording(); });
    quietly([&] { object.saveRecording(file); });
    quietly([&] { object.currentChordText(); });
}

TEST(Faults, AHostOrDeviceThatThrowsOrAnswersNonsenseAtAnyCallEndsNothing) {
    RunTrials({200, 20}, [](Trial& trial) {
        const TempFolder folder;
        const Audio music = RandomMusic(trial.random, 44100, 1);
        InstalledDevices devices;
        Messages messages;
        std::uint64_t left = trial.Below(60);  // calls that go well
        const bool lies = trial.OneIn(2);      // from then on; else one call throws
        devices.during = [&](const std::string&) {
            if (left-- == 0 && !lies) throw std::runtime_error("of a device");
            if (lies && left > 100) devices.refusedOpens[0] = static_cast<std::uint32_t>(trial.random());
        };
        Host host;
        host.answers = [&](const Host::Request&, std::intptr_t& answer) {
            if (left-- == 0 && !lies) throw 1;  // NOLINT: whatever a host may throw
            answer = static_cast<std::intptr_t>(trial.random());
            return lies && left > 100;
        };
        LiveAndSave(host, music, folder / "take");
        left = 1U << 30;
        host.answers = nullptr, devices.during = nullptr;
        if (host.effect == nullptr) return;
        EXPECT_TRUE(host.Play(music));
    });
}

#if ORVA_WATCHES
// Blocks of memory that stay behind a life in which the allocation of that number fails, if any does, and one
// in which all is well.
std::int64_t BlocksKept(const Trial& trial, std::uint64_t number, bool andAllThatFollow, const Audio& music) {
    const TempFolder folder;
    const std::string file = folder / "take";
    const std::int64_t before = Allocations::Live();
    for (const bool disturbed : {number > 0, false}) {
        InstalledDevices devices;
        Messages messages;
        devices.keepsLines = messages.keepsTexts = false;
        Host host(48000);
        host.keepsEvents = false;
        if (disturbed) Allocations::Fail(number, andAllThatFollow);
        LiveAndSave(host, music, file);
        Allocations::Succeed();
        // An editor that could not be made closes the entry for the rest of the process.
        if (disturbed) editorCreationFailed = false;
        trial.Require(disturbed || host.effect != nullptr, "the plug-in does not open afterwards");
        // On another thread, which a lock that was left locked would stop.
        if (host.effect != nullptr)
            std::thread([&] { host.Play(music, 4096), host.Set(paramVelocity, 0.5F); }).join();
        host.Close();
        trial.Require(devices.OpenCount() == 0, "a device was left open");
    }
    return Allocations::Live() - before;
}

// Every seventh of some 500 allocations, alone and with all that follow; with the scale, others besides.
TEST(Memory, WhicheverAllocationFailsThePlugInWorksOnAndNothingIsLost) {
    RunTrials({140, 1}, [](Trial& trial) {
        const std::uint64_t number = trial.number / 2 * 7 % 490 + 1 + trial.number / 140 + trial.Below(7);
        const Audio music = RandomMusic(trial.random, 48000, 1.5);
        try {  // what the first exception of a process leaves behind for good
            std::once_flag once;
            std::call_once(once, [] { throw std::runtime_error("rehearsed"); });
        } catch (const std::runtime_error&) {
        }
        BlocksKept(trial, 0, false, music);
        const std::int64_t usual = BlocksKept(trial, 0, false, music);
        ASSERT_LE(BlocksKept(trial, number, trial.number % 2 == 1, music), usual) << "blocks were lost";
    });
}

// At length 25 hours, which pass 2^32 samples.
TEST(Memory, HoursOfAudioLeaveMemoryAndEventsAsTheyWere) {
    RunTrials({1, 1, 3600, true}, [](Trial& trial) {
        InstalledDevices devices;
        devices.keepsLines = false;
        LinkedHost host(48000);
        for (const auto output : {paramDeviceEnabled, paramChordsEnabled}) host.Set(output, 1);
        const Audio music = RandomMusic(trial.random, 48000, 56);
        std::vector<Host::Event> first;
        std::int64_t blocks = 0;
        for (std::uint64_t minute = 0, end = Scaled(100) > 1000 ? 1500 : 3; minute < end; ++minute) {
            host.Play(Silence(4 * 48000)), host.TakenEvents();
            const std::int64_t begin = host.clock;
            host.Play(music);
            const std::vector<Host::Event> events = Later(host.TakenEvents(), -begin);
            if (minute == 0) first = events;
            if (minute == 1) blocks = Allocations::Live();
            ASSERT_TRUE(minute == 0 || Allocations::Live() == blocks) << "minute " << minute;
            ASSERT_EQ(events, first) << "minute " << minute;
        }
        EXPECT_GT(first.size(), 100U);
    });
}

#endif

}  // namespace
