#include "hosting/event_gatherer.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

using Sent = std::vector<std::pair<std::uint32_t, std::uint32_t>>;  // frame and message

constexpr std::uint32_t on60 = 0x643C90, on61 = 0x643D90, off60 = 0x003C80, program5 = 0x0005C0;

class Gatherer : public testing::Test {
protected:
    void Send(std::int64_t frame, std::uint32_t message) { gatherer->Take(frame, message); }
    void SendFromElsewhere(std::uint32_t message) {
        std::thread([&] { Send(50, message); }).join();
    }
    void Begin() { gatherer->BeginRun(100); }
    // Into a host's buffer for so many events.
    Sent End(std::size_t capacity = 700) {
        Sent sent;
        gatherer->EndRun([&](std::uint32_t frame, std::uint32_t message) {
            if (sent.size() == capacity) return false;
            sent.emplace_back(frame, message);
            return true;
        });
        return sent;
    }
    Sent Run() {
        Begin();
        return End();
    }
    const std::unique_ptr<EventGatherer> gatherer = std::make_unique<EventGatherer>();
};

TEST_F(Gatherer, WhatComesFromElsewhereIsOutAtTheNextRunsBeginningAndIsNotOvertaken) {
    Send(7, on60);  // between runs, though by the same thread
    SendFromElsewhere(off60);
    EXPECT_EQ(Run(), (Sent{{0, on60}, {0, off60}}));
    Begin();
    SendFromElsewhere(on60);
    Send(20, off60);  // its end, in the same run: must not come first
    EXPECT_EQ(End(), Sent());
    EXPECT_EQ(Run(), (Sent{{0, on60}, {0, off60}}));
}

TEST_F(Gatherer, WhatDoesNotFitWaits) {
    Begin();
    Send(30, on60);
    Send(10, on61);
    Send(40, off60);
    EXPECT_EQ(End(1), (Sent{{10, on61}}));
    EXPECT_EQ(Run(), (Sent{{0, on60}, {0, off60}}));

    for (int i = 0; i < 2000; ++i) Send(0, program5);
    Send(0, off60);  // a full ring still takes the ends of notes
    const Sent events = Run(), rest = Run();
    ASSERT_EQ(events.size() + rest.size(), 768U + 1U);  // three quarters of 1024, and the one
    EXPECT_EQ(rest.back().second, off60);
}

// Four writers beside a run that sends, too: nothing is lost, and each one's own order holds.
TEST_F(Gatherer, TakesFromManyThreadsAtOnce) {
    std::vector<std::thread> writers;
    for (std::uint32_t writer = 0; writer < 4; ++writer)
        writers.emplace_back([this, writer] {
            for (std::uint32_t i = 0; i < 100; ++i) Send(0, 0x640090 | writer | i << 8);
        });
    std::size_t count = 0;
    std::uint32_t next[5] = {};
    for (std::uint32_t round = 0; round <= 100; ++round) {
        if (round == 100)
            for (std::thread& writer : writers) writer.join();
        Begin();
        if (round < 100) Send(20, 0x640094 | round << 8);
        for (const auto& [frame, message] : End()) {
            ++count;
            EXPECT_EQ(message >> 8 & 0x7F, next[message & 7]++);
        }
    }
    EXPECT_EQ(count, 500U);
}

}  // namespace
