#pragma once
#include <cstdint>

// The editor's only clock: the host's idle calls, at whatever rate the host likes, cut into whole steps. Time
// that does not fill a step stays for the next call, so that none is lost to rounding.
//
// Ticks are milliseconds as an unsigned word of 32 bits, which wraps after 49 days; the difference does not
// mind. Threads: pure functions, [any].

constexpr std::uint32_t idleStep = 50;  // ms; the scrolling picture takes at most one column a step

constexpr std::uint32_t WholeIdleSteps(std::uint32_t now, std::uint32_t last) {
    return (now - last) / idleStep;
}

// Where the step in progress began, after that many whole steps.
constexpr std::uint32_t AdvanceIdleTick(std::uint32_t last, std::uint32_t steps) {
    return last + steps * idleStep;
}

// Whether the host still hands over blocks. One whose transport rests may stop calling, and then what sounded
// last is no longer what sounds.
//
// Threads: [ui]. The count of samples is the heartbeat: the audio thread moves it at each block that has any.
class BlockWatch {
public:
    static constexpr std::uint32_t limit = 500;  // ms without a block

    void Restart(std::uint64_t samples, std::uint32_t now) { seen = samples, since = now; }
    bool HasStopped(std::uint64_t samples, std::uint32_t now) {
        if (samples != seen) Restart(samples, now);
        if (now - since > limit) since = now - limit;  // so that the ticks may wrap meanwhile
        return now - since == limit;
    }

private:
    std::uint64_t seen = 0;   // samples at the last look that found a new block
    std::uint32_t since = 0;  // ms, when that was
};
