#include "editor/mailbox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

namespace {

using Letters = std::vector<std::pair<std::int32_t, float>>;

Letters Drained(Mailbox& box) {
    Letters letters;
    box.drain([&](std::int32_t index, float value) { letters.emplace_back(index, value); });
    return letters;
}

}  // namespace

TEST(Mailbox, HandsOutTheNewestValueOfEachIndexOnceAndAscending) {
    Mailbox box;
    box.post(98, 0.0F);
    box.post(63, 0.25F);
    box.post(64, 0.5F);
    box.post(0, 1.0F);
    box.post(63, 0.75F);  // replaces 0.25, which nobody fetched
    EXPECT_EQ(Drained(box), (Letters{{0, 1.0F}, {63, 0.75F}, {64, 0.5F}, {98, 0.0F}}));
    EXPECT_TRUE(Drained(box).empty());
}

// What is posted while the box is being emptied comes out then or the next time, never not at all.
TEST(Mailbox, LosesNoLastValueOfAnotherThread) {
    constexpr int rounds = 20000;
    Mailbox box;
    std::thread poster([&] {
        for (int i = 1; i <= rounds; ++i) box.post(i % 3, static_cast<float>(i));
    });
    float last[3] = {};
    bool ordered = true;
    const auto take = [&](std::int32_t index, float value) {
        ordered = ordered && value >= last[index];
        last[index] = value;
    };
    while (last[0] + last[1] + last[2] < 3.0F * rounds - 3.0F) box.drain(take);
    poster.join();
    EXPECT_TRUE(ordered);
    // Of 20000 values, 19998 is the last divisible by 3; 19999 and 20000 leave 1 and 2.
    EXPECT_THAT(last, testing::ElementsAre(19998.0F, 19999.0F, 20000.0F));
}
