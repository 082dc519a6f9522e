#include "editor/idle_clock.h"

#include <gtest/gtest.h>

namespace {

// What an idle call at `now` makes of the clock: the columns it is worth.
struct Clock {
    std::uint32_t last;
    std::uint32_t At(std::uint32_t now) {
        const std::uint32_t steps = WholeIdleSteps(now, last);
        last = AdvanceIdleTick(last, steps);
        return steps;
    }
};

}  // namespace

// Calls every 33 ms: 100 of them are 3300 ms, 66 whole steps, although no call alone comes near one and a
// half.
TEST(IdleClock, LosesNoTimeToRounding) {
    Clock clock{0};
    std::uint32_t steps = 0;
    for (std::uint32_t call = 1; call <= 100; ++call) steps += clock.At(33 * call);
    EXPECT_EQ(steps, 66U);
}

TEST(IdleClock, RunsOnWhenTheTickCountWraps) {
    Clock clock{0xFFFFFFF0};  // 16 ms before the wrap
    EXPECT_EQ(clock.At(33), 0U);
    EXPECT_EQ(clock.At(34), 1U);
    EXPECT_EQ(clock.last, 34U);
}
