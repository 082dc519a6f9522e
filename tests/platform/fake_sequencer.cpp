#include "tests/platform/fake_sequencer.h"

#include <alsa/asoundlib.h>

#include <thread>

FakeSequencer& Sequencer() {
    static FakeSequencer sequencer;
    return sequencer;
}

namespace {

// The port after that number, of this client; null for none. A number is a byte: 255 stands before the first.
const FakeSequencer::Port* NextPort(int client, int port) {
    const int after = port == 255 ? -1 : port;
    for (const FakeSequencer::Port& candidate : Sequencer().ports)
        if (candidate.client == client && candidate.port > after) return &candidate;
    return nullptr;
}

std::uint32_t WordOf(const snd_seq_event_t& event) {
    const auto word = [](unsigned status, unsigned data1, unsigned data2) {
        return status | data1 << 8 | data2 << 16;
    };
    const auto& note = event.data.note;
    const auto& control = event.data.control;
    switch (event.type) {
        case SND_SEQ_EVENT_NOTEON: return word(0x90U | note.channel, note.note, note.velocity);
        case SND_SEQ_EVENT_NOTEOFF: return word(0x80U | note.channel, note.note, note.velocity);
        case SND_SEQ_EVENT_CONTROLLER:
            return word(0xB0U | control.channel, control.param, static_cast<unsigned>(control.value));
        case SND_SEQ_EVENT_PGMCHANGE:
            return word(0xC0U | control.channel, static_cast<unsigned>(control.value), 0);
        case SND_SEQ_EVENT_SYSEX: return event.data.ext.len;
        default: return 0;
    }
}

}  // namespace

#define FROM_LIBRARY extern "C" __attribute__((visibility("default")))

FROM_LIBRARY int snd_seq_open(snd_seq_t** handle, const char*, int, int) {
    static int dummy;
    *handle = reinterpret_cast<snd_seq_t*>(&dummy);
    if (Sequencer().openResult == 0) ++Sequencer().opened;
    return Sequencer().openResult;
}
FROM_LIBRARY int snd_seq_close(snd_seq_t*) {
    ++Sequencer().closed;
    return 0;
}
FROM_LIBRARY int snd_seq_set_client_name(snd_seq_t*, const char* name) {
    Sequencer().clientNames += std::string(name) + ";";
    return 0;
}
FROM_LIBRARY int snd_seq_client_id(snd_seq_t*) {
    return 200;
}
FROM_LIBRARY int snd_seq_query_next_client(snd_seq_t*, snd_seq_client_info_t* info) {
    const int last = snd_seq_client_info_get_client(info);
    for (const FakeSequencer::Port& port : Sequencer().ports)
        if (port.client > last) {
            snd_seq_client_info_set_client(info, port.client);
            return 0;
        }
    return -ENOENT;
}
FROM_LIBRARY int snd_seq_query_next_port(snd_seq_t*, snd_seq_port_info_t* info) {
    const FakeSequencer::Port* const next =
        NextPort(snd_seq_port_info_get_client(info), snd_seq_port_info_get_port(info));
    if (next == nullptr) return -ENOENT;
    snd_seq_port_info_set_port(info, next->port);
    snd_seq_port_info_set_name(info, next->portName.c_str());
    snd_seq_port_info_set_type(info, SND_SEQ_PORT_TYPE_MIDI_GENERIC);
    snd_seq_port_info_set_capability(info, SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE);
    return 0;
}
FROM_LIBRARY int snd_seq_get_any_client_info(snd_seq_t*, int client, snd_seq_client_info_t* info) {
    for (const FakeSequencer::Port& port : Sequencer().ports)
        if (port.client == client) snd_seq_client_info_set_name(info, port.clientName.c_str());
    return 0;
}
FROM_LIBRARY int snd_seq_create_simple_port(snd_seq_t*, const char*, unsigned, unsigned) {
    return 0;
}
FROM_LIBRARY int snd_seq_delete_port(snd_seq_t*, int) {
    return 0;
}
FROM_LIBRARY int snd_seq_subscribe_port(snd_seq_t*, snd_seq_port_subscribe_t* subscription) {
    const snd_seq_addr_t* const to = snd_seq_port_subscribe_get_dest(subscription);
    Sequencer().subscribed = std::to_string(to->client) + ":" + std::to_string(to->port);
    return Sequencer().subscribeResult;
}
FROM_LIBRARY int snd_seq_unsubscribe_port(snd_seq_t*, snd_seq_port_subscribe_t*) {
    return 0;
}
FROM_LIBRARY int snd_seq_event_output(snd_seq_t*, snd_seq_event_t* event) {
    FakeSequencer& sequencer = Sequencer();
    if (sequencer.together.fetch_add(1) != 0) ++sequencer.collisions;
    std::this_thread::yield();  // another thread's message may fall into the middle
    const int result = sequencer.outputResult;
    if (result >= 0) sequencer.words.push_back(WordOf(*event));
    return result;
}
FROM_LIBRARY int snd_seq_drain_output(snd_seq_t*) {
    --Sequencer().together;
    return 0;
}
