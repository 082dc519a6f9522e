#include "hosting/event_gatherer.h"
#include "tests/support/test.h"

namespace {

using Messages = std::vector<std::uint32_t>;

constexpr std::uint32_t on60 = 0x643C90, on61 = 0x643D90, off60 = 0x003C80, program5 = 0x0005C0;

class Gatherer : public testing::Test {
protected:
    void Begin() { gatherer->BeginRun(100); }
    // All at the run's first frame.
    Messages End() {
        Messages sent;
        gatherer->EndRun([&](std::uint32_t frame, std::uint32_t message) {
            EXPECT_EQ(frame, 0U);
            return sent.push_back(message), true;
        });
        return sent;
    }
    Messages Run() { return Begin(), End(); }
    const std::unique_ptr<EventGatherer> gatherer = std::make_unique<EventGatherer>();
};

TEST_F(Gatherer, WhatComesFromElsewhereIsOutAtTheNextRunsBeginningAndIsNotOvertaken) {
    gatherer->Take(7, on60);  // between runs, though by the same thread
    Begin();
    std::thread([&] { gatherer->Take(50, off60); }).join();
    gatherer->Take(20, on61);  // in the same run: must not come first
    EXPECT_EQ(End(), Messages{on60});
    EXPECT_EQ(Run(), (Messages{off60, on61}));
}

TEST_F(Gatherer, AFullRingStillTakesTheEndsOfNotes) {
    for (int i = 0; i < 2000; ++i) gatherer->Take(0, program5);
    gatherer->Take(0, off60);
    const Messages events = Run();
    ASSERT_EQ(events.size(), 768U + 1U);  // three quarters of 1024, and the one
    EXPECT_EQ(events.back(), off60);
}

}  // namespace
