// Hosts that call in any order: every answer, event, message and take is that of the plain model.
#include "devices/midi_ports.h"
#include "tests/model/side_by_side.h"
#include "tests/support/music.h"

namespace {

using Limits = std::numeric_limits<float>;
constexpr float rates[] = {100,   1000,  4000,  8000,   11025,  22050,     44100,
                           48000, 88200, 96000, 192000, 768000, 1234567.8F};
constexpr float oddRates[] = {-1, 0, 9, 99.9F, 2147483648.0F, 1e30F, Limits::quiet_NaN(), Limits::infinity()};
constexpr const char* typed[] = {"",     " ",     "abc", "-",    "1e",  "0.13", " 0.5x",
                                 "-35",  "-40.1", "90",  "127",  "128", "257",  "1e99",
                                 "0,25", "nan",   "inf", "0x10", "+1",  "-20"};
constexpr const char* asked[] = {"sendVstMidiEvent", "receiveVstEvents",
                                 "longer than the 32 bytes of a name"};

template <std::size_t count>
float OneOf(Trial& trial, const float (&values)[count]) {
    return values[trial.Below(count)];
}

float SomeRate(Trial& trial) {
    return trial.OneIn(6) ? OneOf(trial, oddRates) : OneOf(trial, rates);
}

// Where something may turn: edges, any bits, and mostly usual values.
float SomeValue(Trial& trial) {
    constexpr float infinity = Limits::infinity(), nan = Limits::quiet_NaN();
    constexpr float odd[] = {-1, 2, 2.5F, 4, 5, 1e30F, -0.0F, infinity, Limits::denorm_min(), nan, -1e38F};
    constexpr float edges[] = {0, 1.0F / 3, 0.5F, 2.0F / 3, 1};
    switch (trial.Below(8)) {
        case 0: return OneOf(trial, odd);
        case 1: return std::bit_cast<float>(static_cast<std::uint32_t>(trial.random()));
        case 2: return std::nextafter(OneOf(trial, edges), static_cast<float>(trial.Below(3)) - 1);
        case 3: return static_cast<float>(trial.Below(2));
        default: return static_cast<float>(trial.Below(1001)) / 1000;
    }
}

std::int32_t SomeIndex(Trial& trial) {
    constexpr std::int32_t lively[] = {0, 1, 2, 87, 88, 89, 90, 91, 93, 95};
    if (trial.OneIn(2)) return lively[trial.Below(std::size(lively))];
    if (trial.OneIn(50)) return trial.OneIn(2) ? INT32_MIN : INT32_MAX;
    return static_cast<std::int32_t>(trial.Below(130)) - 2;
}

// Every opcode of the interface but the last, and some that it does not know.
void SomeDispatch(Trial& trial, SideBySide& both) {
    constexpr std::int32_t unknown[] = {-1, 80, 255, INT32_MAX};
    constexpr std::int32_t reading[] = {effGetParamName, effGetParamLabel, effGetParamDisplay,
                                        effString2Parameter, effCanBeAutomated};
    auto opcode = static_cast<std::int32_t>(trial.Below(84));
    if (opcode >= 80) opcode = unknown[opcode - 80];
    if (opcode == effClose) opcode = effOpen;
    if (trial.OneIn(2)) opcode = reading[trial.Below(std::size(reading))];
    std::intptr_t value = trial.OneIn(3) ? static_cast<std::intptr_t>(trial.random())
                                         : static_cast<std::intptr_t>(trial.Below(3)) - 1;
    if ((value & 255) == VKEY_F1) ++value;  // which opens the help
    std::optional<std::string> text;
    if (!trial.OneIn(5)) text = typed[trial.Below(std::size(typed))];
    if (trial.OneIn(5)) text = asked[trial.Below(std::size(asked))];
    const bool isRate = opcode == effSetSampleRate || opcode == effSetBlockSizeAndSampleRate;
    both.Call(opcode, SomeIndex(trial), value, text, isRate ? SomeRate(trial) : SomeValue(trial));
}

// Audio in blocks of any length by any call: chords, noise, silence, or any bits, which pass in whatever way
// adds nothing. A third of it has stretches that sum to zero, which is silence however loud they are.
void SomeBlocks(Trial& trial, SideBySide& both) {
    constexpr std::size_t longest[] = {2, 40, 700, 3000, 9000};
    const std::size_t samples = trial.Below(12000);
    const std::uint64_t kind = trial.Below(8);
    std::vector<int> notes(1 + trial.Below(4));
    for (int& note : notes) note = 24 + static_cast<int>(trial.Below(60));
    Audio audio = kind == 0   ? Silence(samples)
                  : kind == 1 ? Noise(trial.random, samples)
                              : Chord(notes, samples);
    for (std::size_t i = 0; i < samples && kind == 2; ++i) audio[i] = SomeValue(trial);
    for (std::size_t i = 0; i + 1 < samples && trial.number % 3 == 0; i += 2) audio[i + 1] = -audio[i];
    for (std::size_t at = 0; at < samples;) {
        std::size_t length = 1 + trial.Below(longest[trial.Below(std::size(longest))]);
        length = std::min(std::max(length, samples / 30), samples - at);
        const auto from = audio.begin() + static_cast<std::ptrdiff_t>(at);
        const Way way = ways[kind == 2 ? 1 + trial.Below(2) : trial.Below(3)];
        both.Play({from, from + static_cast<std::ptrdiff_t>(length)}, way, trial.OneIn(4));
        at += length;
    }
}

// Notes by hand, in frames and with settings that the parameters do not reach.
void SomeFrames(Trial& trial, SideBySide& both) {
    const auto some = [&trial](std::int32_t least, std::uint64_t count) {
        return least + static_cast<std::int32_t>(trial.Below(count));
    };
    const std::uint64_t change = 1 + trial.Below(60);
    for (std::uint64_t left = both.model.stopped ? 0 : trial.Below(60); left > 0; --left) both.Frame(change);
    const std::int32_t transpose = some(-60, 121), channel = some(0, 20), velocity = some(-5, 300);
    const std::int32_t band = some(0, 84);
    // Mostly whole frames, as the notes have.
    const std::int64_t unit = trial.OneIn(4) ? 1 : both.model.recorder.frameLength;
    const std::int64_t length = unit * some(0, 40), gap = unit * some(0, 12);
    const bool on = trial.OneIn(2);
    const std::uint64_t kind = trial.Below(8);
    both.Recorders([&](auto& recorder) {
        switch (kind) {
            case 0: recorder.ChangeTranspose(transpose); break;
            case 1: recorder.ChangeChannel(channel); break;
            case 2: recorder.ChangeVelocity(velocity); break;
            case 3: recorder.ChangeMapping(transpose, channel, velocity); break;
            case 4: recorder.AllNotesOff(); break;
            case 5: recorder.SetSendProgramChange(on); break;
            case 6: recorder.enabled[band] = on; break;
            default: recorder.minNoteLength = length, recorder.minNoteGap = gap;
        }
    });
}

void SomeCall(Trial& trial, SideBySide& both) {
    switch (trial.Below(26)) {
        case 0: both.Call(effMainsChanged, 0, 0, {}); break;
        case 1: both.Call(effMainsChanged, 0, 1, {}); break;
        case 2: both.Call(effSetSampleRate, 0, 0, {}, SomeRate(trial)); break;
        case 3: both.Record(true); break;
        case 4: both.Record(false); break;
        case 5: both.RefuseOpens(static_cast<std::uint32_t>(trial.Below(3)), trial.OneIn(2) ? 4 : 0); break;
        case 6: both.callsBack = trial.OneIn(2); break;
        case 7:  // three seconds of silence stop the further outputs
            for (std::uint64_t left = 1 + trial.Below(5); left > 0; --left)
                both.PlayFrames(static_cast<std::int32_t>(trial.Below(60000)) - 100, trial.OneIn(2));
            break;
        case 8:
            if (trial.OneIn(20))
                both.JumpTo((std::uint64_t{1} << (31 + trial.Below(3))) - trial.Below(50000));
            break;
        case 9: both.SetFromEditor(SomeIndex(trial) & 127, SomeValue(trial)); break;
        case 10:  // a chord, with all that the outputs need
            both.Set(0, 0.87F), both.Set(1, 0.875F), both.Set(91, 1);
            both.Play(Tones({57, 64, 73}, 0.2));
            break;
        case 11: SomeFrames(trial, both); break;
        case 12:
        case 13: SomeBlocks(trial, both); break;
        default: trial.OneIn(2) ? SomeDispatch(trial, both) : both.Set(SomeIndex(trial), SomeValue(trial));
    }
}

// Two facts about the host are asked once per process and kept, so that all cases of one batch have one kind.
ModelHostKind KindOfBatch(const Trial& trial, std::uint64_t batch) {
    constexpr float answered[] = {44100, 48000, 96000, 22050, 0};
    const std::uint64_t number = trial.number / batch;
    return {number % 3 != 1, number % 3 == 2, answered[number / 3 % 5]};
}

// Typed numbers follow the host's locale, which may have a decimal comma.
struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST(Walk, CallsInAnyOrderAreAnsweredAsTheModelSays) {
    constexpr std::uint64_t batch = 50;
    RunTrials({1200, batch}, [](Trial& trial) {
        static std::uint64_t notes = 0;
        if (trial.number / batch % 4 == 3)
            std::locale::global(std::locale(std::locale::classic(), new Comma));
        SideBySide both(trial, KindOfBatch(trial, batch));
        for (int call = 0; call < 120; ++call) SomeCall(trial, both);
        both.CompareState();
        notes += both.notes;
        if (trial.number % batch == batch - 1) {
            EXPECT_GT(notes, 100U);
        }
    });
}

// The table of ports that all instances share, beyond what one instance does with it.
TEST(Walk, PortsOpenedUsedAndClosedInAnyOrderReachDevicesAsTheModelSays) {
    RunTrials({200, 20}, [](Trial& trial) {
        const auto small = [&](std::uint64_t count) {
            return static_cast<std::uint32_t>(trial.Below(count));
        };
        using Codes = std::map<std::uint32_t, std::uint32_t>;
        constexpr std::uint8_t sysEx[] = {0xF0, 0xF7};
        const MidiLongMessage bytes{sysEx, 2};
        InstalledDevices devices;
        ModelPorts model;
        model.mapper = trial.OneIn(4);
        if (model.mapper) devices.version = {6, 1};
        MidiPortTable table;
        std::uint32_t highest = 0;
        for (int i = 0; i < 5000 && !testing::Test::HasFailure(); ++i) {
            if (i == 4980) table.Unload(), model.Unload();
            constexpr std::uint32_t kinds[] = {0x90, 0x90, 0x80, 0xC0, 0xB0, 0xF0};
            const std::uint32_t message = kinds[small(6)] | small(3) | small(6) << 8 | small(2) * 100 << 16;
            const std::uint32_t port = trial.OneIn(30) ? 0xFFFFFFFF : small(highest + 2), device = small(3);
            const bool passes = trial.OneIn(2);
            model.devices.refusedOpens = devices.refusedOpens;
            model.devices.refusedMessages = devices.refusedMessages;
            switch (small(16)) {
                case 0: devices.refusedOpens = passes ? Codes() : Codes{{device, 4}}; break;
                case 1: devices.refusedMessages = passes ? Codes() : Codes{{message, 1}}; break;
                case 2: table.SilencePort(port), model.Silence(port); break;
                case 3: table.ResetPort(port), model.Reset(port); break;
                case 4: ASSERT_EQ(table.SendLong(port, bytes), model.SendLong(port, bytes)); break;
                case 5: {
                    const std::uint32_t index = trial.OneIn(20) ? small(1ULL << 32) : small(6);
                    std::uint32_t seen = 77, expected = 77;
                    ASSERT_EQ(table.OpenPort(seen, index), model.Open(expected, index));
                    ASSERT_EQ(seen, expected) << "the port's number";
                    if (seen != 77) highest = std::max(highest, seen + 1);
                    break;
                }
                case 6: table.ClosePort(port), model.Close(port); break;
                default: ASSERT_EQ(table.SendShort(port, message), model.Send(port, message));
            }
            ASSERT_EQ(table.IsPortValid(port), model.IsValid(port));
            ASSERT_EQ(devices.Taken(), model.devices.Taken());
        }
        EXPECT_EQ(devices.OpenCount() + devices.faults, 0);
    });
}

}  // namespace
