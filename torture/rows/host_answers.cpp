// A host's answers to events: whatever it does with them, the audio and the recognition go on.
#include <ctime>

#include "torture/row.h"
#include "torture/rows/plug_in.h"

namespace {

constexpr std::int32_t rate = 44100;
enum Habit { refuses, callsBack, dawdles, keepsPointer, habitCount };

constexpr std::size_t eventsEach = 10;  // at the least, in a case; the whole row meets 10,000 of each habit
constexpr std::uint64_t casesEach = 1000;

// Reads what a host kept. By then the records may be gone, which is the host's own affair and no fault of
// the plug-in: so no sanitizer looks at this read.
[[gnu::noinline, gnu::no_sanitize("address", "thread", "undefined")]] int ReadKept(const VstEvents* kept) {
    const auto* const bytes = reinterpret_cast<const volatile unsigned char*>(kept);
    int sum = 0;
    for (std::size_t i = 0; i < sizeof *kept; ++i) sum += bytes[i];
    return sum;
}

// Calls that only ask must change nothing.
void AskSomething(Trial& trial, PlugIn& plugIn) {
    char text[256] = "sendVstMidiEvent";
    const auto index = static_cast<std::int32_t>(trial.Below(98)) - 1;
    switch (trial.Below(6)) {
        case 0: plugIn.effect->getParameter(plugIn.effect, index); break;
        case 1: plugIn.Call(effGetParamDisplay, index, 0, text); break;
        case 2: plugIn.Call(effCanDo, 0, 0, text); break;
        case 3: plugIn.Call(effGetProgramName, 0, 0, text); break;
        case 4: plugIn.Call(effEditIdle); break;
        default: plugIn.Call(static_cast<std::int32_t>(trial.Below(200)) + 80); break;
    }
}

// Calls that interfere, from within the block in progress.
void Interfere(Trial& trial, PlugIn& plugIn) {
    float audio[64] = {1, -0.5F};
    ERect* rectangle = nullptr;
    const auto index = static_cast<std::int32_t>(trial.Below(96));
    switch (trial.Below(8)) {
        case 0: plugIn.Call(effMainsChanged, 0, 0); break;
        case 1: plugIn.Call(effMainsChanged, 0, 1); break;
        case 2: {
            const std::int64_t clock = plugIn.clock;
            plugIn.Feed(static_cast<Door>(trial.Below(2)), audio, audio, 64);
            plugIn.clock = clock;
            break;
        }
        case 3:
            if (index != paramDevice && index != paramDeviceEnabled)  // no devices of this machine
                plugIn.effect->setParameter(plugIn.effect, index,
                                            static_cast<float>(trial.Below(101)) / 100.0F);
            break;
        case 4:
            plugIn.Call(effSetSampleRate, 0, 0, nullptr, static_cast<float>(8000 + trial.Below(90000)));
            break;
        case 5: plugIn.Call(effSetBlockSize, 0, static_cast<std::intptr_t>(trial.Below(5000))); break;
        case 6: plugIn.Call(effEditGetRect, 0, 0, &rectangle); break;
        default: AskSomething(trial, plugIn); break;
    }
}

struct Heard {
    std::vector<SentEvent> events;
    bool passed = true;  // the audio came out as it went in
};

// Plays until enough events were sent, or the music is over; with parameter changes, so that events come
// outside the block too.
Heard Play(const std::vector<float>& music, const std::function<std::intptr_t(PlugIn&, VstEvents&)>& answer,
           const std::function<void()>& afterBlock) {
    PlugIn plugIn(rate);
    plugIn.atEvents = [&](VstEvents& sent) { return answer(plugIn, sent); };
    Heard heard;
    std::vector<float> in(512), out(512);
    for (std::size_t at = 0; at + in.size() <= music.size() && plugIn.events.size() < eventsEach;
         at += in.size()) {
        std::copy_n(music.begin() + static_cast<std::ptrdiff_t>(at), in.size(), in.begin());
        plugIn.Feed(replacing, in.data(), out.data(), 512);
        heard.passed = heard.passed && std::equal(in.begin(), in.end(), out.begin());
        afterBlock();
        if (at / in.size() % 40 == 20)
            plugIn.effect->setParameter(plugIn.effect, paramVelocity, static_cast<float>(at % 100) / 100.0F);
    }
    heard.events = plugIn.TakenEvents();
    return heard;
}

void TryAnswer(Trial& trial) {
    const auto habit = static_cast<Habit>(trial.number % habitCount);
    const bool interferes = habit == callsBack && trial.OneIn(2);
    const std::vector<float> music = RandomMusic(trial.random, 8, rate);
    const Heard polite = Play(
        music, [](PlugIn&, VstEvents&) { return 1; }, [] {});
    trial.Require(polite.passed && polite.events.size() >= eventsEach,
                  "eight seconds of music give few events");

    const VstEvents* kept = nullptr;
    [[maybe_unused]] volatile int ignored = 0;
    int depth = 0;
    const auto answer = [&](PlugIn& plugIn, VstEvents& sent) -> std::intptr_t {
        if (habit == callsBack && depth < 4) {
            ++depth;
            for (std::uint64_t calls = trial.Below(4); calls > 0; --calls)
                interferes ? Interfere(trial, plugIn) : AskSomething(trial, plugIn);
            --depth;
        }
        if (habit == dawdles) {
            const timespec pause{0, 100'000'000};
            nanosleep(&pause, nullptr);
        }
        kept = &sent;
        return 0;
    };
    const Heard heard = Play(music, answer, [&] {
        if (habit == keepsPointer && kept != nullptr) ignored = ReadKept(kept);
    });
    trial.Require(heard.passed, "the audio did not pass");
    trial.Require(interferes || heard.events == polite.events,
                  "the events are not those that a polite host gets");
}

const Registered answers({"MID-3", "lives with a host that refuses, calls back, dawdles or keeps its events",
                          inRelease | inAddress, casesEach* habitCount, 20, 60, TryAnswer});

}  // namespace
