// Any sample rate, before the plug-in opens, after, and in the middle of a note.
#include <sys/resource.h>

#include <chrono>
#include <cmath>
#include <limits>

#include "module/plugin_entry.h"
#include "tests/plugin/fake_host.h"
#include "torture/model/side_by_side.h"

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float rates[] = {-1,         0,
                           0.5F,       1,
                           9,          10,
                           19,         99,
                           99.9F,      100,
                           101,        1000,
                           1234.57F,   4000,
                           8000,       11025,
                           22050,      44100,
                           45678.9F,   48000,
                           96000,      192000,
                           384000,     768000,
                           1234567.8F, 2147483648.0F,
                           1e30F,      std::numeric_limits<float>::quiet_NaN(),
                           infinity,   -infinity};
enum When { beforeOpen, afterOpen, betweenBlocks, whileSuspended, whenCount };

bool IsUsable(float rate) {
    return rate >= 100 && rate < 2147483648.0F;
}

std::vector<float> Tone(float rate, double seconds) {
    std::vector<float> audio(static_cast<std::size_t>(static_cast<double>(rate) * seconds));
    for (std::size_t i = 0; i < audio.size(); ++i)
        audio[i] = static_cast<float>(
            0.5 * std::sin(2 * M_PI * 440 * static_cast<double>(i) / static_cast<double>(rate)));
    return audio;
}

double PeakMegabytes() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_maxrss) / 1024;
}

// The plug-in alone: what the rate costs, and that it leaves nothing behind.
void TryCost(Trial& trial, float rate, When when) {
    FakeHost host(2400, "Ableton AG");
    Plug plug(OpenPlugin(FakeHost::Callback));
    const std::vector<float> tone = Tone(44100, 0.3);
    if (when != beforeOpen) plug.Call(effOpen);
    plug.Play(host, tone, 441);
    const std::int64_t begin = host.clock;
    plug.Call(effMainsChanged);
    const std::vector<FakeHost::Event> first = host.TakenEvents();
    if (when == betweenBlocks) plug.Play(host, tone, 441);
    host.TakenEvents();

    const double before = PeakMegabytes();
    const auto start = std::chrono::steady_clock::now();
    plug.Call(when == whileSuspended ? effSetBlockSizeAndSampleRate : effSetSampleRate, 0, 64, nullptr, rate);
    if (when == beforeOpen) plug.Call(effOpen);
    trial.Require(plug.Play(host, tone, 100), "the audio did not pass");
    const double took = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    for (const FakeHost::Event& event : host.TakenEvents())
        trial.Require(event.data[0] != '\x90' || IsUsable(rate), "notes at a rate that knows none");
#if !defined(__SANITIZE_ADDRESS__)  // which has memory and time of its own
    const double grown = PeakMegabytes() - before;
    Trial::Figure(rate <= 1234568 ? "MiB" : "MiB beyond", grown);
    Trial::Figure("s", took);
    trial.Require(grown <= (rate <= 1234568 ? 8 : 512), "memory grows by MiB " + std::to_string(grown));
    trial.Require(took <= 2, "the rate takes too long");
#else
    static_cast<void>(before), static_cast<void>(took);
#endif
    // Back at the usual rate, the same tone gives the same notes.
    plug.Call(effMainsChanged);
    plug.Call(effSetSampleRate, 0, 0, nullptr, 44100);
    host.TakenEvents();
    const std::int64_t again = host.clock;
    plug.Play(host, tone, 441);
    plug.Call(effMainsChanged);
    std::vector<FakeHost::Event> second = host.TakenEvents();
    for (FakeHost::Event& event : second)
        event.at -= again - (begin - static_cast<std::int64_t>(tone.size()));
    // The first stretch began with the message of the program.
    trial.Require(std::vector<FakeHost::Event>(first.begin() + 1, first.end()) == second && !second.empty(),
                  "the notes are not those before the rate");
}

void TryModel(Trial& trial, float rate, When when) {
    SideBySide both(trial, {});
    if (when != beforeOpen) both.Call(effOpen);
    if (when == betweenBlocks) both.Play(Tone(44100, 0.2));
    if (when == whileSuspended) both.Call(effMainsChanged);
    both.Call(when == whileSuspended ? effSetBlockSizeAndSampleRate : effSetSampleRate, 0, 64, {}, rate);
    if (when == beforeOpen) both.Call(effOpen);
    both.CompareState();
    const std::vector<float> tone = Tone(std::min(rate, 200000.0F), 0.5);
    for (std::size_t at = 0; at < tone.size(); at += 777)
        both.Play({tone.begin() + static_cast<std::ptrdiff_t>(at),
                   tone.begin() + static_cast<std::ptrdiff_t>(std::min(at + 777, tone.size()))});
    both.CompareState();
}

void TryChanges(Trial& trial) {
    SideBySide both(trial, {});
    both.Set(89, 1);
    both.Record(true);
    float rate = 44100;
    for (int change = 0; change < 12; ++change) {
        for (std::uint64_t block = trial.Below(6); block > 0; --block)
            both.Play(SomeAudio(
                trial, 1 + trial.Below(static_cast<std::uint64_t>(std::min(rate, 96000.0F) / 20)), rate));
        rate = rates[9 + trial.Below(15)];  // 100 to 768000
        both.Call(effSetSampleRate, 0, 0, {}, rate);
        if (trial.OneIn(4)) both.Call(effMainsChanged, 0, static_cast<std::intptr_t>(trial.Below(2)));
    }
    both.Record(false);
    both.CompareState();
}

void TryRate(Trial& trial) {
    if (trial.number >= std::size(rates) * whenCount) return TryChanges(trial);
    const float rate = rates[trial.number % std::size(rates)];
    const auto when = static_cast<When>(trial.number / std::size(rates));
    TryCost(trial, rate, when);
    if (IsUsable(rate)) TryModel(trial, rate, when);
}

const Registered rate({"PRO-6", "any sample rate at any time costs little and spoils nothing",
                       inRelease | inAddress, std::size(rates) * whenCount + 1000, 1, 60, TryRate});

}  // namespace
