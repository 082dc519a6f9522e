// Hosts that call in an order nobody would.
#include <cmath>
#include <limits>

#include "torture/model/side_by_side.h"

namespace {

constexpr float rates[] = {100, 1000, 8000, 11025, 22050, 44100, 48000, 96000, 192000, 768000};
constexpr const char* texts[] = {"",
                                 "sendVstMidiEvent",
                                 "sendVstMidiEventFlagIsRealtime",
                                 "receiveVstEvents",
                                 "0.5",
                                 "-20",
                                 "90",
                                 "A name that is longer than the thirty-two bytes of a program's"};

float SomeNumber(Trial& trial) {
    switch (trial.Below(6)) {
        case 0: return std::numeric_limits<float>::quiet_NaN();
        case 1: return 1e30F;
        case 2: return -1;
        default: return static_cast<float>(trial.Below(1000)) / 999;
    }
}

// Every opcode of the interface but the last goodbye, and some that it does not know.
std::int32_t SomeOpcode(Trial& trial) {
    constexpr std::int32_t unknown[] = {-1, 80, 255, std::numeric_limits<std::int32_t>::max()};
    const auto number = static_cast<std::int32_t>(trial.Below(84));
    if (number >= 80) return unknown[number - 80];
    return number == effClose ? effOpen : number;
}

void SomeDispatch(Trial& trial, SideBySide& both) {
    const std::int32_t opcode = SomeOpcode(trial);
    const auto index = static_cast<std::int32_t>(trial.Below(130)) - 2;
    std::intptr_t value = trial.OneIn(3) ? static_cast<std::intptr_t>(trial.random())
                                         : static_cast<std::intptr_t>(trial.Below(3)) - 1;
    if ((value & 255) == VKEY_F1) ++value;  // which opens the help
    const bool isRate = opcode == effSetSampleRate || opcode == effSetBlockSizeAndSampleRate;
    std::optional<std::string> text;
    if (!trial.OneIn(5)) text = texts[trial.Below(std::size(texts))];
    both.Call(opcode, index, value, text, isRate ? rates[trial.Below(std::size(rates))] : SomeNumber(trial));
}

void SomeCall(Trial& trial, SideBySide& both, std::uint64_t longestBlock) {
    switch (trial.Below(8)) {
        case 0: {
            const auto door = static_cast<SideBySide::Door>(trial.Below(3));
            both.Play(SomeAudio(trial, trial.Below(longestBlock), 44100), door);
            break;
        }
        case 1: both.Set(static_cast<std::int32_t>(trial.Below(130)) - 2, SomeNumber(trial)); break;
        case 2: both.Record(trial.OneIn(2)); break;
        default: SomeDispatch(trial, both);
    }
}

constexpr std::uint64_t orderBatch = 500;

void TryAnyOrder(Trial& trial) {
    SideBySide both(trial, KindOfBatch(trial, orderBatch));
    for (int call = 0; call < 20; ++call) SomeCall(trial, both, 3000);
    both.CompareState();
}

const Registered anyOrder({"LIF-2", "twenty calls in any order are answered as told", inRelease | inAddress,
                           2000000, orderBatch, 20, TryAnyOrder, 40});

// Hosts as they are, each playing its own habits: 600 cases of 1000 calls.
enum Profile { reader, early, careful, echoing, scanner, needsOffsets, profileCount };
constexpr std::uint64_t perProfile = 100, hostBatch = 10;

void Habit(Trial& trial, SideBySide& both, Profile profile) {
    const auto index = static_cast<std::int32_t>(trial.Below(96));
    switch (profile) {
        case reader:  // reads before it opens, and gives names little room
            both.Get(index);
            both.Text(effGetParamDisplay, index);
            trial.Require(both.Text(effGetParamName, index).size() < 24, "a name is too long");
            both.Text(effGetProgramName);
            break;
        case early:  // sets the rate first, suspends twice, changes on the audio thread
            both.Call(effSetSampleRate, 0, 0, {}, rates[trial.Below(std::size(rates))]);
            both.Call(effMainsChanged);
            both.Call(effMainsChanged, 0, 1);
            both.Call(effMainsChanged, 0, 1);
            both.Set(index, SomeNumber(trial));
            both.Call(effCanBeAutomated, index);
            break;
        case careful:  // hands in no events, asks for the window's size, opens again and again
            both.Call(effProcessEvents, 0, 0, std::string());
            both.Call(effEditGetRect, 0, 0, std::string());
            both.Call(effOpen);
            both.Call(effEditClose);
            both.Call(effEditIdle);
            break;
        case echoing:  // sets what it is told was changed, while it is told
            both.callsBack = true;
            both.SetFromEditor(index, SomeNumber(trial));
            break;
        case scanner:  // no inputs, blocks that grow
            both.PlayFrames(static_cast<std::int32_t>(trial.Below(5000)));
            both.Play(SomeAudio(trial, 1024 + trial.Below(3000), 44100));
            break;
        case needsOffsets:
        default: both.Play(SomeAudio(trial, 1 + trial.Below(600), 44100)); break;
    }
}

void TryHost(Trial& trial) {
    const auto profile = static_cast<Profile>(trial.number / hostBatch % profileCount);
    const bool isOld = profile == early;
    const ModelHostKind kind{!isOld, profile == needsOffsets, profile == reader ? 0.0F : 48000.0F};
    SideBySide both(trial, kind);
    for (int call = 0; call < 500; ++call) {
        Habit(trial, both, profile);
        SomeCall(trial, both, 600);
    }
    both.CompareState();
    Trial::Figure("notes in a case", static_cast<double>(both.notes));
}

const Registered hosts({"HOS-5", "six hosts with their habits are answered as told", inRelease | inAddress,
                        profileCount* perProfile, 10, 60, TryHost});

}  // namespace
