// The devices of the ALSA sequencer, through RtMidi, on a sequencer of our own: its functions are found in
// this program before those of the system's library.
#include "devices/linux/sequencer_out.h"

#include <alsa/asoundlib.h>

#include <atomic>
#include <cerrno>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "gtest/gtest.h"

namespace {

using NameList = std::vector<std::string>;
using SequencerWords = std::vector<std::uint32_t>;

struct FakeSequencer {
    struct Port {
        int client, port;
        std::string clientName, portName;
    };
    std::vector<Port> ports = {
        {14, 0, "Midi Through", "Midi Through Port-0"}, {128, 0, "Synth", "in"}, {128, 1, "Synth", "in"}};
    int subscribeResult = 0;           // negative: refused
    std::atomic<int> outputResult{0};  // negative: an event is refused
    std::atomic<int> clients{0};       // open
    std::string subscribed;            // "client:port"
    SequencerWords words;              // what was sent; of a system-exclusive message its length
    std::atomic<int> inside{0};        // senders: the library allows one
    std::atomic<int> collisions{0};
};
FakeSequencer* sequencer = nullptr;  // of the test that runs

std::uint32_t WordOf(const snd_seq_event_t& event) {
    const auto& note = event.data.note;
    const auto& control = event.data.control;
    const auto value = static_cast<std::uint32_t>(control.value);
    switch (event.type) {
        case SND_SEQ_EVENT_NOTEON: return 0x90U | note.channel | note.note << 8U | note.velocity << 16U;
        case SND_SEQ_EVENT_CONTROLLER: return 0xB0U | control.channel | control.param << 8 | value << 16;
        case SND_SEQ_EVENT_PGMCHANGE: return 0xC0U | control.channel | value << 8;
        case SND_SEQ_EVENT_SYSEX: return event.data.ext.len;
        default: return 0;
    }
}

}  // namespace

#define FROM_LIBRARY extern "C" __attribute__((visibility("default"))) int

FROM_LIBRARY snd_seq_open(snd_seq_t** handle, const char*, int, int) {
    *handle = reinterpret_cast<snd_seq_t*>(sequencer);
    return ++sequencer->clients, 0;
}
FROM_LIBRARY snd_seq_close(snd_seq_t*) {
    return --sequencer->clients, 0;
}
FROM_LIBRARY snd_seq_set_client_name(snd_seq_t*, const char*) {
    return 0;
}
FROM_LIBRARY snd_seq_client_id(snd_seq_t*) {
    return 200;
}
FROM_LIBRARY snd_seq_query_next_client(snd_seq_t*, snd_seq_client_info_t* info) {
    for (const FakeSequencer::Port& port : sequencer->ports)
        if (port.client > snd_seq_client_info_get_client(info))
            return snd_seq_client_info_set_client(info, port.client), 0;
    return -ENOENT;
}
FROM_LIBRARY snd_seq_query_next_port(snd_seq_t*, snd_seq_port_info_t* info) {
    const int last = snd_seq_port_info_get_port(info);
    const int after = last == 255 ? -1 : last;  // a number is a byte: 255 stands before the first
    for (const FakeSequencer::Port& port : sequencer->ports) {
        if (port.client != snd_seq_port_info_get_client(info) || port.port <= after) continue;
        snd_seq_port_info_set_port(info, port.port);
        snd_seq_port_info_set_name(info, port.portName.c_str());
        snd_seq_port_info_set_type(info, SND_SEQ_PORT_TYPE_MIDI_GENERIC);
        snd_seq_port_info_set_capability(info, SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE);
        return 0;
    }
    return -ENOENT;
}
FROM_LIBRARY snd_seq_get_any_client_info(snd_seq_t*, int client, snd_seq_client_info_t* info) {
    for (const FakeSequencer::Port& port : sequencer->ports)
        if (port.client == client) snd_seq_client_info_set_name(info, port.clientName.c_str());
    return 0;
}
FROM_LIBRARY snd_seq_create_simple_port(snd_seq_t*, const char*, unsigned, unsigned) {
    return 0;
}
FROM_LIBRARY snd_seq_delete_port(snd_seq_t*, int) {
    return 0;
}
FROM_LIBRARY snd_seq_subscribe_port(snd_seq_t*, snd_seq_port_subscribe_t* subscription) {
    const snd_seq_addr_t* const to = snd_seq_port_subscribe_get_dest(subscription);
    sequencer->subscribed = std::to_string(to->client) + ":" + std::to_string(to->port);
    return sequencer->subscribeResult;
}
FROM_LIBRARY snd_seq_unsubscribe_port(snd_seq_t*, snd_seq_port_subscribe_t*) {
    return 0;
}
FROM_LIBRARY snd_seq_event_output(snd_seq_t*, snd_seq_event_t* event) {
    if (sequencer->inside.fetch_add(1) != 0) ++sequencer->collisions;
    std::this_thread::yield();  // another thread's message may fall into the middle
    const int result = sequencer->outputResult;
    if (result >= 0) sequencer->words.push_back(WordOf(*event));
    return result;
}
FROM_LIBRARY snd_seq_drain_output(snd_seq_t*) {
    return --sequencer->inside, 0;
}

namespace {

class SequencerDevices : public testing::Test {
protected:
    SequencerDevices() { sequencer = &fake; }
    ~SequencerDevices() override {
        EXPECT_EQ(fake.clients, 0) << "a client was left open";
        EXPECT_EQ(fake.collisions, 0);
    }
    std::unique_ptr<MidiDevice> Open(const std::string& name) {
        MidiOpening opening = backend.Open(name);
        EXPECT_EQ(opening.code, MMSYSERR_NOERROR) << opening.text;
        return std::move(opening.device);
    }
    static std::uint32_t Send(MidiDevice& device, std::uint32_t message) {
        return device.Send(message, ShortMessageLength(message));
    }
    FakeSequencer fake;
    SequencerBackend backend{"/dev/null"};  // a node that exists
};

TEST_F(SequencerDevices, AreOpenedByNameAndAddressAndPassMessagesOnUnchanged) {
    const NameList all = {"Midi Through:Midi Through Port-0 14:0", "Synth:in 128:0", "Synth:in 128:1"};
    EXPECT_EQ(backend.DeviceNames(), all);
    fake.ports.erase(fake.ports.begin());  // numbers move, the address does not
    const auto device = Open("Synth:in 128:1");
    EXPECT_EQ(fake.subscribed, "128:1");
    SequencerWords sent = {0x643C90, 0x643D90, 0x7F07B3, 0x0005CF};
    for (const std::uint32_t word : sent) EXPECT_EQ(Send(*device, word), MMSYSERR_NOERROR);
    std::vector<std::uint8_t> exclusive(1002, 0x11);
    exclusive.front() = 0xF0;
    exclusive.back() = 0xF7;
    EXPECT_EQ(device->SendLong({exclusive.data(), exclusive.size()}), MMSYSERR_NOERROR);
    sent.push_back(1002);
    EXPECT_EQ(fake.words, sent);
}

TEST_F(SequencerDevices, ReportErrorsAsCodes) {
    EXPECT_EQ(backend.Open("Synth:in 9:9").code, MMSYSERR_BADDEVICEID);  // has gone since it was listed
    fake.subscribeResult = -EBUSY;
    const MidiOpening busy = backend.Open("Synth:in 128:0");
    EXPECT_EQ(busy.code, MMSYSERR_ALLOCATED);
    EXPECT_NE(busy.text.find("connection"), std::string::npos);  // the library's words
    fake.subscribeResult = 0;
    const auto device = Open("Synth:in 128:0");
    fake.outputResult = -EAGAIN;  // the queue is full
    EXPECT_EQ(Send(*device, 0x643C90), MMSYSERR_ERROR);
    fake.inside = fake.outputResult = 0;  // the library does not go on to drain
    EXPECT_EQ(Send(*device, 0x643C90), MMSYSERR_NOERROR);
    EXPECT_EQ(SequencerBackend("/dev/no sequencer").DeviceNames(), NameList());
}

// Neither sender waits: whoever finds nobody sending sends for both, and no message is left behind at the
// end.
TEST_F(SequencerDevices, LetTwoThreadsSendEachInItsOrderAndNeverBothInTheLibrary) {
    std::atomic<std::size_t> refused{0};
    constexpr std::uint32_t messages = 128 * 128;  // each numbered by its data
    const auto device = Open("Synth:in 128:0");
    const auto play = [&](std::uint32_t status) {
        for (std::uint32_t i = 0; i < messages; ++i)
            if (Send(*device, status | i % 128 << 8 | i / 128 << 16) != MMSYSERR_NOERROR) ++refused;
    };
    std::thread other(play, 0xB1);
    play(0xB0);
    other.join();
    EXPECT_EQ(fake.words.size() + refused, 2 * messages);
    int last[2] = {-1, -1};
    for (const std::uint32_t word : fake.words) {
        const int number = static_cast<int>((word >> 8 & 127U) + 128 * (word >> 16));
        ASSERT_GT(number, std::exchange(last[word & 1U], number));
    }
}

}  // namespace
