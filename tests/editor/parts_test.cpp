// The parts of the editor that know no toolkit.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "editor/equalizer_stroke.h"
#include "editor/idle_clock.h"

namespace {

using Heights = std::vector<std::pair<int, int>>;  // bar, pixels

int XOf(int bar) {
    return 3 * bar + 1;
}

// The control of the equalizer page: 253 by 206 pixels, a bar every 3, the highest bar 203 pixels.
TEST(EqualizerStroke, SetsTheBarsThatTheMousePassesWithoutGaps) {
    const struct {
        std::vector<std::pair<int, int>> moves;  // x and y, the last of which counts
        Heights set;
    } rows[] = {
        {{{XOf(0), 100}}, {{0, 103}}},  // 203 - 100
        {{{252, 100}}, {}},             // the last pixel belongs to no bar
        {{{XOf(5), -40}}, {{5, 202}}},  // the lowest y is 1
        {{{XOf(5), 9000}}, {{5, 0}}},
        // Backwards over three bars, from y 10 to y 20, in integers: 10 + 10 * -1 / -3 = 13, then 16.
        {{{XOf(9), 10}, {XOf(6), 20}}, {{6, 183}, {8, 190}, {7, 187}}},
        {{{XOf(4), 80}, {XOf(4), 80}}, {}},  // a mouse that rests
        // Outside, the bar at the edge is set once.
        {{{XOf(82), 100}, {400, 100}, {500, 30}}, {}},
        {{{XOf(1), 100}, {-20, 60}}, {{0, 143}}},
    };
    EqualizerStroke stroke(253, 206, 3);  // a new press forgets where the last one ended
    for (const auto& [moves, expected] : rows) {
        Heights set;
        stroke.Begin();
        for (const auto& [x, y] : moves) {
            set.clear();
            stroke.MoveTo(x, y, [&](int bar, int pixels) { set.emplace_back(bar, pixels); });
        }
        stroke.End();
        EXPECT_EQ(set, expected) << "at " << moves.back().first << ", " << moves.back().second;
    }
}

// Calls every 33 ms: 100 of them are 3300 ms, 66 whole steps, although no call alone comes near one and a
// half. The tick count wraps on the way.
TEST(IdleClock, LosesNoTimeToRoundingOrWrapping) {
    std::uint32_t steps = 0, last = 0xFFFFFFF0;
    for (std::uint32_t now = last + 33; now != 0xFFFFFFF0 + 3333; now += 33) {
        const std::uint32_t whole = WholeIdleSteps(now, last);
        last = AdvanceIdleTick(last, whole);
        steps += whole;
    }
    EXPECT_EQ(steps, 66U);
    EXPECT_EQ(last, 0xFFFFFFF0 + 3300);
}

}  // namespace
