// The audio thread neither waits, nor allocates, nor leaves for the system, and the host's floating-point
// modes are as they were.
#include <sys/mman.h>

#include "tests/support/devices.h"
#include "tests/support/linked_host.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"
#include "tests/support/trial.h"
#include "tests/support/watch.h"
#if ORVA_WATCHES
#include <xmmintrin.h>
#endif

namespace {

// The plug-in with all outputs on: to the host, to a device, into a recording, chords.
class Player {
public:
    Player() {
        devices.keepsLines = messages.keepsTexts = false;
        host.Call(effOpen);
        AllOutputsOn();
        host.plugin.startRecording();
    }

    void AllOutputsOn() const {
        host.Set(paramPolyphony, 0.87F), host.Set(paramSensitivity, 0.875F);
        for (const auto output : {paramOutputToHost, paramDeviceEnabled, paramChordsEnabled})
            host.Set(output, 1);
    }
    // The audio thread may take two locks: the recorder's, and the recording's leaf lock.
    void Watch(void (*report)(const char*)) {
        host.Play(Tones({60}, 0.1, 48000), 4096);  // the largest block has been seen once
        Inside::AllowLocksIn(&host.plugin.noteRecorder, sizeof(TNoteRecorder));
        Inside::AllowLocksIn(&RecordingOf(host.plugin), sizeof(TRTRecording));
        Inside::report = report;
        host.inProcess = Inside::Mark;
    }

    InstalledDevices devices;
    Messages messages;
    LinkedHost host{48000};
};

#if ORVA_WATCHES
Trial* current = nullptr;
std::uint32_t hostModes = 0;  // MXCSR: rounding, flush to zero, masks, and flags

TEST(AudioThread, NeitherWaitsNorAllocatesNorLeavesForTheSystemNorTouchesTheHostsModes) {
    RunTrials({12, 1, 120}, [](Trial& trial) {
        current = &trial;
        Player player;
        LinkedHost& host = player.host;
        // The flags may be set in the middle of a call; the modes must not.
        host.atCall = [] {
            current->Require(((_mm_getcsr() ^ hostModes) & ~0x3FU) == 0, "a call to the host in other modes");
        };
        const std::uint32_t usual = hostModes = _mm_getcsr();
        const Audio music = RandomMusic(trial.random, 48000, 4), silence(48000);
        player.Watch([](const char* name) { current->Fail(std::string("inside a process call: ") + name); });
        ASSERT_TRUE(Inside::WatchSystemCalls());
        for (int round = 0; round < 100; ++round) {
            player.AllOutputsOn();
            const Audio& piece = trial.OneIn(6) ? silence : music;
            const std::size_t length = 1 + trial.Below(24000), at = trial.Below(piece.size() - length);
            const auto from = piece.begin() + static_cast<std::ptrdiff_t>(at);
            // All exceptions masked; any rounding, flush to zero or not, any flags.
            _mm_setcsr(hostModes =
                           0x1F80U | static_cast<std::uint32_t>(trial.Below(8) << 13 | trial.Below(64)));
            ASSERT_TRUE(host.Play({from, from + static_cast<std::ptrdiff_t>(length)},
                                  std::size_t{1} << trial.Below(13), ways[trial.Below(3)]));
            for (std::uint64_t i = trial.OneIn(15) ? 4 : 0; i > 0; --i) host.Play(silence, 4096);
            host.TakenEvents();
            host.Call(effEditIdle);
            const auto index = static_cast<std::int32_t>(trial.Below(96));
            const float rate = trial.OneIn(2) ? 44100 : 48000;
            switch (trial.Below(20)) {
                case 0: host.Call(effMainsChanged, 0, 0), host.Call(effMainsChanged, 0, 1); break;
                case 1: host.Call(effSetSampleRate, 0, 0, nullptr, rate); break;
                case 2: host.plugin.stopRecording(), host.plugin.startRecording(); break;
                case 3: host.Set(paramDeviceEnabled, 0), host.Set(paramDeviceEnabled, 1); break;
                case 4: host.plugin.setHearing({static_cast<Ear>(trial.Below(3)), 0, 0}); break;
                default: host.Set(index, static_cast<float>(trial.Within(0, 1)));
            }
            ASSERT_EQ(_mm_getcsr() & ~0x3FU, hostModes & ~0x3FU);
            _mm_setcsr(hostModes = usual);
        }
        ASSERT_GT(player.devices.sent, 20);
    });
}

volatile std::size_t plantedSize = 100;  // unknown to the compiler, which else leaves out what has no use
void* volatile kept = nullptr;
std::mutex plainLock;

// One of each mechanism by which the watch can see something, and one in which nothing is wrong.
constexpr void (*plants[])() = {
    [] { kept = std::malloc(plantedSize); },
    [] { std::free(kept); },
    [] { kept = new char[plantedSize]; },
    [] { kept = std::aligned_alloc(64, 64 * plantedSize); },
    [] { const std::lock_guard<std::mutex> held(plainLock); },
    [] { kept = mmap(nullptr, plantedSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0); },
    [] { std::this_thread::sleep_for(std::chrono::microseconds(1)); },
    [] {},
};

TEST(AudioThread, TheWatchSeesWhatIsThereToBeSeen) {
    RunTrials({std::size(plants), 1, 20, true}, [](Trial& trial) {
        static void (*plant)() = nullptr;
        static bool done = false;
        const bool harmless = trial.number + 1 == std::size(plants);
        plant = plants[trial.number];
        kept = std::malloc(plantedSize);
        Player player;
        player.Watch(harmless ? [](const char*) { std::abort(); } : [](const char*) { Trial::Pass(); });
        ASSERT_TRUE(Inside::WatchSystemCalls());
        // From inside the plug-in's own process call, where it sends to a device.
        player.devices.judge = [](std::uint32_t) { done = true, plant(); };
        player.host.Play(Tones({57, 64}, 0.3, 48000));
        ASSERT_TRUE(done);
        ASSERT_TRUE(harmless) << "not seen";
    });
}
#endif

}  // namespace
