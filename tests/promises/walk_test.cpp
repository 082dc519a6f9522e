// Hosts that call in any order: every answer, event, message and take is that of the plain model.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <locale>
#include <numeric>

#include "module/plugin_entry.h"
#include "tests/model/side_by_side.h"
#include "tests/support/music.h"

namespace {

constexpr float rates[] = {100,   1000,  4000,  8000,   11025,  22050,     44100,
                           48000, 88200, 96000, 192000, 768000, 1234567.8F};
constexpr const char* texts[] = {"",
                                 "sendVstMidiEvent",
                                 "sendVstMidiEventFlagIsRealtime",
                                 " ",
                                 "receiveVstEvents",
                                 "A name longer than the thirty-two bytes of a program's",
                                 "abc",
                                 "-",
                                 "1e",
                                 "0.13",
                                 " 0.5x",
                                 "-35",
                                 "-40.0001",
                                 "90",
                                 "127",
                                 "128",
                                 "255",
                                 "257",
                                 "99999999999",
                                 "1e99",
                                 "nan",
                                 "inf",
                                 "0x10",
                                 "+1",
                                 "-20"};

// Where something may turn: edges, any bits, and mostly usual values.
float SomeValue(Trial& trial) {
    using Limits = std::numeric_limits<float>;
    constexpr float odd[] = {-1,
                             2,
                             2.5F,
                             4,
                             5,
                             1e30F,
                             -0.0F,
                             Limits::infinity(),
                             Limits::denorm_min(),
                             Limits::quiet_NaN(),
                             Limits::signaling_NaN(),
                             -Limits::max()};
    constexpr float edges[] = {0, 1.0F / 3, 0.5F, 2.0F / 3, 1};
    switch (trial.Below(8)) {
        case 0: return odd[trial.Below(std::size(odd))];
        case 1: return std::bit_cast<float>(static_cast<std::uint32_t>(trial.random()));
        case 2: return std::nextafter(edges[trial.Below(5)], static_cast<float>(trial.Below(3)) - 1);
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
    if (!trial.OneIn(5)) text = texts[trial.Below(std::size(texts))];
    const bool isRate = opcode == effSetSampleRate || opcode == effSetBlockSizeAndSampleRate;
    both.Call(opcode, SomeIndex(trial), value, text,
              isRate ? rates[trial.Below(std::size(rates))] : SomeValue(trial));
}

// Audio in blocks of any length by any call. A third of it has stretches that sum to zero, which is silence
// however loud they are.
void SomeBlocks(Trial& trial, SideBySide& both) {
    constexpr std::size_t longest[] = {2, 40, 700, 3000, 9000};
    Audio audio = SomeAudio(trial, trial.Below(12000), 44100);
    for (std::size_t i = 0; i + 1 < audio.size() && trial.number % 3 == 0; i += 2) audio[i + 1] = -audio[i];
    for (std::size_t at = 0; at < audio.size();) {
        std::size_t length = 1 + trial.Below(longest[trial.Below(std::size(longest))]);
        length = std::min(std::max(length, audio.size() / 30), audio.size() - at);
        const auto from = audio.begin() + static_cast<std::ptrdiff_t>(at);
        both.Play({from, from + static_cast<std::ptrdiff_t>(length)}, ways[trial.Below(3)], trial.OneIn(4));
        at += length;
    }
}

void SomeCall(Trial& trial, SideBySide& both) {
    switch (trial.Below(30)) {
        case 0: both.Call(effMainsChanged, 0, 0, {}); break;
        case 1: both.Call(effMainsChanged, 0, 1, {}); break;
        case 2: both.Call(effSetSampleRate, 0, 0, {}, rates[trial.Below(std::size(rates))]); break;
        case 3: both.Record(true); break;
        case 4: both.Record(false); break;
        case 5: both.RefuseOpens(static_cast<std::uint32_t>(trial.Below(3)), trial.OneIn(2) ? 4 : 0); break;
        case 6: both.callsBack = trial.OneIn(2); break;
        case 7:  // three seconds of silence stop the further outputs
            for (std::uint64_t left = 1 + trial.Below(5); left > 0; --left)
                both.PlayFrames(static_cast<std::int32_t>(trial.Below(60000)) - 100);
            break;
        case 8:
            if (trial.OneIn(20))
                both.JumpTo((std::uint64_t{1} << (31 + trial.Below(3))) - trial.Below(50000));
            break;
        case 9:
        case 10:
        case 11: SomeBlocks(trial, both); break;
        case 12:
        case 13: both.SetFromEditor(SomeIndex(trial) & 127, SomeValue(trial)); break;
        case 14:  // a chord, with all that the outputs need
            both.Set(0, 0.87F), both.Set(1, 0.875F), both.Set(91, 1);
            both.Play(Tones({57, 64, 73}, 0.2, 44100));
            break;
        default: trial.OneIn(2) ? SomeDispatch(trial, both) : both.Set(SomeIndex(trial), SomeValue(trial));
    }
}

TEST(Walk, CallsInAnyOrderAreAnsweredAsTheModelSays) {
    constexpr std::uint64_t batch = 50;
    RunTrials({1200, batch}, [](Trial& trial) {
        SideBySide both(trial, KindOfBatch(trial, batch));
        for (int call = 0; call < 120; ++call) SomeCall(trial, both);
        both.CompareState();
    });
}

// A host restores a project in an order of its own, with the device present or not.
TEST(Walk, ValuesRestoredInAnyOrderAreThoseThatWereSaved) {
    constexpr std::uint64_t batch = 50;
    RunTrials({1000, batch}, [](Trial& trial) {
        SideBySide both(trial, KindOfBatch(trial, batch));
        const bool present = trial.OneIn(2);
        std::vector<float> values(96);
        for (float& value : values) value = static_cast<float>(trial.Below(10001)) / 10000;
        for (const std::size_t index : {89U, 91U, 93U}) values[index] = trial.OneIn(2) ? 1 : 0;
        values[88] = static_cast<float>(trial.Below(3)) / 100 + 0.005F;
        values[92] = static_cast<float>(2 + trial.Below(4));
        for (std::uint32_t device = 0; device < 3 && !present; ++device) both.RefuseOpens(device, 4);
        std::vector<std::int32_t> order(96);
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), trial.random);
        if (trial.OneIn(2)) both.Set(89, 1), both.Set(88, 0.01F);  // what it held before
        for (const std::int32_t index : order) both.Set(index, values[static_cast<std::size_t>(index)]);
        both.CompareState();
        for (std::int32_t index = 0; index < 96 && (present || values[89] == 0); ++index)
            ASSERT_EQ(both.host.Get(index), values[static_cast<std::size_t>(index)]) << index;
    });
}

// Suspended, resumed, both or neither, over and over: notes as the model says.
TEST(Walk, SuspendingInAnyPatternLeavesTheNotesAsTheModelSays) {
    RunTrials({96, 4}, [](Trial& trial) {
        const float rate = rates[3 + trial.Below(8)];
        SideBySide both(trial, {trial.number / 4 % 2 == 0, false, rate});  // one kind in a process
        both.Set(89, 1), both.Record(true);
        const Audio audio = Tones({45, 57, 64}, 0.25, static_cast<double>(rate));
        const std::uint64_t pattern = trial.number % 4;
        for (int round = 0; round < 40; ++round) {
            if (pattern != 1) both.Call(effMainsChanged, 0, 0);
            if (pattern == 2) both.Call(effMainsChanged, 0, 0);
            if (pattern < 2) both.Call(effMainsChanged, 0, 1);
            both.Play(round % 10 == 5 ? audio : Audio(audio.begin(), audio.begin() + 20));
        }
        both.CompareState();
        EXPECT_GT(both.notes, 0U);
    });
}

// A German host's decimal comma, and what follows a number is ignored.
TEST(TypedText, IsReadByTheHostsLocale) {
    InChild([](Trial&) {
        struct Comma : std::numpunct<char> {
            char do_decimal_point() const override { return ','; }
        };
        const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
        Host host;
        ASSERT_TRUE(host.Open(OpenPlugin));
        char comma[] = "0,25", point[] = " -12.5 dB";
        EXPECT_EQ(host.Call(effString2Parameter, 0, 0, comma), 1);
        EXPECT_EQ(host.Get(0), 0.75F);
        EXPECT_EQ(host.Call(effString2Parameter, 1, 0, point), 1);
        EXPECT_EQ(host.Get(1), 12 * 0.025F);
        std::locale::global(before);
    });
}

}  // namespace
