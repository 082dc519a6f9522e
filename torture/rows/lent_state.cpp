// What the plug-in is lent by its host's threads comes back: the floating-point control words, and the stack.
#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "torture/session.h"
#include "torture/watch.h"
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace {

#if defined(__x86_64__)

// The thread's floating-point environment, as far as a host may care.
struct Words {
    std::uint32_t vector = 0;  // MXCSR: rounding, flush to zero, masks, and the sticky flags
    std::uint16_t stack = 0;   // the x87 control word

    static Words Read() {
        Words words;
        words.vector = _mm_getcsr();
        __asm__ __volatile__("fnstcw %0" : "=m"(words.stack));
        return words;
    }
    void Write() const {
        _mm_setcsr(vector);
        __asm__ __volatile__("fldcw %0" : : "m"(stack));
    }
    bool operator==(const Words& other) const { return vector == other.vector && stack == other.stack; }
    std::string Text() const { return std::to_string(vector) + "/" + std::to_string(stack); }
};

Trial* caseInHand = nullptr;
Words hosts;

// All exceptions masked, as hosts have them; any rounding, flush-to-zero, denormals-are-zero and sticky
// flags.
Words SomeWords(Trial& trial) {
    const auto rounding = static_cast<std::uint32_t>(trial.Below(4));
    Words words;
    words.vector = 0x1F80U | rounding << 13 | static_cast<std::uint32_t>(trial.Below(2)) << 15 |
                   static_cast<std::uint32_t>(trial.Below(2)) << 6 |
                   static_cast<std::uint32_t>(trial.Below(64));
    words.stack = static_cast<std::uint16_t>(0x037FU | static_cast<std::uint32_t>(trial.Below(4)) << 10);
    return words;
}

void AtHostCall() {
    // The sticky flags may stand in the middle of a call; the modes must not.
    const Words now = Words::Read();
    if ((now.vector & ~0x3FU) == (hosts.vector & ~0x3FU) && now.stack == hosts.stack) return;
    hosts.Write();
    caseInHand->Fail("the host was called under " + now.Text() + " instead of " + hosts.Text());
}

// 2000 calls of all kinds, each under words of its own.
void TryWords(Trial& trial) {
    caseInHand = &trial;
    hosts = Words::Read();
    Session session(48000);
    session.atHostCall = AtHostCall;
    trial.Require(session.Open(), "the plug-in does not open");
    session.AllOutputsOn();
    const Words usual = Words::Read();
    const std::vector<float> music = BusyMusic(trial, 48000, 4);
    char text[256] = "0.5";
    for (int call = 0; call < 2000; ++call) {
        const std::uint64_t kind = trial.Below(10);
        const auto opcode = static_cast<std::int32_t>(trial.Below(80));
        const auto index = static_cast<std::int32_t>(trial.Below(98)) - 1;
        // Not to be computed late, under the words below.
        const volatile float value = static_cast<float>(trial.Below(1001)) / 1000.0F;
        const auto count = static_cast<std::int32_t>(1 + trial.Below(2048));
        const float* const audio = music.data() + trial.Below(music.size() - 2048);
        // No editor without a screen; closing comes last.
        const bool asks = opcode != effClose && opcode != effEditOpen && opcode != effEditGetRect &&
                          opcode != effGetChunk && opcode != effSetChunk && opcode != effProcessEvents;
        hosts = SomeWords(trial);
        hosts.Write();
        if (kind < 5)
            session.Process(trial, audio, count, kind % 3);
        else if (kind < 7)
            session.Set(index, value);
        else if (kind == 7)
            session.effect->getParameter(session.effect, index);
        else if (asks)
            session.Call(opcode, index, count % 3, text, 44100);
        const Words after = Words::Read();
        usual.Write();
        trial.Require(after == hosts, "call of kind " + std::to_string(kind) + ", opcode " +
                                          std::to_string(opcode) + ": " + hosts.Text() + " became " +
                                          after.Text());
    }
    hosts = usual;
    session.atHostCall = nullptr;
}

const Registered words({"RTS-6", "each call leaves the host's floating-point modes and flags as they were",
                        inRelease, 50, 1, 60, TryWords});

#endif

// --- the stack ---

constexpr std::size_t stackSize = 64 * 1024;  // bytes; what the smallest of audio threads have
constexpr std::size_t mostUsed = 32 * 1024;
constexpr unsigned char paint = 0xA5;

struct Playing {
    Session& session;
    Trial& trial;
    const std::vector<float>& music;
    const std::vector<float>& silence;
    const unsigned char* begin = nullptr;  // of the thread's own use, behind what the system keeps there
};

void* Play(void* word) {
    Playing& playing = *static_cast<Playing*>(word);
    playing.begin = static_cast<const unsigned char*>(__builtin_frame_address(0));
    for (std::size_t at = 0, count = 0; at < playing.music.size(); at += count) {
        count = std::min<std::size_t>(playing.music.size() - at, 1 + playing.trial.Below(4000));
        playing.session.Process(playing.trial, playing.music.data() + at, static_cast<std::int32_t>(count),
                                playing.trial.Below(3));
    }
    for (std::int64_t left = 4 * 48000; left > 0; left -= 4096)
        playing.session.Process(playing.trial, playing.silence.data(), 4096);
    return nullptr;
}

// An instance that starts, warms up, plays with everything on, falls silent and stops, on a thread of 64 KiB.
void TryStack(Trial& trial) {
    Session session(48000);
    trial.Require(session.Open(), "the plug-in does not open");
    session.AllOutputsOn();
    const std::vector<float> music = BusyMusic(trial, 48000, 20), silence(Session::largestBlock);
    auto* const stack = static_cast<unsigned char*>(
        mmap(nullptr, 2 * stackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    trial.Require(stack != MAP_FAILED && mprotect(stack, stackSize, PROT_NONE) == 0, "no stack");
    std::memset(stack + stackSize, paint, stackSize);
    Playing playing{session, trial, music, silence};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack + stackSize, stackSize);
    pthread_t thread;
    trial.Require(pthread_create(&thread, &attributes, Play, &playing) == 0, "no thread");
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    const unsigned char* deepest = stack + stackSize;
    while (*deepest == paint) ++deepest;
    const auto used = static_cast<std::size_t>(playing.begin - deepest);
    munmap(stack, 2 * stackSize);
    Trial::Figure("bytes of stack", static_cast<double>(used));
    trial.Require(session.events > 0, "nothing was played");
    trial.Require(used <= mostUsed, std::to_string(used) + " bytes of stack were used");
}

const Registered stackRow({"RTS-7", "process calls use at most 32 KiB of stack, of 64 KiB that there are",
                           inRelease, 200, 1, 60, TryStack});

}  // namespace
