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
