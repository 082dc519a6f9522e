#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "tests/notes/score_check.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::unique_ptr<TNotes> WithBars(std::initializer_list<std::uint32_t> times) {
    auto score = std::make_unique<TNotes>();
    for (const std::uint32_t time : times) score->AddBar(time, 4);
    return score;
}

std::vector<std::uint32_t> Times(const TBars& bars) {
    std::vector<std::uint32_t> times;
    for (const auto& bar : bars) times.push_back(bar.first);
    return times;
}

std::vector<std::uint32_t> Numbers(const TBars& bars) {
    std::vector<std::uint32_t> numbers;
    for (const auto& bar : bars) numbers.push_back(bar.second.barIndex);
    return numbers;
}

// NormalizeBars step by step, with AddBar and RemoveBar alone.
void NormalizeStepByStep(TNotes& score, std::uint32_t numerator, std::uint32_t shift, std::uint32_t bpm,
                         std::uint32_t lastTime) {
    score.AddBar(0, numerator);
    const std::uint32_t last = score.bars.rbegin()->first;
    if (lastTime >= last && lastTime - last >= closestBars) score.AddBar(lastTime, numerator);
    const std::uint64_t spacing = BarSpacing(numerator, shift, bpm);
    for (auto bar = std::next(score.bars.begin()); bar != score.bars.end();) {
        const auto next = std::next(bar);
        if (next == score.bars.end()) return;
        const std::uint32_t first = bar->first, gap = next->first - first;
        if (gap < closestBars) {
            score.RemoveBar(next->first);
            continue;
        }
        if (gap > widestBars && spacing > 0) {
            std::int64_t count = static_cast<std::int64_t>(gap / spacing);
            if (gap % spacing < closestBars) --count;
            for (std::int64_t added = 0; added < count; ++added)
                score.AddBar(first + static_cast<std::uint32_t>(added * static_cast<std::int64_t>(spacing)),
                             numerator);
        }
        ++bar;
    }
}

}  // namespace

TEST(BarMap, ANewBarTakesItsNumberFromItsNeighbours) {
    const auto score = WithBars({100});
    EXPECT_THAT(Numbers(score->bars), ElementsAre(1));
    score->bars.begin()->second.barIndex = 5;
    score->AddBar(50, 3);  // before the first one: its number, which moves on
    score->AddBar(200, 3);
    score->AddBar(150, 3);
    EXPECT_THAT(Times(score->bars), ElementsAre(50, 100, 150, 200));
    EXPECT_THAT(Numbers(score->bars), ElementsAre(5, 6, 7, 8));
    score->AddBar(100, 9);  // one stands there
    EXPECT_EQ(score->bars.at(100), (TBar{6, 4}));
}

TEST(BarMap, RemovingABarLowersThoseBehindIt) {
    const auto score = WithBars({0, 10, 20, 30});
    score->RemoveBar(10);
    score->RemoveBar(15);  // no bar, no change
    EXPECT_THAT(Times(score->bars), ElementsAre(0, 20, 30));
    EXPECT_THAT(Numbers(score->bars), ElementsAre(1, 2, 3));
}

TEST(BarMap, ReplacingAndMovingBars) {
    const auto score = WithBars({0, 10, 20});
    score->ReplaceBar({10, {}}, {10, {77, 3}});
    EXPECT_EQ(score->bars.at(10), (TBar{2, 3}));
    score->MoveBar(10, 30);
    score->MoveBar(11, 40);  // no bar, no change
    EXPECT_THAT(Times(score->bars), ElementsAre(0, 20, 30));
    EXPECT_EQ(score->bars.at(30), (TBar{3, 3}));
}

TEST(BarMap, FillingCountsFromZeroToOnePastTheEnd) {
    const auto score = WithBars({5});
    score->FillBars(25, 10, 3);  // 25 / 10 + 1 = 3 is the last number
    EXPECT_THAT(score->bars, ElementsAre(Pair(0, TBar{0, 3}), Pair(10, TBar{1, 3}), Pair(20, TBar{2, 3}),
                                         Pair(30, TBar{3, 3})));
    score->FillBars(lastTick, (1U << 31) + 1, 3);  // twice that is past the last tick
    EXPECT_THAT(Times(score->bars), ElementsAre(0, (1U << 31) + 1));
    score->FillBars(25, 0, 3);
    EXPECT_THAT(score->bars, IsEmpty());
}

TEST(BarMap, MergingKeepsTheFirstOfBarsThatStandTooClose) {
    const auto score = WithBars({0, 11024, 11025, 22049, 22050});
    score->MergeCloseBars();
    EXPECT_THAT(Times(score->bars), ElementsAre(0, 11025, 22050));
    EXPECT_THAT(Numbers(score->bars), ElementsAre(1, 2, 3));
    const auto alone = WithBars({7});
    alone->MergeCloseBars();
    EXPECT_THAT(Times(alone->bars), ElementsAre(7));
}

TEST(BarMap, BarsInRangeIsHalfOpenOnTheLeft) {
    const auto score = WithBars({0, 10, 20, 30});
    const auto [first, end] = score->BarsInRange(10, 30);
    EXPECT_EQ(first->first, 20U);
    EXPECT_EQ(end, score->bars.end());
    const auto [none, noneEnd] = score->BarsInRange(30, 10);
    EXPECT_EQ(none, noneEnd);
}

TEST(BarMap, SpacingIsDefinedForEveryTempo) {
    EXPECT_EQ(BarSpacing(4, 2, 120), 44100U);  // 4 * 5292000 / 480: two seconds
    EXPECT_EQ(BarSpacing(4, 31, 1U << 31), 0U);
    EXPECT_EQ(BarSpacing(4, 32, 120), 0U);
    EXPECT_EQ(BarSpacing(4, 2, 0), 0U);
    EXPECT_EQ(BarSpacing(lastTick, 0, 1), std::uint64_t{lastTick} * 5292000);
}

// Spacings from a few ticks, where most new bars are merged again, to several minutes; numbers too.
TEST(BarMap, NormalizingInOnePassIsNormalizingStepByStep) {
    std::minstd_rand random(1);
    for (int round = 0; round < 200; ++round) {
        const auto fast = std::make_unique<TNotes>(), slow = std::make_unique<TNotes>();
        auto time = static_cast<std::uint32_t>(random() % 3 * 5000);
        for (int bar = 0; bar < 12; ++bar) {
            fast->bars[time] = slow->bars[time] = TBar{static_cast<std::uint32_t>(random() % 90), 4};
            time += static_cast<std::uint32_t>(1 + random() % (random() % 4 == 0 ? 600000 : 20000));
        }
        const auto shift = static_cast<std::uint32_t>(random() % 6);
        const auto bpm = static_cast<std::uint32_t>(1 + random() % (random() % 2 == 0 ? 300 : 4000));
        const auto last = static_cast<std::uint32_t>(random() % 2 * (time + 30000));
        fast->NormalizeBars(4, shift, bpm, last);
        NormalizeStepByStep(*slow, 4, shift, bpm, last);
        ASSERT_EQ(fast->bars, slow->bars) << "round " << round << ", shift " << shift << ", bpm " << bpm;
    }
}

TEST(BarMap, AGapOfTheWholeTimeLineIsFilledWithinReason) {
    const auto score = WithBars({0, 1, lastTick});
    score->NormalizeBars(4, 2, 5292000, lastTick);  // spacing 1: only bars half a second apart stay
    EXPECT_LE(score->bars.size(), lastTick / closestBars + 3);
    EXPECT_EQ(std::next(score->bars.begin(), 3)->first, 2U + 11025U);
}
