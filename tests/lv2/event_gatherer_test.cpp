#include "lv2/event_gatherer.h"

#include <initializer_list>
#include <memory>
#include <thread>

#include "tests/lv2/lv2_host.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A gatherer and a buffer of the host's.
class Gatherer : public testing::Test {
protected:
    void Send(std::int32_t deltaFrames, std::initializer_list<int> bytes) {
        VstMidiEvent event;
        event.deltaFrames = deltaFrames;
        std::size_t at = 0;
        for (const int byte : bytes) event.midiData[at++] = static_cast<char>(byte);
        VstEvents events;
        events.numEvents = 1;
        events.events[0] = reinterpret_cast<VstEvent*>(&event);
        gatherer->Take(events);
    }
    void SendFromElsewhere(std::initializer_list<int> bytes) {
        std::thread([&] { Send(50, bytes); }).join();
    }
    std::vector<Lv2Event> End(std::uint32_t frames, std::uint32_t capacity = midiPortBytes) {
        std::vector<std::uint64_t> buffer(midiPortBytes / 8 + 1);
        auto& sequence = *reinterpret_cast<LV2_Atom_Sequence*>(buffer.data());
        sequence.atom = {capacity, 0};
        gatherer->EndRun(frames, &sequence);
        std::vector<Lv2Event> events;
        LV2_ATOM_SEQUENCE_FOREACH(&sequence, event) {
            const auto* bytes = reinterpret_cast<const char*>(event + 1);
            events.push_back({event->time.frames, std::string(bytes, event->body.size)});
        }
        return events;
    }
    std::vector<Lv2Event> Run() {
        gatherer->BeginRun();
        return End(100);
    }

    std::unique_ptr<EventGatherer> gatherer = std::make_unique<EventGatherer>(1, 2);
};

const std::string on60("\x90\x3C\x64", 3), on61("\x90\x3D\x64", 3), off60("\x80\x3C\x00", 3),
    off61("\x80\x3D\x00", 3), program5("\xC0\x05", 2);

TEST_F(Gatherer, ClampsToTheRunAndKeepsTheOrderOfEqualTimes) {
    gatherer->BeginRun();
    Send(99, {0x90, 60, 100});
    Send(100, {0x90, 61, 100});  // behind the last frame: clamped to 99
    Send(-3, {0x80, 61, 0});     // before the first: clamped to 0
    Send(0, {0x80, 60, 0});
    EXPECT_THAT(End(100),
                ElementsAre(Lv2Event{0, off61}, Lv2Event{0, off60}, Lv2Event{99, on60}, Lv2Event{99, on61}));
}

TEST_F(Gatherer, CountsFromTheBlockWithinTheRunAndWritesWholeMessages) {
    gatherer->BeginRun();
    gatherer->BeginBlock(40);
    Send(-30, {0x90, 60, 100});  // 40 - 30
    Send(1, {0xC0, 5, 0});
    Send(2, {0, 0, 0});  // of a band without a note
    EXPECT_THAT(End(100), ElementsAre(Lv2Event{10, on60}, Lv2Event{41, program5}));
}

TEST_F(Gatherer, WhatComesFromElsewhereIsOutAtTheNextRunsBegin) {
    Send(7, {0x90, 60, 100});  // between runs, though by the same thread
    SendFromElsewhere({0x80, 60, 0});
    EXPECT_THAT(Run(), ElementsAre(Lv2Event{0, on60}, Lv2Event{0, off60}));
    gatherer->BeginRun();
    Send(20, {0x90, 60, 100});
    SendFromElsewhere({0x80, 60, 0});
    EXPECT_THAT(End(100), ElementsAre(Lv2Event{20, on60}));
    EXPECT_THAT(Run(), ElementsAre(Lv2Event{0, off60}));
}

TEST_F(Gatherer, NothingOvertakesWhatWasSentBefore) {
    gatherer->BeginRun();
    SendFromElsewhere({0x90, 60, 100});
    Send(20, {0x80, 60, 0});  // its end, in the same run: must not come first
    EXPECT_THAT(End(100), IsEmpty());
    EXPECT_THAT(Run(), ElementsAre(Lv2Event{0, on60}, Lv2Event{0, off60}));
}

// 8 bytes of body and 24 for each event: 16 for its head, 3 for the message, padded to a multiple of 8.
TEST_F(Gatherer, WhatDoesNotFitWaits) {
    gatherer->BeginRun();
    Send(30, {0x90, 60, 100});
    Send(10, {0x90, 61, 100});
    Send(40, {0x80, 60, 0});
    EXPECT_THAT(End(100, 8 + 24 + 23), ElementsAre(Lv2Event{10, on61}));
    gatherer->BeginRun();
    Send(5, {0x80, 61, 0});
    EXPECT_THAT(End(100, 8 + 2 * 24), ElementsAre(Lv2Event{0, on60}, Lv2Event{0, off60}));
    EXPECT_THAT(Run(), ElementsAre(Lv2Event{0, off61}));
}

TEST_F(Gatherer, ABufferWithoutRoomForItsHeadIsLeftEmpty) {
    gatherer->BeginRun();
    Send(3, {0x90, 60, 100});
    LV2_Atom_Sequence tiny{{7, 0}, {11, 12}};
    gatherer->EndRun(100, &tiny);
    EXPECT_EQ(tiny.atom.size, 0U);
    EXPECT_EQ(tiny.body.unit, 11U);
    EXPECT_THAT(Run(), ElementsAre(Lv2Event{0, on60}));
}

TEST_F(Gatherer, AFullRingStillTakesTheEndsOfNotes) {
    for (int i = 0; i < 2000; ++i) Send(0, {0xC0, 5, 0});
    Send(0, {0x80, 60, 0});
    Send(0, {0x90, 61, 0});  // an end, too, by its velocity
    const auto events = Run();
    ASSERT_EQ(events.size(), 682U);  // as many as the buffer holds: (16384 - 8) / 24
    const auto rest = Run();
    ASSERT_EQ(events.size() + rest.size(), 768U + 2U);  // three quarters of 1024, and the two
    EXPECT_EQ(rest[rest.size() - 2].data, off60);
    EXPECT_EQ(rest.back().data, std::string("\x90\x3D\x00", 3));
}

// Four writers beside a run that sends, too: nothing is lost, and each one's own order holds. A thread
// sanitizer judges.
TEST_F(Gatherer, TakesFromManyThreadsAtOnce) {
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer)
        writers.emplace_back([this, writer] {
            for (int i = 0; i < 100; ++i) Send(0, {0x90 | writer, i, 100});
        });
    std::vector<Lv2Event> all;
    for (int round = 0; round < 100; ++round) {
        gatherer->BeginRun();
        Send(20, {0x94, round, 100});
        for (const Lv2Event& event : End(100)) all.push_back(event);
    }
    for (std::thread& writer : writers) writer.join();
    for (const Lv2Event& event : Run()) all.push_back(event);
    ASSERT_EQ(all.size(), 500U);
    int next[5] = {};
    for (const Lv2Event& event : all) EXPECT_EQ(event.data[1], next[event.data[0] & 7]++);
}

}  // namespace
