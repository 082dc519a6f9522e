#include "platform/message_ring.h"

#include <atomic>
#include <random>
#include <thread>
#include <vector>

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

// Several writers, none of which waits, and a reading that goes from hand to hand as it does among senders:
// every message is read once, each writer's in its order, and none is left behind when the last writer has
// gone.
TEST(MessageRing, WhoeverFindsNobodyReadingReadsForAll) {
    constexpr int writers = 4, messages = 20000;
    MessageRing<int, 64> ring;
    std::atomic<bool> reading{false};
    std::vector<int> lastOf(writers, -1);  // in the hands of the reader
    int taken = 0, disorder = 0;
    const auto readAll = [&] {
        while (ring.Ready() && !reading.exchange(true)) {
            for (; ring.Ready(); ring.Pop(), ++taken) {
                const int writer = ring.Front() % writers, number = ring.Front() / writers;
                if (number <= lastOf[static_cast<std::size_t>(writer)]) ++disorder;
                lastOf[static_cast<std::size_t>(writer)] = number;
            }
            reading.store(false);
        }
    };
    std::atomic<int> refused{0};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer)
        threads.emplace_back([&, writer] {
            for (int number = 0; number < messages; ++number) {
                if (!ring.Push(number * writers + writer)) ++refused;
                readAll();
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(taken + refused, writers * messages);
    EXPECT_EQ(disorder, 0);
    EXPECT_FALSE(ring.Ready());
}

}  // namespace
