// THR-1: whatever a host's threads do at the same time, in whatever order.
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <thread>

#include "tests/support/counting_devices.h"
#include "torture/life/host_window.h"
#include "torture/life/instance.h"
#include "torture/life/watchdog.h"
#include "torture/row.h"

namespace {

constexpr long callsEach = 20000;           // of a case,
constexpr long blocksEach = callsEach / 8;  // of which are process calls, at least
constexpr std::size_t longestBlock = 1024;  // samples
constexpr auto patience = std::chrono::seconds(5);

using Random = std::minstd_rand;

// One thread of the host: its dice, and how deep it is in calls that the host made from within callbacks.
struct Caller {
    Random random;
    std::size_t number;
    int depth = 0;
};
thread_local Caller* caller = nullptr;

struct Storm {
    const Instance* plug = nullptr;
    Watchdog watchdog;
    std::atomic<long> calls{0}, blocks{0};
    std::atomic<bool> audioIsWhole{true}, textsFit{true};

    bool Goes() const {
        return calls.load(std::memory_order_relaxed) < callsEach ||
               blocks.load(std::memory_order_relaxed) < blocksEach;
    }
};
Storm* storm = nullptr;

std::uint32_t Below(Random& random, std::uint32_t count) {
    return static_cast<std::uint32_t>(random() >> 4) % count;
}

void Step(const char* doing) {
    storm->calls.fetch_add(1, std::memory_order_relaxed);
    storm->watchdog.Step(caller->number, doing);
}

// --- what each thread does ---

// Tones, silence, noise, and what is no sound at all.
void Fill(Random& random, std::vector<float>& block, std::size_t& clock) {
    const std::uint32_t kind = Below(random, 16);
    if (kind < 10)
        block = Chord({45 + static_cast<int>(clock / 8000 % 30), 57, 64}, block.size(), clock);
    else if (kind < 12)
        std::fill(block.begin(), block.end(), 0.0F);
    else if (kind < 15)
        for (float& sample : block) sample = static_cast<float>(Below(random, 2001)) / 1000 - 1;
    else
        for (float& sample : block) sample = Below(random, 2) == 0 ? INFINITY : NAN;
    clock += block.size();
}

void PlayBlock(Random& random, std::size_t& clock) {
    std::vector<float> block(1 + Below(random, Below(random, 8) == 0 ? longestBlock : 128));
    Fill(random, block, clock);
    const auto frames = static_cast<std::int32_t>(block.size());
    AEffect* const effect = storm->plug->effect;
    const std::uint32_t door = Below(random, 4);
    if (door == 0) {
        std::vector<double> in(block.begin(), block.end()), out(block.size());
        double* from = in.data();
        double* to = out.data();
        Step("processDoubleReplacing");
        effect->processDoubleReplacing(effect, &from, &to, frames);
        if (std::memcmp(in.data(), out.data(), in.size() * sizeof(double)) != 0) storm->audioIsWhole = false;
    } else if (door == 1) {
        std::vector<float> out(block.size(), 0.0F);
        float* from = block.data();
        float* to = out.data();
        Step("process");
        effect->process(effect, &from, &to, frames);
        for (std::size_t i = 0; i < out.size(); ++i)
            if (!(out[i] == block[i] || std::isnan(block[i]))) storm->audioIsWhole = false;
    } else {
        Step("processReplacing");
        if (!storm->plug->Play(block)) storm->audioIsWhole = false;
    }
    storm->blocks.fetch_add(1, std::memory_order_relaxed);
}

float AnyValue(Random& random) {
    switch (Below(random, 12)) {
        case 0: return 0;
        case 1: return 1;
        case 2: return -1e30F;
        case 3: return INFINITY;
        case 4: return NAN;
        default: return static_cast<float>(Below(random, 1001)) / 1000;
    }
}

void UseParameter(Random& random) {
    const Instance& plug = *storm->plug;
    const auto index = static_cast<std::int32_t>(Below(random, 100)) - 2;
    const float value = AnyValue(random);
    char text[] = "0.5";
    switch (Below(random, 8)) {
        case 0: Step("getParameter"), plug.Get(index); break;
        case 1: Step("display"), plug.Text(effGetParamDisplay, index); break;
        case 2: Step("name"), plug.Text(effGetParamName, index); break;
        case 3: Step("string2parameter"), plug.Call(effString2Parameter, index, 0, text); break;
        case 4: Step("set 0 to 2"), plug.Set(static_cast<std::int32_t>(Below(random, 3)), value); break;
        case 5:
            Step("set 87 to 95"), plug.Set(87 + static_cast<std::int32_t>(Below(random, 9)), value);
            break;
        default: Step("setParameter"), plug.Set(index, value);
    }
}

void Control(Random& random) {
    static constexpr float rates[] = {44100, 48000, 22050, 96000, 8000, 0, 1234.5F, NAN};
    const Instance& plug = *storm->plug;
    char text[64] = "sendVstMidiEvent";
    switch (Below(random, 12)) {
        case 0: Step("suspend"), plug.Call(effMainsChanged, 0, 0); break;
        case 1: Step("resume"), plug.Call(effMainsChanged, 0, 1); break;
        case 2: Step("rate"), plug.Call(effSetSampleRate, 0, 0, nullptr, rates[Below(random, 8)]); break;
        case 3:
            Step("block size"), plug.Call(effSetBlockSize, 0, static_cast<std::intptr_t>(random()));
            break;
        case 4: Step("canDo"), plug.Call(effCanDo, 0, 0, text); break;
        case 5: {
            const std::string name(Below(random, 60), static_cast<char>('a' + Below(random, 26)));
            Step("setProgramName"), plug.Call(effSetProgramName, 0, 0, const_cast<char*>(name.c_str()));
            break;
        }
        case 6: {
            Step("getProgramName");
            const std::string name = plug.Text(effGetProgramName);
            if (name.size() > 31 || (name != "Default" && name.find_first_not_of(name[0]) != name.npos))
                storm->textsFit = false;  // each name that is set is of one letter
            break;
        }
        case 7: Step("open"), plug.Call(effOpen); break;
        case 8: Step("identity"), plug.Text(effGetEffectName), plug.Text(effGetVendorString); break;
        default: Step("no such opcode"), plug.Call(static_cast<std::int32_t>(62 + Below(random, 20))); break;
    }
}

// The user, with a window and its buttons.
class User {
public:
    User() = default;
    ~User() { std::remove(take.c_str()); }
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    void Act(Random& random) {
        const Instance& plug = *storm->plug;
        CORVAguivst& object = plug.Object();
        ERect* rect = nullptr;
        switch (Below(random, 40)) {
            case 0: Step("startRecording"), object.startRecording(); break;
            case 1: Step("stopRecording"), object.stopRecording(); break;
            case 2: Save(object); break;
            case 3: Step("effEditGetRect"), plug.Call(effEditGetRect, 0, 0, &rect); break;
            case 4: Step("effEditOpen"), plug.Call(effEditOpen, 0, 0, window.Handle()); break;
            case 5: Step("effEditClose"), plug.Call(effEditClose); break;
            case 6:
            case 7:
            case 8: {
                const auto index = static_cast<std::int32_t>(Below(random, 96));
                Step("setParameterFromEditor"), object.setParameterFromEditor(index, AnyValue(random));
                break;
            }
            case 9: Step("currentChordText"), object.currentChordText(); break;
            case 10: Step("buildLevels"), object.buildLevels(levels); break;
            default: Step("effEditIdle"), plug.Call(effEditIdle); break;
        }
    }

private:
    // As the save button does it: what records is stopped first.
    void Save(CORVAguivst& object) {
        Step("save");
        if (object.recordingOn) object.stopRecording();
        if (!object.nothingRecorded()) object.saveRecording(take);
    }
    HostWindow window;
    const std::string take = "/tmp/orva_storm_" + std::to_string(getpid());
    std::vector<unsigned char> levels;
};

// --- the host ---

// Now and then it calls back into the plug-in, a few levels deep, and never the editor, which is the user's
// thread's alone.
std::intptr_t Host(AEffect* effect, std::int32_t opcode, std::int32_t, std::intptr_t, void* text, float) {
    if (caller != nullptr && storm != nullptr && storm->plug != nullptr && effect != nullptr &&
        caller->depth < 3 && Below(caller->random, 64) == 0) {
        ++caller->depth;
        std::size_t clock = 0;
        switch (Below(caller->random, 3)) {
            case 0: PlayBlock(caller->random, clock); break;
            case 1: UseParameter(caller->random); break;
            default: Control(caller->random); break;
        }
        --caller->depth;
    }
    switch (opcode) {
        case audioMasterVersion: return 2300;  // an older host is asked for more
        case audioMasterGetSampleRate: return 44100;
        case audioMasterGetVendorString: std::strcpy(static_cast<char*>(text), "Maker"); return 1;
        default: return 0;
    }
}

void TryStorm(Trial& trial) {
    const Substitutes& substitutes = Substitutes::InPlace();
    OwnDisplay();  // it would end with the thread that started it
    const long opened = substitutes.devices.opened, closed = substitutes.devices.closed;
    Storm now;
    storm = &now;
    Instance plug(Host);
    now.plug = &plug;
    std::vector<Caller> callers;
    for (std::size_t i = 0; i < 4; ++i) callers.push_back({Random(static_cast<unsigned>(trial.random())), i});
    const auto run = [&](std::size_t number, auto act) {
        caller = &callers[number];
        while (now.Goes()) act(caller->random);
        now.watchdog.Ended(number);
        caller = nullptr;
    };
    std::size_t clock = 0;
    std::vector<std::thread> threads;
    threads.emplace_back(run, 0, [&](Random& random) { PlayBlock(random, clock); });
    threads.emplace_back(run, 1, UseParameter);
    threads.emplace_back(run, 2, Control);
    threads.emplace_back([&] {
        User user;
        run(3, [&](Random& random) { user.Act(random); });
        plug.Call(effEditClose);
    });
    now.watchdog.Await(trial, 4, patience);
    for (std::thread& thread : threads) thread.join();
    trial.Require(now.audioIsWhole, "a block came out changed");
    trial.Require(now.textsFit, "a program name of two, or too long");
    plug.Close();
    storm = nullptr;
    const CountingDevices& devices = substitutes.devices;
    trial.Require(devices.opened - opened == devices.closed - closed, "a device was left open");
    trial.Require(devices.faults == 0, "a device was opened twice, or sent no note");
}

const Registered storms({"THR-1", "four threads of a host call one instance at once", inAll,
                         8'000'000 / callsEach, 25, 120, TryStorm, 450});

}  // namespace
