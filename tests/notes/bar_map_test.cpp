#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "tests/notes/score_check.h"

namespace {

using Numbers = std::vector<std::uint32_t>;

std::unique_ptr<TNotes> WithBars(std::initializer_list<std::uint32_t> times) {
    auto score = std::make_unique<TNotes>();
    for (const std::uint32_t time : times) score->AddBar(time, 4);
    return score;
}

Numbers Times(const TBars& bars) {
    Numbers times;
    for (const auto& bar : bars) times.push_back(bar.first);
    return times;
}

Numbers Indices(const TBars& bars) {
    Numbers numbers;
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
    EXPECT_EQ(Indices(score->bars), (Numbers{1}));
    score->bars.begin()->second.barIndex = 5;
    score->AddBar(50, 3);  // before the first one: its number, which moves on
    score->AddBar(200, 3);
    score->AddBar(150, 3);
    EXPECT_EQ(Times(score->bars), (Numbers{50, 100, 150, 200}));
    EXPECT_EQ(Indices(score->bars), (Numbers{5, 6, 7, 8}));
    score->AddBar(100, 9);  // one stands there
    EXPECT_EQ(score->bars.at(100), (TBar{6, 4}));
}

TEST(BarMap, BarsAreRemovedReplacedAndMoved) {
    const auto score = WithBars({0, 10, 20, 30});
    score->RemoveBar(10);
    score->RemoveBar(15);  // no bar, no change
    EXPECT_EQ(Times(score->bars), (Numbers{0, 20, 30}));
    EXPECT_EQ(Indices(score->bars), (Numbers{1, 2, 3}));
    score->ReplaceBar({20, {}}, {20, {77, 3}});
    EXPECT_EQ(score->bars.at(20), (TBar{2, 3}));
    score->MoveBar(20, 40);
    score->MoveBar(11, 50);  // no bar, no change
    EXPECT_EQ(Times(score->bars), (Numbers{0, 30, 40}));
    EXPECT_EQ(score->bars.at(40), (TBar{3, 3}));
    const auto [first, end] = score->BarsInRange(0, 30);  // half open on the left
    EXPECT_EQ(first->first, 30U);
    EXPECT_EQ(end->first, 40U);
    EXPECT_EQ(score->BarsInRange(30, 10).first, score->BarsInRange(30, 10).second);
}

TEST(BarMap, FillingCountsFromZeroToOnePastTheEnd) {
    const auto score = WithBars({5});
    score->FillBars(25, 10, 3);  // 25 / 10 + 1 = 3 is the last number
    EXPECT_EQ(score->bars, (TBars{{0, {0, 3}}, {10, {1, 3}}, {20, {2, 3}}, {30, {3, 3}}}));
    score->FillBars(lastTick, (1U << 31) + 1, 3);  // twice that is past the last tick
    EXPECT_EQ(Times(score->bars), (Numbers{0, (1U << 31) + 1}));
    score->FillBars(25, 0, 3);
    EXPECT_TRUE(score->bars.empty());
}

TEST(BarMap, MergingKeepsTheFirstOfBarsThatStandTooClose) {
    const auto score = WithBars({0, 11024, 11025, 22049, 22050});
    score->MergeCloseBars();
    EXPECT_EQ(Times(score->bars), (Numbers{0, 11025, 22050}));
    EXPECT_EQ(Indices(score->bars), (Numbers{1, 2, 3}));
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
