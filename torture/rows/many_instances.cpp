// THR-7: the first instances of a process, made at once. LIF-6: an instance whose life is spread over
// threads. LIF-7: many instances, which must not hear of each other.
#include <dlfcn.h>

#include <atomic>
#include <barrier>
#include <list>
#include <optional>
#include <set>
#include <thread>

#include "tests/support/counting_devices.h"
#include "torture/life/host_window.h"
#include "torture/life/instance.h"
#include "torture/row.h"

namespace {

std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void* text, float) {
    if (opcode == audioMasterGetVendorString || opcode == audioMasterGetProductString)
        std::strcpy(static_cast<char*>(text), "Maker");
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 48000 : 0;
}

// --- THR-7 ---

// All that a host can read of a fresh instance.
std::string Identity(const Instance& plug) {
    std::string all = std::to_string(plug.effect->flags);
    for (std::int32_t i = 0; i < 96; ++i) {
        all += ' ' + std::to_string(plug.Get(i));
        all += ' ' + plug.Text(effGetParamDisplay, i) + ' ' + plug.Text(effGetParamName, i);
    }
    return all + plug.Text(effGetProgramName) + plug.Text(effGetEffectName) + plug.Text(effGetVendorString);
}

void TryFirstInstances(Trial& trial) {
    constexpr std::size_t count = 16;
    const bool fromFile = trial.number % 2 == 0;  // else as linked code, on devices of our own
    if (!fromFile) Substitutes::InPlace();
    std::barrier<> start(count);
    std::string identities[count];
    std::atomic<int> faults{0};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i)
        threads.emplace_back([&, i] {
            std::vector<float> tone = Chord({60, 64}, 1024, 0, 48000);
            start.arrive_and_wait();
            using Entry = AEffect* (*)(audioMasterCallback);
            void* const file = fromFile ? dlopen(ORVA_MODULE_FILE, RTLD_NOW | RTLD_LOCAL) : nullptr;
            const Entry entry = fromFile ? reinterpret_cast<Entry>(dlsym(file, "VSTPluginMain")) : OpenPlugin;
            {
                Instance plug(entry(Host));
                if (plug.effect == nullptr) return void(++faults);
                plug.Call(effOpen);
                identities[i] = Identity(plug);
                plug.Call(effMainsChanged, 0, 1);
                if (!plug.Play(tone)) ++faults;
            }
            if (fromFile) dlclose(file);
        });
    for (std::thread& thread : threads) thread.join();
    trial.Require(faults == 0, "an instance was not opened, or changed its audio");
    for (const std::string& each : identities)
        trial.Require(each == identities[0],
                      "two instances tell two things: " + each + " and " + identities[0]);
}

// --- LIF-6 ---

// Everything that one thread has done is seen by the next: each begins when the one before has ended.
void TryThreadsOfALife(Trial& trial) {
    Substitutes::InPlace();
    static HostWindow& window = *new HostWindow;
    std::optional<Instance> plug;
    bool whole = true, opened = false;
    const auto onItsOwn = [](auto deed) { std::thread(deed).join(); };
    onItsOwn([&] {
        plug.emplace(Host);
        plug->Call(effOpen);
        plug->Set(89, 1);
    });
    onItsOwn([&] {
        plug->Call(effMainsChanged, 0, 1);
        std::vector<float> tones = Chord({57, 64, 69}, 4800, 0, 48000);
        whole = plug->Play(tones) && plug->Play(tones);
    });
    onItsOwn([&] {
        opened = plug->Call(effEditOpen, 0, 0, window.Handle()) != 0;
        for (int i = 0; i < 3; ++i) plug->Call(effEditIdle);
        if (trial.OneIn(2)) plug->Call(effEditClose);
    });
    onItsOwn([&] { plug.reset(); });
    trial.Require(whole, "a block came out changed");
    trial.Require(opened, "the window did not open");
    trial.Require(window.Children().empty(), "a window is left");
    const CountingDevices& devices = Substitutes::InPlace().devices;
    trial.Require(devices.opened == devices.closed && devices.faults == 0, "a device was left open");
}

// --- LIF-7 ---

constexpr std::size_t pieces = 64, threadCount = 8, blocksEach = 24;

// A sum over all events of an instance: when, and which.
using Sum = std::uint64_t;

struct Performance {
    Sum sum = 14695981039346656037U;
    std::int64_t clock = 0;
    void Add(std::uint64_t word) { sum = (sum ^ word) * 1099511628211U; }
};

std::intptr_t CountingHost(AEffect* effect, std::int32_t opcode, std::int32_t, std::intptr_t, void* data,
                           float) {
    // What comes while the instance is built has no place yet, and is the same for all.
    if (opcode == audioMasterProcessEvents && effect->resvd1 != 0) {
        auto& here = *reinterpret_cast<Performance*>(effect->resvd1);
        const auto& event =
            *reinterpret_cast<const VstMidiEvent*>(static_cast<const VstEvents*>(data)->events[0]);
        std::uint32_t bytes = 0;
        std::memcpy(&bytes, event.midiData, sizeof bytes);
        here.Add(static_cast<std::uint64_t>(here.clock + event.deltaFrames));
        here.Add(bytes);
    }
    return opcode == audioMasterVersion ? 2400 : opcode == audioMasterGetSampleRate ? 44100 : 0;
}

// Piece `number` on an instance of its own, a block at a call.
class Player {
public:
    explicit Player(std::size_t number) : random(static_cast<unsigned>(number + 1)), plug(CountingHost) {
        plug.effect->resvd1 = reinterpret_cast<std::intptr_t>(&here);
        plug.Call(effMainsChanged, 0, 1);
        plug.Set(0, static_cast<float>(random() / 16 % 100) / 100);
        plug.Set(2, static_cast<float>(random() / 16 % 100) / 100);
        plug.Set(90, static_cast<float>(number % 16) / 15);
        plug.Set(93, 1);
        plug.Object().startRecording();
        for (int i = 0; i < 3; ++i) notes.push_back(40 + static_cast<int>(random() / 16 % 40));
    }
    ~Player() { plug.Close(); }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    bool Goes() const { return block < blocksEach; }
    void Step() {
        const std::size_t length = 1 + random() / 16 % 1000;
        std::vector<float> audio = Chord(notes, length, static_cast<std::size_t>(here.clock));
        if (block == blocksEach / 2) audio.assign(length, 0.0F), ++notes[0];
        plug.Play(audio);
        here.clock += static_cast<std::int64_t>(length);
        ++block;
    }
    // With the take, which remembers the same notes by another way.
    Sum Result() {
        plug.Object().stopRecording();
        const CORVAguivst& object = plug.Object();
        here.Add(object.noteRecorder.GetTime() >= 0 ? 1 : 0);
        here.Add(plug.Object().nothingRecorded() ? 1 : 2);
        for (const char letter : plug.Object().currentChordText())
            here.Add(static_cast<unsigned char>(letter));
        return here.sum;
    }

private:
    std::minstd_rand random;
    Performance here;
    Instance plug;
    std::vector<int> notes;
    std::size_t block = 0;
};

Sum Alone(std::size_t number) {
    Player player(number);
    while (player.Goes()) player.Step();
    return player.Result();
}

void TryManyInstances(Trial& trial) {
    Substitutes::InPlace();
    static const std::vector<Sum> expected = [] {
        std::vector<Sum> sums;
        for (std::size_t number = 0; number < pieces; ++number) sums.push_back(Alone(number));
        return sums;
    }();
    trial.Require(std::set<Sum>(expected.begin(), expected.end()).size() > pieces / 2,
                  "too few pieces sound");
    std::atomic<int> differ{0};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i)
        threads.emplace_back([&, i, seed = static_cast<unsigned>(trial.random())] {
            std::minstd_rand random(seed);
            constexpr std::size_t own = pieces / threadCount;
            std::optional<Player> players[own];  // all alive before the first ends
            for (std::size_t k = 0; k < own; ++k) players[k].emplace(i * own + k);
            for (std::size_t left = own; left > 0;) {
                const std::size_t k = random() / 16 % own;
                if (!players[k]) continue;
                if (players[k]->Goes()) {
                    players[k]->Step();
                    continue;
                }
                if (players[k]->Result() != expected[i * own + k]) ++differ;
                players[k].reset();
                --left;
            }
        });
    for (std::thread& thread : threads) thread.join();
    trial.Require(differ == 0, std::to_string(differ) + " of 64 play what they do not play alone");
}

const Registered first({"THR-7", "16 instances made at once as a process's first ones agree", inAll, 2000, 1,
                        60, TryFirstInstances});
const Registered spread({"LIF-6", "made, played, shown and destroyed each on a thread of its own", inAll,
                         1000, 50, 60, TryThreadsOfALife});
const Registered many({"LIF-7", "64 instances on 8 threads play each what it plays alone", inAll,
                       20'000 / pieces, 20, 120, TryManyInstances});

}  // namespace
