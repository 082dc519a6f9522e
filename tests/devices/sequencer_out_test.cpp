// The devices of the ALSA sequencer, through RtMidi, on a sequencer of our own: its functions are found in
// this program before those of the system's library.
#include "devices/linux/sequencer_out.h"
#include "tests/devices/open_device.h"

#include <alsa/asoundlib.h>

namespace {

using NameList = std::vector<std::string>;
using SequencerWords = std::vector<std::uint32_t>;

struct FakeSequencer {
    struct Port {
        int client, port;
        const char* name;  // of both
    };
    std::vector<Port> ports = {{14, 0, "Through"}, {128, 0, "Synth"}, {128, 1, "Synth"}};
    int subscribeResult = 0;           // negative: refused
    std::atomic<int> outputResult{0};  // negative: an event is refused
    std::atomic<int> clients{0};       // open
    std::string subscribed;            // "client:port"
    SequencerWords words;              // what was sent
    std::atomic<int> inside{0};        // senders: the library allows one
    std::atomic<int> collisions{0};
};
FakeSequencer* sequencer = nullptr;  // of the test that runs

std::uint32_t WordOf(const snd_seq_event_t& event) {
    snd_midi_event_t* coder = nullptr;
    snd_midi_event_new(4, &coder);
    std::uint8_t bytes[4] = {};
    snd_midi_event_decode(coder, bytes, 4, &event);
    snd_midi_event_free(coder);
    return bytes[0] | bytes[1] * 0x100U | bytes[2] * 0x10000U | bytes[3] * 0x1000000U;
}

}  // namespace

#define FROM_LIBRARY extern "C" __attribute__((visibility("default"))) int
#define WITHOUT_EFFECT(function, ...)                \
    FROM_LIBRARY function(snd_seq_t*, __VA_ARGS__) { \
        return 0;                                    \
    }

WITHOUT_EFFECT(snd_seq_set_client_name, const char*)
WITHOUT_EFFECT(snd_seq_create_simple_port, const char*, unsigned, unsigned)
WITHOUT_EFFECT(snd_seq_delete_port, int)
WITHOUT_EFFECT(snd_seq_unsubscribe_port, snd_seq_port_subscribe_t*)

FROM_LIBRARY snd_seq_open(snd_seq_t** handle, const char*, int, int) {
    *handle = reinterpret_cast<snd_seq_t*>(sequencer);
    return ++sequencer->clients, 0;
}
FROM_LIBRARY snd_seq_close(snd_seq_t*) {
    return --sequencer->clients, 0;
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
        snd_seq_port_info_set_name(info, port.name);
        snd_seq_port_info_set_type(info, SND_SEQ_PORT_TYPE_MIDI_GENERIC);
        snd_seq_port_info_set_capability(info, SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE);
        return 0;
    }
    return -ENOENT;
}
FROM_LIBRARY snd_seq_get_any_client_info(snd_seq_t*, int client, snd_seq_client_info_t* info) {
    for (const FakeSequencer::Port& port : sequencer->ports)
        if (port.client == client) snd_seq_client_info_set_name(info, port.name);
    return 0;
}
FROM_LIBRARY snd_seq_subscribe_port(snd_seq_t*, snd_seq_port_subscribe_t* subscription) {
    const snd_seq_addr_t* const to = snd_seq_port_subscribe_get_dest(subscription);
    sequencer->subscribed = std::to_string(to->client) + ":" + std::to_string(to->port);
    return sequencer->subscribeResult;
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
    FakeSequencer fake;
    SequencerBackend backend{"/dev/null"};  // a node that exists
};

TEST_F(SequencerDevices, AreOpenedByNameAndAddressAndPassMessagesOnUnchanged) {
    const NameList all = {"Through:Through 14:0", "Synth:Synth 128:0", "Synth:Synth 128:1"};
    EXPECT_EQ(backend.DeviceNames(), all);
    fake.ports.erase(fake.ports.begin());  // numbers move, the address does not
    const auto device = OpenDevice(backend, "Synth:Synth 128:1");
    EXPECT_EQ(fake.subscribed, "128:1");
    SequencerWords sent = {0x643C90, 0x643D90, 0x7F07B3, 0x0005CF};
    for (const std::uint32_t word : sent) EXPECT_EQ(Send(*device, word), MMSYSERR_NOERROR);
    const std::uint8_t exclusive[] = {0xF0, 0x11, 0x12, 0xF7};
    EXPECT_EQ(device->SendLong({exclusive, 4}), MMSYSERR_NOERROR);
    sent.push_back(0xF71211F0);
    EXPECT_EQ(fake.words, sent);
}

TEST_F(SequencerDevices, ReportErrorsAsCodes) {
    EXPECT_EQ(backend.Open("Synth:Synth 9:9").code, MMSYSERR_BADDEVICEID);  // has gone since it was listed
    fake.subscribeResult = -EBUSY;
    EXPECT_EQ(backend.Open("Synth:Synth 128:0").code, MMSYSERR_ALLOCATED);
    fake.subscribeResult = 0;
    const auto device = OpenDevice(backend, "Synth:Synth 128:0");
    fake.outputResult = -EAGAIN;  // the queue is full
    EXPECT_EQ(Send(*device, 0x643C90), MMSYSERR_ERROR);
    fake.inside = fake.outputResult = 0;  // the library does not go on to drain
    EXPECT_EQ(Send(*device, 0x643C90), MMSYSERR_NOERROR);
}

// Neither sender waits: whoever finds nobody sending sends for both, and no message is left behind.
TEST_F(SequencerDevices, LetTwoThreadsSendEachInItsOrderAndNeverBothInTheLibrary) {
    std::atomic<std::size_t> refused{0};
    constexpr std::uint32_t messages = 128 * 128;  // each numbered by its data
    const auto device = OpenDevice(backend, "Synth:Synth 128:0");
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
