// Suspended, resumed, or neither, at any rate.
#include "module/plugin_entry.h"
#include "tests/plugin/fake_host.h"
#include "torture/model/side_by_side.h"

#if defined(__SANITIZE_ADDRESS__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // the header is clang's
#endif

namespace {

// Counted by the address sanitizer alone: to the C library, what a thread's cache keeps counts as used.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool countsMemory = true;
std::size_t LiveBytes() {
    return __sanitizer_get_current_allocated_bytes();
}
#else
constexpr bool countsMemory = false;
std::size_t LiveBytes() {
    return 0;
}
#endif

constexpr float rates[] = {100, 1000, 4000, 8000, 11025, 22050, 44100, 48000, 88200, 96000, 192000, 384000};
enum Pattern { alternating, onlyResume, twice, never, whileSuspended, patternCount };

template <typename Host>
void Switch(Pattern pattern, Host& both) {
    const bool suspends = pattern == alternating || pattern == twice || pattern == whileSuspended;
    if (suspends) both.Call(effMainsChanged, 0, 0);
    if (pattern == twice) both.Call(effMainsChanged, 0, 0);
    if (pattern == alternating || pattern == onlyResume) both.Call(effMainsChanged, 0, 1);
}

std::vector<float> Part(const std::vector<float>& audio) {
    return {audio.begin(), audio.begin() + static_cast<std::ptrdiff_t>(audio.size() / 8)};
}

// The plug-in alone, in a host that keeps nothing.
void TryMemory(Trial& trial, Pattern pattern, float rate, const std::vector<float>& audio) {
    FakeHost host(pattern == onlyResume ? 2300 : 2400, "Ableton AG");
    host.keepsEvents = false;
    Plug plug(OpenPlugin(FakeHost::Callback));
    plug.Call(effSetSampleRate, 0, 0, nullptr, rate);
    const std::vector<float> block = Part(audio);
    std::size_t live = 0;
    for (int round = 0; round < 1000; ++round) {
        Switch(pattern, plug);
        if (round % 100 == 50) plug.Play(host, audio, 512);
        if (round % 10 == 5) plug.Play(host, block, 512);
        if (round == 60) live = LiveBytes();
    }
    const double grown = static_cast<double>(LiveBytes()) - static_cast<double>(live);
    if (countsMemory) Trial::Figure("live bytes grown", grown);
    trial.Require(grown <= 0, "live bytes grow by " + std::to_string(grown));
}

void TrySuspend(Trial& trial) {
    const auto pattern = static_cast<Pattern>(trial.number / std::size(rates));
    const float rate = rates[trial.number % std::size(rates)];
    const std::vector<float> audio = SomeAudio(trial, static_cast<std::size_t>(rate / 5), rate);
    TryMemory(trial, pattern, rate, audio);

    SideBySide both(trial, {pattern != onlyResume, false, rate});
    both.Call(effSetSampleRate, 0, 0, {}, rate);
    both.Set(89, 1);
    const std::vector<float> block = Part(audio);
    for (int round = 0; round < 1000; ++round) {
        Switch(pattern, both);
        if (round % 100 == 50) both.Play(audio), both.CompareState();
        if (round % 10 == 5) both.Play(block);
    }
    both.CompareState();
    Trial::Figure("notes in a case", static_cast<double>(both.notes));
}

const Registered suspend({"LIF-3", "suspending and resuming leaves the notes as told and no memory behind",
                          inRelease | inAddress, patternCount* std::size(rates), 1, 120, TrySuspend});

}  // namespace
