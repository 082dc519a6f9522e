#pragma once
#include <cstdint>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

// The processor's floating-point control word (rounding, flush-to-zero, sticky flags) belongs to the host.
// These scopes lend it: what was found is put back when the scope ends, sticky flags included.
//
// Threads: [any]; the word belongs to the calling thread. Cost: two control-word accesses, some 10 cycles.
class FloatEnvironment {
public:
    FloatEnvironment() : found(Read()) {}  // keeps the host's word, changes nothing
    ~FloatEnvironment() { Write(found); }
    FloatEnvironment(const FloatEnvironment&) = delete;
    FloatEnvironment& operator=(const FloatEnvironment&) = delete;

protected:
    std::uint64_t found;

    // What is flushed differs in detail between architectures. A build that compares them keeps denormals.
#if defined(ORVA_KEEP_DENORMALS)
    static constexpr bool flush = false;
#else
    static constexpr bool flush = true;
#endif

#if defined(__SSE2__)
    // Flush-to-zero (bit 15), denormals-are-zero (bit 6), all exceptions masked (bits 7 to 12), nearest.
    static constexpr std::uint64_t arithmetic = flush ? 0x9FC0 : 0x1F80;
    static std::uint64_t Read() {
        return _mm_getcsr();
    }
    static void Write(std::uint64_t word) {
        _mm_setcsr(static_cast<unsigned>(word));
    }
#elif defined(__aarch64__)
    static constexpr std::uint64_t arithmetic = flush ? std::uint64_t{1} << 24 : 0;  // FPCR.FZ, nearest
    static std::uint64_t Read() {
        std::uint64_t word;
        __asm__ __volatile__("mrs %0, fpcr" : "=r"(word));
        return word;
    }
    static void Write(std::uint64_t word) {
        __asm__ __volatile__("msr fpcr, %0" : : "r"(word));
    }
#else
    static constexpr std::uint64_t arithmetic = 0;
    static std::uint64_t Read() {
        return 0;
    }
    static void Write(std::uint64_t) {}
#endif
};

// The detector's arithmetic: round to nearest, and denormals count as zero, since a decaying resonator
// would otherwise reach them after a sound and cost many times its normal time.
class FlushToZero : private FloatEnvironment {
public:
    FlushToZero() { Write(arithmetic); }
    void Suspend() { Write(found); }      // back to the host's word, for a call out of the detector
    void Resume() { Write(arithmetic); }  // and on with the arithmetic
};
