#include "editor/equalizer_stroke.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

// The control of the equalizer page: 253 by 206 pixels, a bar every 3, the highest bar 203 pixels.
class Stroke {
public:
    Stroke() { stroke.Begin(); }
    std::vector<std::pair<int, int>> To(int x, int y) {
        std::vector<std::pair<int, int>> set;
        stroke.MoveTo(x, y, [&](int bar, int pixels) { set.emplace_back(bar, pixels); });
        return set;
    }

private:
    EqualizerStroke stroke{253, 206, 3};
};

int XOf(int bar) {
    return 3 * bar + 1;
}

}  // namespace

TEST(EqualizerStroke, APressSetsTheBarUnderTheMouseToAHeightWithinTheControl) {
    EXPECT_THAT(Stroke().To(XOf(0), 100), ElementsAre(Pair(0, 103)));  // 203 - 100
    EXPECT_THAT(Stroke().To(XOf(83), 100), ElementsAre(Pair(83, 103)));
    EXPECT_THAT(Stroke().To(252, 100), IsEmpty());                     // the last pixel belongs to no bar
    EXPECT_THAT(Stroke().To(XOf(5), -40), ElementsAre(Pair(5, 202)));  // the lowest y is 1
    EXPECT_THAT(Stroke().To(XOf(5), 205), ElementsAre(Pair(5, 0)));
    EXPECT_THAT(Stroke().To(XOf(5), 9000), ElementsAre(Pair(5, 0)));
}

// From bar 10 at y 50 to bar 20 at y 70: bar b lies at 50 + 20 * (b - 10) / 10, so its height at 203 less
// that.
TEST(EqualizerStroke, AFastStrokeLeavesNoGaps) {
    Stroke stroke;
    stroke.To(XOf(10), 50);
    EXPECT_THAT(stroke.To(XOf(20), 70),
                ElementsAre(Pair(20, 133), Pair(11, 151), Pair(12, 149), Pair(13, 147), Pair(14, 145),
                            Pair(15, 143), Pair(16, 141), Pair(17, 139), Pair(18, 137), Pair(19, 135)));
    // Backwards over three bars, from y 10 to y 20, in integers: 10 + 10 * -1 / -3 = 13, then 16.
    Stroke back;
    back.To(XOf(9), 10);
    EXPECT_THAT(back.To(XOf(6), 20), ElementsAre(Pair(6, 183), Pair(8, 190), Pair(7, 187)));
}

TEST(EqualizerStroke, AMouseThatRestsSetsNothing) {
    Stroke stroke;
    stroke.To(XOf(4), 80);
    EXPECT_THAT(stroke.To(XOf(4), 80), IsEmpty());
    EXPECT_THAT(stroke.To(XOf(4), 81), ElementsAre(Pair(4, 122)));
}

TEST(EqualizerStroke, LeavingTakesTheBarAtTheEdgeOnce) {
    Stroke right;
    right.To(XOf(82), 100);
    EXPECT_THAT(right.To(400, 100), ElementsAre(Pair(83, 103)));
    EXPECT_THAT(right.To(500, 30), IsEmpty());
    EXPECT_THAT(right.To(500, 90), IsEmpty());
    EXPECT_THAT(right.To(XOf(83), 30), ElementsAre(Pair(83, 173)));  // back inside, it follows again
    Stroke left;
    left.To(XOf(1), 100);
    EXPECT_THAT(left.To(-20, 60), ElementsAre(Pair(0, 143)));
    EXPECT_THAT(left.To(-30, 10), IsEmpty());
}

TEST(EqualizerStroke, ANewPressForgetsWhereTheLastOneEnded) {
    EqualizerStroke stroke(253, 206, 3);
    std::vector<int> bars;
    const auto set = [&](int bar, int) { bars.push_back(bar); };
    stroke.Begin();
    stroke.MoveTo(XOf(10), 50, set);
    stroke.End();
    stroke.Begin();
    stroke.MoveTo(XOf(40), 50, set);
    EXPECT_THAT(bars, ElementsAre(10, 40));
}
