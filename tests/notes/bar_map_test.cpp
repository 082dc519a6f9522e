#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "tests/notes/score_check.h"

namespace {

// Each bar as time:number/beats.
std::string Bars(const TNotes& score) {
    std::string text;
    for (const auto& [time, bar] : score.bars)
        text += std::to_string(time) + ":" + std::to_string(bar.barIndex) + "/" +
                std::to_string(bar.beatsPerBar) + " ";
    return text;
}

}  // namespace

TEST(BarMap, BarsAreNumberedByTheirNeighboursThroughEveryChange) {
    const auto score = std::make_unique<TNotes>();
    score->AddBar(100, 4);
    score->bars.begin()->second.barIndex = 5;
    for (const std::uint32_t time : {50U, 200U, 150U, 100U}) score->AddBar(time, 3);  // at 100 one stands
    EXPECT_EQ(Bars(*score), "50:5/3 100:6/4 150:7/3 200:8/3 ");
    for (const std::uint32_t time : {100U, 101U}) score->RemoveBar(time);  // at 101 none stands
    score->MoveBar(150, 300);
    EXPECT_EQ(Bars(*score), "50:5/3 200:6/3 300:7/3 ");
    score->FillBars(25, 10, 3);  // 25 / 10 + 1 = 3 is the last number
    EXPECT_EQ(Bars(*score), "0:0/3 10:1/3 20:2/3 30:3/3 ");
    score->FillBars(25, 0, 3);
    EXPECT_TRUE(score->bars.empty());
}

// Spacings from a few ticks, where most new bars are merged again, to several minutes. The digest is that of
// adding and removing the bars one by one by the rules above.
TEST(BarMap, NormalizingIsAddingAndRemovingOneByOne) {
    EXPECT_EQ(BarSpacing(4, 2, 120), 44100U);  // 4 * 5292000 / 480: two seconds
    for (const auto& [shift, bpm] : {std::pair{31U, 1U << 31}, {32U, 120U}, {2U, 0U}})
        EXPECT_EQ(BarSpacing(4, shift, bpm), 0U);
    EXPECT_EQ(BarSpacing(lastTick, 0, 1), std::uint64_t{lastTick} * 5292000);
    std::minstd_rand random(1);
    std::uint32_t digest = 0;
    for (int round = 0; round < 200; ++round) {
        const auto score = std::make_unique<TNotes>();
        auto time = static_cast<std::uint32_t>(random() % 3 * 5000);
        for (int bar = 0; bar < 12; ++bar) {
            score->bars[time] = TBar{static_cast<std::uint32_t>(random() % 90), 4};
            const auto length = random();
            time += static_cast<std::uint32_t>(1 + length % (random() % 4 == 0 ? 600000 : 20000));
        }
        const auto shift = static_cast<std::uint32_t>(random() % 6);
        const auto speed = random();
        const auto bpm = static_cast<std::uint32_t>(1 + speed % (random() % 2 == 0 ? 300 : 4000));
        score->NormalizeBars(4, shift, bpm, static_cast<std::uint32_t>(random() % 2 * (time + 30000)));
        for (const char letter : Bars(*score)) digest = digest * 31 + static_cast<unsigned char>(letter);
    }
    EXPECT_EQ(digest, 3689638055U);
}
