#include "platform/message_ring.h"

#include <random>

#include "gtest/gtest.h"

namespace {

TEST(MessageRing, KeepsTheOrderAndRefusesWhenItIsFull) {
    MessageRing<int, 8> ring;
    std::minstd_rand random(1);
    int written = 0, read = 0;
    for (int step = 0; step < 10000; ++step) {
        if (random() % 2 == 0) {
            ASSERT_EQ(ring.Push(written), written - read < 8);
            if (written - read < 8) ++written;
        } else {
            ASSERT_EQ(ring.Ready(), read < written);
            if (!ring.Ready()) continue;
            ASSERT_EQ(ring.Front(), read);
            ASSERT_EQ(ring.Place(), static_cast<std::uint64_t>(read));
            ring.Pop();
            ++read;
        }
    }
}

}  // namespace
