#pragma once
#include <jack/jack.h>
#include <jack/midiport.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/platform/jack_client.h"

// A client with an audio output, "NAME:out", that plays samples once, and an audio and a MIDI input,
// "NAME:in" and "NAME:midi", that keep what arrives on one clock: that of the samples it was given. A period
// that the server was late with is a period like another; the server's own clock jumps there.
//
// Threads: the server's until Stop, and the test's own. The samples and all room are there before the client
// starts.
class JackNeighbour {
public:
    struct Event {
        std::size_t at;                     // samples since the client began
        std::array<std::uint8_t, 3> bytes;  // of longer ones the first; of shorter ones zeros follow
    };

    JackNeighbour(const std::string& name, std::vector<float> samples, std::size_t room)
        : played(std::move(samples)), kept(room), client(QuietJackClient(name.c_str())) {
        if (client == nullptr) throw std::runtime_error("no JACK server for " + name);
        events.reserve(roomForEvents);
        periods.reserve(room / jack_get_buffer_size(client) + 1);
        out = jack_port_register(client, "out", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
        in = jack_port_register(client, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        midi = jack_port_register(client, "midi", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        const auto process = [](jack_nframes_t frames, void* self) {
            static_cast<JackNeighbour*>(self)->Play(frames);
            static_cast<JackNeighbour*>(self)->Keep(frames);
            return 0;
        };
        jack_set_process_callback(client, process, this);
        jack_on_shutdown(
            client, [](void* self) { static_cast<JackNeighbour*>(self)->serverDied = true; }, this);
        jack_activate(client);
    }
    ~JackNeighbour() { Stop(); }
    JackNeighbour(const JackNeighbour&) = delete;
    JackNeighbour& operator=(const JackNeighbour&) = delete;

    bool HearAudio(const std::string& from) {
        return jack_connect(client, from.c_str(), jack_port_name(in)) == 0;
    }
    bool HearMidi(const std::string& from) {
        return jack_connect(client, from.c_str(), jack_port_name(midi)) == 0;
    }
    bool IsHeard() const { return jack_port_connected(out) > 0; }
    void Play() { playing = true; }  // from the next period on
    bool HasPlayed() const { return at.load() == played.size(); }
    std::size_t Length() const { return length; }  // samples kept so far
    // Those from the first that is not zero on.
    std::vector<float> Heard() const {
        const auto end = kept.begin() + static_cast<std::ptrdiff_t>(length.load());
        return {std::find_if(kept.begin(), end, [](float sample) { return sample != 0; }), end};
    }
    bool IsFull() const { return full; }  // something had no room, and all that came later
    void Stop() {
        if (client != nullptr && !serverDied) jack_client_close(client);
        client = nullptr;
    }

    // --- after Stop ---
    // What was kept from the period on in which another one's first sample was played.
    std::size_t BeginOf(const JackNeighbour& player) const {
        const auto found = std::find_if(periods.begin(), periods.end(), [&](const Period& period) {
            return period.serverTime == player.beganAt;
        });
        if (found == periods.end()) throw std::runtime_error("the recorder was not given all periods");
        return found->at;
    }
    const std::vector<Event>& Events() const { return events; }
    const std::vector<float>& Samples() const { return kept; }

private:
    struct Period {
        jack_nframes_t serverTime;
        std::size_t at;  // samples since the client began
    };

    void Play(jack_nframes_t frames) {
        auto* const to = static_cast<float*>(jack_port_get_buffer(out, frames));
        const std::size_t from = at.load();
        const std::size_t count = playing ? std::min<std::size_t>(frames, played.size() - from) : 0;
        if (from == 0 && count > 0) beganAt = jack_last_frame_time(client);
        std::fill_n(std::copy_n(played.data() + from, count, to), frames - count, 0.0F);
        at.store(from + count);
    }
    void Keep(jack_nframes_t frames) {
        void* const messages = jack_port_get_buffer(midi, frames);
        const std::size_t start = length;
        const std::uint32_t count = jack_midi_get_event_count(messages);
        if (start + frames > kept.size() || events.size() + count > roomForEvents ||
            periods.size() == periods.capacity()) {
            full = true;
            return;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            jack_midi_event_t message;
            jack_midi_event_get(&message, messages, i);
            Event event{start + message.time, {}};
            std::copy_n(message.buffer, std::min(message.size, event.bytes.size()), event.bytes.begin());
            events.push_back(event);
        }
        periods.push_back({jack_last_frame_time(client), start});
        std::copy_n(static_cast<const float*>(jack_port_get_buffer(in, frames)), frames, kept.data() + start);
        length = start + frames;
    }

    static constexpr std::size_t roomForEvents = 20000;
    const std::vector<float> played;
    std::vector<float> kept;
    std::vector<Event> events;
    std::vector<Period> periods;
    jack_client_t* client;  // null once it has stopped
    jack_port_t* out = nullptr;
    jack_port_t* in = nullptr;
    jack_port_t* midi = nullptr;
    std::atomic<std::size_t> at{0};          // samples played
    std::atomic<std::size_t> length{0};      // of what is kept
    std::atomic<jack_nframes_t> beganAt{0};  // on the server's clock of samples; counts once it HasPlayed
    std::atomic<bool> playing{false};
    std::atomic<bool> full{false};
    std::atomic<bool> serverDied{false};
};
