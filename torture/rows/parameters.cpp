// The 96 parameters, whatever is set and in whatever order.
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

#include "torture/model/side_by_side.h"
#include "torture/rows/odd_settings.h"

namespace {

std::string Typed(float value) {
    char text[80];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    return text;
}

// One index: -2 to 128 and the two ends of the integers; with the device off, then on.
constexpr std::uint64_t indices = 133;

void TryAnswers(Trial& trial) {
    const std::uint64_t which = trial.number % indices;
    const std::int32_t index = which == 131   ? std::numeric_limits<std::int32_t>::min()
                               : which == 132 ? std::numeric_limits<std::int32_t>::max()
                                              : static_cast<std::int32_t>(which) - 2;
    SideBySide both(trial, KindOfBatch(trial, indices));
    if (trial.number >= indices) both.Set(89, 1);
    both.Play(SomeAudio(trial, 4410, 44100));
    both.Text(effGetParamName, index);
    both.Text(effGetParamLabel, index);
    both.Call(effCanBeAutomated, index);
    both.Call(effString2Parameter, index);
    for (const char* const text :
         {"",    " ",   "abc", "-",   "1e",          "0.13", " 0.5x", "-35", "-40.0001", "127",
          "128", "255", "256", "257", "99999999999", "1e99", "nan",   "inf", "0x10",     "+1"})
        both.Call(effString2Parameter, index, 0, text), both.Get(index);
    for (const float value : OddSettings(trial)) {
        both.Set(index, value);
        both.Text(effGetParamDisplay, index);
        both.Call(effString2Parameter, index, 0, Typed(value));
        both.Call(effString2Parameter, index, 0, Typed(std::trunc(value * 40)));
        both.Get(index);
    }
    both.CompareState();
    Trial::Figure("answers a case", 64 * 6);
}

const Registered answers({"PAR-1", "every index and value is answered as told", inRelease | inAddress,
                          2 * indices, indices, 20, TryAnswers});

float SomeValue(Trial& trial) {
    switch (trial.Below(8)) {
        case 0: return std::bit_cast<float>(static_cast<std::uint32_t>(trial.random()));
        case 1: return static_cast<float>(trial.Below(2));
        default: return static_cast<float>(trial.Below(1001)) / 1000;
    }
}

// All parameters once in a random order, with blocks of audio between, then single sets at random.
void TryWalk(Trial& trial) {
    const ModelHostKind kind = KindOfBatch(trial, 20);
    SideBySide both(trial, kind);
    std::vector<std::int32_t> order(96);
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), trial.random);
    both.Record(true);
    const std::vector<float> audio = SomeAudio(trial, 5000, kind.sampleRate);
    for (std::size_t i = 0; i < order.size(); ++i) {
        both.Set(order[i], SomeValue(trial));
        if (i % 20 == 10) both.Play(audio);
    }
    for (int i = 0; i < 200; ++i) {
        both.Set(static_cast<std::int32_t>(trial.Below(96)), SomeValue(trial));
        if (i % 50 == 10) both.Play(SomeAudio(trial, 2000, kind.sampleRate));
    }
    both.Record(false);
    both.CompareState();
    Trial::Figure("notes in a case", static_cast<double>(both.notes));
}

const Registered walk({"PAR-2", "random walks over all parameters with audio between", inRelease | inAddress,
                       5000, 20, 20, TryWalk});

// A host restores a project: all values and the name, in an order of its own, device there or not.
void TryRestore(Trial& trial) {
    SideBySide both(trial, KindOfBatch(trial, 20));
    const bool present = trial.number % 2 == 0;
    std::vector<float> values(96);
    for (float& value : values) value = static_cast<float>(trial.Below(10001)) / 10000;
    for (const std::int32_t index : {89, 91, 93})
        values[static_cast<std::size_t>(index)] = trial.OneIn(2) ? 1 : 0;
    values[88] = static_cast<float>(trial.Below(3)) / 100 + 0.005F;
    values[92] = static_cast<float>(2 + trial.Below(4));
    if (!present)
        for (std::uint32_t device = 0; device < 3; ++device) both.RefuseOpens(device, 4);
    std::vector<std::int32_t> order(96);
    std::iota(order.begin(), order.end(), 0);
    if (trial.number / 2 == 1) std::reverse(order.begin(), order.end());
    if (trial.number / 2 > 1) std::shuffle(order.begin(), order.end(), trial.random);
    if (trial.OneIn(2)) both.Set(89, 1), both.Set(88, 0.01F);  // what it held before
    for (const std::int32_t index : order) {
        both.Set(index, values[static_cast<std::size_t>(index)]);
        if (index == 40) both.Call(effSetProgramName, 0, 0, "Project " + std::to_string(trial.number));
    }
    both.CompareState();
    if (present || values[89] == 0)
        for (const std::int32_t index : order)
            trial.Require(
                both.Effect()->getParameter(both.Effect(), index) == values[static_cast<std::size_t>(index)],
                "parameter " + std::to_string(index) + " was not restored");
}

const Registered restore({"PAR-6", "values restored in any order are those that were saved",
                          inRelease | inAddress, 2004, 20, 20, TryRestore});

}  // namespace
