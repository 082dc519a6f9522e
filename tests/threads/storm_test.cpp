// Whatever a host's threads do to the plug-in at the same time, in whatever order. A thread that locks up
// reaches the limit of its trial.
#include "delivery/rt_midi_out.h"
#include "tests/delivery/fakes.h"
#include "tests/support/devices.h"
#include "tests/support/linked_host.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"
#include "tests/support/parent_window.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"

namespace {

// Devices and messages for a process in which threads meet; never destroyed, since devices are closed at its
// end.
FakeDevices& Devices() {
    static FakeDevices& devices = *[] {
        auto* const made = new InstalledDevices;
        made->keepsLines = false;
        (new Messages)->keepsTexts = false;
        return made;
    }();
    return devices;
}

// One of the host's threads: its random numbers, and how deep it is in calls from within callbacks.
struct Caller {
    Trial trial;
    int depth = 0;
};
thread_local Caller* caller = nullptr;

struct Storm {
    Host host;
    std::atomic<long> calls{0}, blocks{0};
    bool locks = false;  // the host has a lock of its own, in its callback and around half of its calls
    std::recursive_mutex lock;  // and takes it whichever lock the other thread has
};
Storm* storm = nullptr;

// Tones, silence, noise, and NaN, by any of the three calls.
void PlayBlock(Trial& trial) {
    static thread_local std::size_t clock = 0;
    const std::size_t length = 1 + trial.Below(trial.OneIn(8) ? 1024 : 128);
    const std::uint64_t kind = trial.Below(16);
    Audio block = kind < 10   ? Chord({45 + static_cast<int>(clock / 8000 % 30), 57, 64}, length, clock)
                  : kind < 12 ? Silence(length)
                              : Noise(trial.random, length);
    clock += length;
    if (kind == 15) block[0] = NAN;
    trial.Require(storm->host.Play(block, length, ways[trial.Below(3)]), "a block came out changed");
    storm->blocks.fetch_add(1, std::memory_order_relaxed);
}

float AnyValue(Trial& trial) {
    constexpr float odd[] = {0, 1, -1e30F, INFINITY, NAN};
    return trial.OneIn(2) ? odd[trial.Below(5)] : static_cast<float>(trial.Below(1001)) / 1000;
}

void UseParameter(Trial& trial) {
    const Host& host = storm->host;
    const auto index = static_cast<std::int32_t>(trial.Below(100)) - 2;
    char text[] = "0.5", buffer[256];
    switch (trial.Below(6)) {
        case 0: host.Get(index); break;
        case 1: host.Call(effGetParamDisplay, index, 0, buffer); break;
        case 2: host.Call(effString2Parameter, index, 0, text); break;
        case 3: host.Set(87 + (index + 2) % 9, AnyValue(trial)); break;
        default: host.Set(index, AnyValue(trial));
    }
}

void Control(Trial& trial) {
    constexpr float rates[] = {44100, 48000, 22050, 96000, 8000, 0, 1234.5F, NAN};
    const Host& host = storm->host;
    char text[256] = "sendVstMidiEvent";
    switch (trial.Below(10)) {
        case 0: host.Call(effMainsChanged, 0, 0); break;
        case 1: host.Call(effMainsChanged, 0, 1); break;
        case 2: host.Call(effSetSampleRate, 0, 0, nullptr, rates[trial.Below(8)]); break;
        case 3: host.Call(effCanDo, 0, 0, text); break;
        case 4: {  // each name that is set is of one letter
            std::string name(trial.Below(60), static_cast<char>('a' + trial.Below(26)));
            host.Call(effSetProgramName, 0, 0, name.data());
            break;
        }
        case 5: {
            host.Call(effGetProgramName, 0, 0, text);
            const std::string name = text;
            trial.Require(
                name.size() <= 31 && (name == "Default" || name.find_first_not_of(name[0]) == name.npos),
                "a program name of two, or too long");
            break;
        }
        case 6: host.Call(effOpen); break;
        default: host.Call(static_cast<std::int32_t>(45 + trial.Below(40)), 0, 0, text);
    }
}

// The user, with a window and its buttons.
void UseWindow(Trial& trial, const HostWindow& window, const std::string& take) {
    const Host& host = storm->host;
    auto& object = host.Object<CORVAguivst>();
    static std::vector<unsigned char> levels;
    switch (trial.Below(30)) {
        case 0: object.startRecording(); break;
        case 1: object.stopRecording(); break;
        case 2:  // as the save button does it: what records is stopped first
            if (object.recordingOn) object.stopRecording();
            if (!object.nothingRecorded()) object.saveRecording(take);
            break;
        case 3: host.Call(effEditOpen, 0, 0, window.Handle()); break;
        case 4: host.Call(effEditClose); break;
        case 5:
        case 6:
            object.setParameterFromEditor(static_cast<std::int32_t>(trial.Below(96)), AnyValue(trial));
            break;
        case 7: {  // a name, not the halves of two
            const std::string chord = object.currentChordText();
            trial.Require(chord.empty() || (chord[0] >= 'A' && chord[0] <= 'H'), "no chord's name");
            break;
        }
        case 8: object.buildLevels(levels); break;
        case 9: object.setHearing({static_cast<Ear>(trial.Below(3)), AnyValue(trial), 0}); break;
        default: host.Call(effEditIdle);
    }
}

// Now and then the host calls back, a few levels deep, and never the editor, which is the user's thread's.
bool CallBack(const Host::Request&, std::intptr_t&) {
    if (storm->locks) storm->lock.lock(), storm->lock.unlock();
    if (caller == nullptr || storm->host.effect == nullptr || caller->depth >= 3 || !caller->trial.OneIn(64))
        return false;
    ++caller->depth;
    constexpr void (*calls[])(Trial&) = {PlayBlock, UseParameter, Control};
    calls[caller->trial.Below(3)](caller->trial);
    --caller->depth;
    return false;
}

TEST(Threads, FourThreadsOfAHostCallOneInstanceAtOnce) {
    RunTrials({10, 5, 120}, [](Trial& trial) {
        Devices();
        OwnDisplay();  // it would end with the thread that started it
        Storm now;
        storm = &now;
        now.locks = trial.number % 2 == 1;
        now.host.version = 2300;  // an older host is asked for more
        now.host.keepsEvents = false;
        now.host.answers = CallBack;
        ASSERT_TRUE(now.host.Open(OpenPlugin));
        const TempFolder folder;
        const auto run = [&](const Trial& random, const std::function<void(Trial&)>& act) {
            Caller own{random};
            caller = &own;
            while (now.calls < 20000 || now.blocks < 2500) {
                now.calls.fetch_add(1, std::memory_order_relaxed);
                std::unique_lock<std::recursive_mutex> held(now.lock, std::defer_lock);
                if (now.locks && own.trial.OneIn(2)) held.lock();
                act(own.trial);
            }
            caller = nullptr;
        };
        std::vector<std::thread> threads;
        for (void (*act)(Trial&) : {PlayBlock, UseParameter, Control})
            threads.emplace_back(run, trial.Fork(), act);
        threads.emplace_back([&, random = trial.Fork()] {
            const HostWindow window;
            run(random, [&](Trial& own) { UseWindow(own, window, folder / "take.mid"); });
            now.host.Call(effEditClose);
        });
        for (std::thread& thread : threads) thread.join();
        now.host.Close();
        EXPECT_EQ(Devices().OpenCount() + Devices().faults, 0);
    });
}

// Two audio threads, each with an instance of its own or, in a host that mixes them up, both with one; the
// instances want the same devices.
TEST(Threads, DevicesGoOnAndOffAgainstTwoAudioThreads) {
    RunTrials({20, 10}, [](Trial& trial) {
        Devices();
        const bool shared = trial.OneIn(2);
        {
            LinkedHost hosts[2];
            std::atomic<bool> done{false};
            std::vector<std::thread> threads;
            for (Host& host : hosts) host.keepsEvents = false;
            for (std::size_t i = 0; i < 2; ++i)
                threads.emplace_back([&, &host = hosts[shared ? 0 : i]] {
                    for (const Audio tone = Chord({57, 64}, 4410); !done;)
                        host.Play(tone, tone.size()), host.Play(Silence(64));
                });
            for (int i = 0; i < 200 || Devices().sent == 0; ++i) {
                const Host& host = hosts[trial.Below(2)];
                if (trial.OneIn(2))
                    host.Set(88, static_cast<float>(trial.Below(4)) / 100 + 0.001F);
                else
                    host.Set(89, trial.OneIn(3) ? 0.0F : 1.0F);
                if (trial.OneIn(20)) host.Call(effMainsChanged, 0, 0);
            }
            done = true;
            for (std::thread& thread : threads) thread.join();
        }
        EXPECT_EQ(Devices().stale, 0) << "a message went to a device that was closed";
        EXPECT_GT(Devices().opened, 0);
        EXPECT_EQ(Devices().OpenCount() + Devices().faults, 0);
    });
}

// What a piece on an instance of its own sends to the host, with a take beside it.
std::vector<Host::Event> EventsOf(std::size_t number) {
    Trial trial("piece", number);
    LinkedHost host;
    host.Set(2, static_cast<float>(trial.Below(100)) / 100);
    host.Set(90, static_cast<float>(number % 16) / 15);
    host.plugin.startRecording();
    host.Play(RandomMusic(trial.random, 44100, 0.4), 1 + trial.Below(1000));
    return host.TakenEvents();
}

TEST(Threads, ManyInstancesPlayEachWhatItPlaysAlone) {
    RunTrials({12, 1, 120}, [](Trial&) {
        Devices();
        constexpr std::size_t pieces = 16, threadCount = 4;
        std::vector<std::vector<Host::Event>> together(pieces);
        std::barrier<> start(threadCount);
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < threadCount; ++i)
            threads.emplace_back([&, i] {
                start.arrive_and_wait();  // the first of the process, made at once
                for (std::size_t k = i; k < pieces; k += threadCount) together[k] = EventsOf(k);
            });
        for (std::thread& thread : threads) thread.join();
        for (std::size_t i = 0; i < pieces; ++i) EXPECT_EQ(EventsOf(i), together[i]) << "piece " << i;
    });
}

struct Mapping {
    std::int32_t transpose, channel, velocity;
};
// No two share a channel, a velocity or, for the bands below, a note.
constexpr Mapping mappings[] = {{0, 0, 100}, {30, 5, 40}, {-20, 11, 77}};
constexpr int lowestBand = 40, highestBand = 49;

// Whether note and velocity are those of the channel's mapping. In a take, velocities are scaled.
bool IsWhole(std::uint32_t message, bool scaled) {
    const std::uint32_t kind = message & 0xF0U;
    const auto note = static_cast<std::int32_t>(message >> 8 & 127U);
    const auto velocity = static_cast<std::int32_t>(message >> 16 & 127U);
    for (const Mapping& mapping : mappings) {
        if (static_cast<std::uint32_t>(mapping.channel) != (message & 15U)) continue;
        const std::int32_t band = note - mapping.transpose - 24;
        return kind == 0xC0U ||
               (band >= lowestBand && band <= highestBand &&
                (kind == 0x80U ? velocity == 0 : kind == 0x90U && (scaled || velocity == mapping.velocity)));
    }
    return false;
}

TEST(Threads, NoEventMixesTwoSettingsAndATakeStaysPaired) {
    RunTrials({10, 5}, [](Trial& trial) {
        FakeDevices& devices = Devices();
        static std::atomic<long> mixed{0};
        devices.judge = [](std::uint32_t message) {
            if (!IsWhole(message, false)) ++mixed;
        };
        Bands bands;
        TNoteRecorder& recorder = bands.recorder;
        recorder.sendProgramChange = false;
        recorder.ChangeMapping(mappings[0].transpose, mappings[0].channel, mappings[0].velocity);
        auto* const recording = new TRTRecording;
        for (TNoteOut* const output : std::initializer_list<TNoteOut*>{new TRTMidiOut(0), recording}) {
            recorder.AddOutput(output);  // the recorder's from here on
            output->Start();
        }
        std::atomic<bool> done{false};
        std::thread audio([&, own = trial.Fork()]() mutable {
            for (long frame = 0; frame < 1000 || !done.load(std::memory_order_relaxed); ++frame) {
                for (int band = lowestBand; band <= highestBand; ++band)
                    if (own.OneIn(4)) bands.detector.Set(band, !bands.detector.on[band]);
                recorder.OnFrame();
            }
        });
        for (long i = 0; i < 5000; ++i) {
            const Mapping& next = mappings[trial.Below(3)];
            recorder.ChangeMapping(next.transpose, next.channel, next.velocity);
            if (i % 16 == 0) recorder.SetProgram(static_cast<std::int32_t>(trial.Below(128)));
        }
        done = true;
        audio.join();
        recording->Stop();
        EXPECT_EQ(mixed, 0);
        EXPECT_GT(devices.sent, 0);
        std::uint32_t open = 0;
        for (const TRecordEvent& event : recording->GetTake()) {
            ASSERT_TRUE(IsWhole(event.message, true)) << std::hex << event.message;
            const std::uint32_t kind = event.message & 0xF0U;
            if (kind == 0xC0U) continue;
            ASSERT_EQ(open, kind == 0x80U ? event.message & 0xFF0FU : 0U) << "each on, then its own off";
            open = kind == 0x90U ? event.message & 0xFF0FU : 0;
        }
        EXPECT_EQ(open, 0U);
    });
}

}  // namespace
