// Whatever a host's threads do to the plug-in at the same time, in whatever order.
#include <gtest/gtest.h>

#include <barrier>
#include <cmath>
#include <mutex>
#include <optional>

#include "module/plugin_entry.h"
#include "plugin/gui_plugin.h"
#include "tests/support/devices.h"
#include "tests/support/host.h"
#include "tests/support/host_window.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"
#include "tests/threads/watchdog.h"

namespace {

using Random = std::minstd_rand;

std::uint32_t Below(Random& random, std::uint32_t count) {
    return static_cast<std::uint32_t>(random() >> 4) % count;
}

// Devices and messages for a process in which threads meet; never destroyed, since devices are closed at its
// end.
FakeDevices& Devices() {
    static FakeDevices& devices = *[] {
        auto* const made = new FakeDevices;
        made->keepsLines = false;
        SubstituteMidiOut(made);
        (new Messages)->keepsTexts = false;
        return made;
    }();
    return devices;
}

void ExpectDevicesAtRest() {
    EXPECT_EQ(Devices().OpenCount(), 0);
    EXPECT_EQ(Devices().faults, 0);
}

// One of the host's threads: its random numbers, and how deep it is in calls from within callbacks.
struct Caller {
    Random random;
    std::size_t number = 0;
    int depth = 0;
};
thread_local Caller* caller = nullptr;

struct Storm {
    Host host;
    Watchdog watchdog;
    std::atomic<long> calls{0}, blocks{0};
    std::atomic<bool> audioIsWhole{true}, textsFit{true};
    bool Goes() const {
        return calls.load(std::memory_order_relaxed) < 20000 || blocks.load(std::memory_order_relaxed) < 2500;
    }
    CORVAguivst& Object() const { return host.Object<CORVAguivst>(); }
};
Storm* storm = nullptr;

void Step(const char* doing) {
    storm->calls.fetch_add(1, std::memory_order_relaxed);
    storm->watchdog.Step(caller->number, doing);
}

// Not by Host::Play, whose clock belongs to one thread.
template <typename Sample, typename Call>
void PlayThrough(const Audio& block, Call call) {
    std::vector<Sample> in(block.begin(), block.end()), out(block.size());
    Sample* from = in.data();
    Sample* to = out.data();
    call(storm->host.effect, &from, &to, static_cast<std::int32_t>(in.size()));
    for (std::size_t i = 0; i < in.size(); ++i)
        if (!(out[i] == in[i] || std::isnan(in[i]))) storm->audioIsWhole = false;
}

// Tones, silence, noise, and NaN, by each of the three calls.
void PlayBlock(Random& random) {
    static thread_local std::size_t clock = 0;
    const std::size_t length = 1 + Below(random, Below(random, 8) == 0 ? 1024 : 128);
    const std::uint32_t kind = Below(random, 16), way = Below(random, 4);
    Audio block = kind < 10   ? Chord({45 + static_cast<int>(clock / 8000 % 30), 57, 64}, length, clock)
                  : kind < 12 ? Silence(length)
                              : Noise(random, length);
    if (kind == 15) block[0] = NAN;
    clock += length;
    Step("a block");
    if (way == 0)
        PlayThrough<double>(block, storm->host.effect->processDoubleReplacing);
    else
        PlayThrough<float>(block,
                           way == 1 ? storm->host.effect->process : storm->host.effect->processReplacing);
    storm->blocks.fetch_add(1, std::memory_order_relaxed);
}

float AnyValue(Random& random) {
    constexpr float odd[] = {0, 1, -1e30F, INFINITY, NAN};
    return Below(random, 2) == 0 ? odd[Below(random, 5)] : static_cast<float>(Below(random, 1001)) / 1000;
}

void UseParameter(Random& random) {
    const Host& host = storm->host;
    const auto index = static_cast<std::int32_t>(Below(random, 100)) - 2;
    char text[] = "0.5", buffer[256];
    switch (Below(random, 7)) {
        case 0: Step("getParameter"), host.Get(index); break;
        case 1: Step("display"), host.Call(effGetParamDisplay, index, 0, buffer); break;
        case 2: Step("string2parameter"), host.Call(effString2Parameter, index, 0, text); break;
        case 3: Step("set 0 to 2"), host.Set(index % 3, AnyValue(random)); break;
        case 4: Step("set 87 to 95"), host.Set(87 + (index + 2) % 9, AnyValue(random)); break;
        default: Step("setParameter"), host.Set(index, AnyValue(random));
    }
}

void Control(Random& random) {
    constexpr float rates[] = {44100, 48000, 22050, 96000, 8000, 0, 1234.5F, NAN};
    const Host& host = storm->host;
    char text[256] = "sendVstMidiEvent";
    switch (Below(random, 10)) {
        case 0: Step("suspend"), host.Call(effMainsChanged, 0, 0); break;
        case 1: Step("resume"), host.Call(effMainsChanged, 0, 1); break;
        case 2: Step("rate"), host.Call(effSetSampleRate, 0, 0, nullptr, rates[Below(random, 8)]); break;
        case 3: Step("canDo"), host.Call(effCanDo, 0, 0, text); break;
        case 4: {
            const std::string name(Below(random, 60), static_cast<char>('a' + Below(random, 26)));
            Step("setProgramName"), host.Call(effSetProgramName, 0, 0, const_cast<char*>(name.c_str()));
            break;
        }
        case 5: {
            Step("getProgramName"), host.Call(effGetProgramName, 0, 0, text);
            const std::string name = text;
            if (name.size() > 31 || (name != "Default" && name.find_first_not_of(name[0]) != name.npos))
                storm->textsFit = false;  // each name that is set is of one letter
            break;
        }
        case 6: Step("open"), host.Call(effOpen); break;
        default:
            Step("another opcode"), host.Call(static_cast<std::int32_t>(45 + Below(random, 40)), 0, 0, text);
    }
}

// The user, with a window and its buttons.
void UseWindow(Random& random, const HostWindow& window, const std::string& take) {
    const Host& host = storm->host;
    CORVAguivst& object = storm->Object();
    static std::vector<unsigned char> levels;
    switch (Below(random, 30)) {
        case 0: Step("startRecording"), object.startRecording(); break;
        case 1: Step("stopRecording"), object.stopRecording(); break;
        case 2:  // as the save button does it: what records is stopped first
            Step("save");
            if (object.recordingOn) object.stopRecording();
            if (!object.nothingRecorded()) object.saveRecording(take);
            break;
        case 3: Step("effEditOpen"), host.Call(effEditOpen, 0, 0, window.Handle()); break;
        case 4: Step("effEditClose"), host.Call(effEditClose); break;
        case 5:
        case 6:
            Step("setParameterFromEditor");
            object.setParameterFromEditor(static_cast<std::int32_t>(Below(random, 96)), AnyValue(random));
            break;
        case 7: Step("currentChordText"), object.currentChordText(); break;
        case 8: Step("buildLevels"), object.buildLevels(levels); break;
        default: Step("effEditIdle"), host.Call(effEditIdle); break;
    }
}

// Now and then the host calls back, a few levels deep, and never the editor, which is the user's thread's.
bool CallBack(const Host::Request&, std::intptr_t&) {
    if (caller == nullptr || storm == nullptr || storm->host.effect == nullptr || caller->depth >= 3 ||
        Below(caller->random, 64) != 0)
        return false;
    ++caller->depth;
    constexpr void (*calls[])(Random&) = {PlayBlock, UseParameter, Control};
    calls[Below(caller->random, 3)](caller->random);
    --caller->depth;
    return false;
}

TEST(Threads, FourThreadsOfAHostCallOneInstanceAtOnce) {
    RunTrials({10, 5, 120}, [](Trial& trial) {
        Devices();
        OwnDisplay();  // it would end with the thread that started it
        Storm now;
        now.host.version = 2300;  // an older host is asked for more
        now.host.keepsEvents = false;
        now.host.answers = CallBack;
        ASSERT_TRUE(now.host.Open(OpenPlugin));
        storm = &now;
        const TempFolder folder;
        std::vector<Caller> callers;
        for (std::size_t i = 0; i < 4; ++i)
            callers.push_back({Random(static_cast<unsigned>(trial.random())), i});
        const auto run = [&](std::size_t number, auto act) {
            caller = &callers[number];
            while (now.Goes()) act(caller->random);
            now.watchdog.Ended(number);
            caller = nullptr;
        };
        std::vector<std::thread> threads;
        threads.emplace_back(run, 0, PlayBlock);
        threads.emplace_back(run, 1, UseParameter);
        threads.emplace_back(run, 2, Control);
        threads.emplace_back([&] {
            const HostWindow window;
            run(3, [&](Random& random) { UseWindow(random, window, folder / "take.mid"); });
            now.host.Call(effEditClose);
        });
        now.watchdog.Await(4);
        for (std::thread& thread : threads) thread.join();
        EXPECT_TRUE(now.audioIsWhole) << "a block came out changed";
        EXPECT_TRUE(now.textsFit) << "a program name of two, or too long";
        now.host.Close();
        storm = nullptr;
        ExpectDevicesAtRest();
    });
}

// Two audio threads, each with an instance of its own or, in a host that mixes them up, both with one; the
// instances want the same devices.
TEST(Threads, DevicesGoOnAndOffAgainstTwoAudioThreads) {
    RunTrials({20, 10}, [](Trial& trial) {
        Devices();
        const bool shared = trial.OneIn(2);
        {
            Host hosts[2];
            for (Host& host : hosts) {
                host.keepsEvents = false;
                ASSERT_TRUE(host.Open(OpenPlugin));
            }
            std::atomic<bool> done{false};
            Watchdog watchdog;
            std::vector<std::thread> threads;
            for (std::size_t i = 0; i < 2; ++i)
                threads.emplace_back([&, i] {
                    AEffect* const effect = hosts[shared ? 0 : i].effect;
                    Audio tone = Chord({57, 64}, 4410), silence(64);
                    while (!done.load(std::memory_order_relaxed)) {
                        watchdog.Step(i, "process");
                        for (Audio* const each : {&tone, &silence}) {
                            float* block = each->data();
                            effect->processReplacing(effect, &block, &block,
                                                     static_cast<std::int32_t>(each->size()));
                        }
                    }
                    watchdog.Ended(i);
                });
            threads.emplace_back([&] {
                for (int i = 0; i < 200 || Devices().sent == 0; ++i) {
                    watchdog.Step(2, "a switch");
                    const Host& host = hosts[trial.Below(2)];
                    if (trial.OneIn(2))
                        host.Set(88, static_cast<float>(trial.Below(4)) / 100 + 0.001F);
                    else
                        host.Set(89, trial.OneIn(3) ? 0.0F : 1.0F);
                    if (trial.OneIn(20)) host.Call(effMainsChanged, 0, 0);
                }
                done = true;
                watchdog.Ended(2);
            });
            watchdog.Await(3);
            for (std::thread& thread : threads) thread.join();
        }
        EXPECT_EQ(Devices().stale, 0) << "a message went to a device that was closed";
        EXPECT_GT(Devices().opened, 0);
        ExpectDevicesAtRest();
    });
}

// A host with a lock of its own, in its callback and around its calls, whichever lock the other thread has.
TEST(Threads, AHostsOwnLockLocksNothingUp) {
    RunTrials({10, 5, 120}, [](Trial& trial) {
        Devices();
        static std::recursive_mutex lock;
        Host host;
        host.keepsEvents = false;
        host.answers = [](const Host::Request&, std::intptr_t&) { return lock.lock(), lock.unlock(), false; };
        ASSERT_TRUE(host.Open(OpenPlugin));
        auto& object = host.Object<CORVAguivst>();
        const bool aroundBlocks = trial.number % 2 == 0;
        Watchdog watchdog;
        std::atomic<bool> done{false};
        std::thread audio([&] {
            Audio tone = Chord({57, 64}, 1500);
            tone.resize(1600);
            while (!done) {
                std::unique_lock<std::recursive_mutex> held(lock, std::defer_lock);
                if (aroundBlocks) held.lock();
                watchdog.Step(0, "process");
                host.Play(tone, 400);
            }
            watchdog.Ended(0);
        });
        for (int round = 0; round < 300; ++round) {
            const std::lock_guard<std::recursive_mutex> held(lock);
            watchdog.Step(1, "a change");
            switch (trial.Below(7)) {
                case 0: host.Call(effMainsChanged, 0, 0); break;
                case 1: host.Call(effSetSampleRate, 0, 0, nullptr, 48000); break;
                case 2: host.Set(2, static_cast<float>(trial.Within(0, 1))); break;
                case 3: host.Set(90, static_cast<float>(trial.Within(0, 1))); break;
                case 4: host.Set(trial.OneIn(2) ? 91 : 89, static_cast<float>(trial.Below(2))); break;
                case 5: object.startRecording(); break;
                default: object.stopRecording(); break;
            }
        }
        done = true;
        watchdog.Ended(1);
        watchdog.Await(2);
        audio.join();
    });
}

// A piece on an instance of its own, a block at a call, with a take beside it.
class Player {
public:
    explicit Player(std::size_t number) : random(static_cast<unsigned>(number + 1)) {
        host.Open(OpenPlugin);
        host.Set(2, static_cast<float>(Below(random, 100)) / 100);
        host.Set(90, static_cast<float>(number % 16) / 15);
        host.Object<CORVAguivst>().startRecording();
        music = RandomMusic(random, 44100, 0.4);
    }
    bool Step() {
        const std::size_t length = std::min<std::size_t>(1 + Below(random, 1000), music.size() - at);
        const auto from = music.begin() + static_cast<std::ptrdiff_t>(at);
        host.Play({from, from + static_cast<std::ptrdiff_t>(length)});
        at += length;
        return at < music.size();
    }
    std::vector<Host::Event> Result() { return host.TakenEvents(); }

private:
    Random random;
    Host host;
    Audio music;
    std::size_t at = 0;
};

TEST(Threads, ManyInstancesPlayEachWhatItPlaysAlone) {
    RunTrials({12, 1, 120}, [](Trial& trial) {
        Devices();
        constexpr std::size_t pieces = 16, threadCount = 4, own = pieces / threadCount;
        std::vector<std::vector<Host::Event>> alone, together(pieces);
        std::barrier<> start(threadCount);
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < threadCount; ++i)
            threads.emplace_back([&, i, seed = static_cast<unsigned>(trial.random())] {
                Random random(seed);
                std::optional<Player> players[own];  // all alive before the first ends
                start.arrive_and_wait();             // the first of the process, made at once
                for (std::size_t k = 0; k < own; ++k) players[k].emplace(i * own + k);
                for (std::size_t left = own; left > 0;) {
                    const std::size_t k = Below(random, own);
                    if (!players[k] || players[k]->Step()) continue;
                    together[i * own + k] = players[k]->Result();
                    players[k].reset();
                    --left;
                }
            });
        for (std::thread& thread : threads) thread.join();
        for (std::size_t i = 0; i < pieces; ++i) {
            Player player(i);
            while (player.Step()) {
            }
            alone.push_back(player.Result());
        }
        EXPECT_EQ(together, alone);
    });
}

}  // namespace
