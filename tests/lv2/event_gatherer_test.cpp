#include "hosting/event_gatherer.h"

#include <memory>
#include <thread>

#include "lv2/midi_port.h"
#include "tests/lv2/lv2_host.h"

namespace {

constexpr std::uint32_t on60 = 0x643C90, on61 = 0x643D90, off60 = 0x003C80, off61 = 0x003D80,
                        program5 = 0x0005C0;

// An event of a sequence, as long as its message.
Lv2Event Out(std::int64_t frame, std::uint32_t message) {
    const std::string bytes = {static_cast<char>(message), static_cast<char>(message >> 8),
                               static_cast<char>(message >> 16)};
    return {frame, bytes.substr(0, message == program5 ? 2 : 3)};
}

// A gatherer and a buffer of the host's.
class Gatherer : public testing::Test {
protected:
    void Send(std::int32_t deltaFrames, std::uint32_t message) {
        VstMidiEvent event;
        event.deltaFrames = deltaFrames;
        for (int byte = 0; byte < 3; ++byte) event.midiData[byte] = static_cast<char>(message >> 8 * byte);
        VstEvents events;
        events.numEvents = 1;
        events.events[0] = reinterpret_cast<VstEvent*>(&event);
        gatherer->Take(events);
    }
    void SendFromElsewhere(std::uint32_t message) {
        std::thread([&] { Send(50, message); }).join();
    }
    void Begin(std::uint32_t frames = 100) { gatherer->BeginRun(frames); }
    Lv2Events End(std::uint32_t capacity = midiPortBytes) {
        std::vector<std::uint64_t> buffer(midiPortBytes / 8 + 1);
        auto& sequence = *reinterpret_cast<LV2_Atom_Sequence*>(buffer.data());
        sequence.atom = {capacity, 0};
        MidiPort port(1, 2);
        port.Connect(&sequence);
        port.Begin();
        gatherer->EndRun([&](auto frame, auto message) { return port.Write(frame, message); });
        return EventsOf(sequence, 2);
    }
    Lv2Events Run() {
        Begin();
        return End();
    }
    const std::unique_ptr<EventGatherer> gatherer = std::make_unique<EventGatherer>();
};

TEST_F(Gatherer, WhatComesFromElsewhereIsOutAtTheNextRunsBeginningAndIsNotOvertaken) {
    Send(7, on60);  // between runs, though by the same thread
    SendFromElsewhere(off60);
    EXPECT_EQ(Run(), (Lv2Events{Out(0, on60), Out(0, off60)}));
    Begin();
    SendFromElsewhere(on60);
    Send(20, off60);  // its end, in the same run: must not come first
    EXPECT_EQ(End(), Lv2Events());
    EXPECT_EQ(Run(), (Lv2Events{Out(0, on60), Out(0, off60)}));
}

// 8 bytes of body and 24 for each event: 16 for its head, 3 for the message, padded to a multiple of 8.
TEST_F(Gatherer, WhatDoesNotFitWaits) {
    Begin();
    Send(30, on60);
    Send(10, on61);
    Send(40, off60);
    EXPECT_EQ(End(8 + 24 + 23), Lv2Events{Out(10, on61)});
    EXPECT_EQ(Run(), (Lv2Events{Out(0, on60), Out(0, off60)}));
    Begin();
    Send(3, on60);
    EXPECT_EQ(End(7), Lv2Events());  // without space for the sequence's own head
    EXPECT_EQ(Run(), Lv2Events{Out(0, on60)});

    for (int i = 0; i < 2000; ++i) Send(0, program5);
    Send(0, off60);  // a full ring still takes the ends of notes
    Send(0, on61 & 0xFFFF);
    const Lv2Events events = Run(), rest = Run();
    ASSERT_EQ(events.size(), 682U);                     // as many as the buffer holds: (16384 - 8) / 24
    ASSERT_EQ(events.size() + rest.size(), 768U + 2U);  // three quarters of 1024, and the two
    EXPECT_EQ(rest[rest.size() - 2], Out(0, off60));
    EXPECT_EQ(rest.back(), Out(0, on61 & 0xFFFF));
}

// Four writers beside a run that sends, too: nothing is lost, and each one's own order holds.
TEST_F(Gatherer, TakesFromManyThreadsAtOnce) {
    std::vector<std::thread> writers;
    for (std::uint32_t writer = 0; writer < 4; ++writer)
        writers.emplace_back([this, writer] {
            for (std::uint32_t i = 0; i < 100; ++i) Send(0, 0x640090 | writer | i << 8);
        });
    Lv2Events all;
    for (std::uint32_t round = 0; round <= 100; ++round) {
        if (round == 100)
            for (std::thread& writer : writers) writer.join();
        Begin();
        if (round < 100) Send(20, 0x640094 | round << 8);
        for (const Lv2Event& event : End()) all.push_back(event);
    }
    ASSERT_EQ(all.size(), 500U);
    int next[5] = {};
    for (const Lv2Event& event : all) EXPECT_EQ(event.data[1], next[event.data[0] & 7]++);
}

}  // namespace
