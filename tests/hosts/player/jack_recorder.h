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

// A client with an audio and a MIDI input, "NAME:audio" and "NAME:midi", that keeps what arrives on both, on
// one clock: that of the samples it was given. A period that the server was late with is a period like
// another; the server's own clock jumps there.
//
// Threads: the server's writes until Stop, and others read afterwards. All room is there before the client
// starts.
class JackRecorder {
public:
    struct Event {
        std::size_t at;                     // samples since the client began
        std::array<std::uint8_t, 3> bytes;  // of longer ones the first; of shorter ones zeros follow
    };

    JackRecorder(const std::string& name, std::size_t room) : client(QuietJackClient(name.c_str())) {
        if (client == nullptr) throw std::runtime_error("no JACK server for the recorder");
        samples.resize(room);
        events.reserve(roomForEvents);
        periods.reserve(room / jack_get_buffer_size(client) + 1);
        audio = jack_port_register(client, "audio", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        midi = jack_port_register(client, "midi", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(
            client, [](jack_nframes_t n, void* self) { return static_cast<JackRecorder*>(self)->Process(n); },
            this);
        jack_activate(client);
    }
    ~JackRecorder() { Stop(); }
    JackRecorder(const JackRecorder&) = delete;
    JackRecorder& operator=(const JackRecorder&) = delete;

    bool Hear(const std::string& audioFrom, const std::string& midiFrom) {
        return jack_connect(client, audioFrom.c_str(), jack_port_name(audio)) == 0 &&
               jack_connect(client, midiFrom.c_str(), jack_port_name(midi)) == 0;
    }
    std::size_t Length() const { return length; }  // samples so far
    bool IsFull() const { return full; }
    void Stop() {
        if (client != nullptr) jack_client_close(client);
        client = nullptr;
    }

    // --- after Stop ---
    // The sample with which a period began that the server's clock gives this number.
    std::size_t PeriodAt(jack_nframes_t serverTime) const {
        const auto found = std::find_if(periods.begin(), periods.end(), [&](const Period& period) {
            return period.serverTime == serverTime;
        });
        if (found == periods.end()) throw std::runtime_error("the recorder was not given all periods");
        return found->at;
    }
    const std::vector<Event>& Events() const { return events; }
    const std::vector<float>& Samples() const { return samples; }

private:
    struct Period {
        jack_nframes_t serverTime;
        std::size_t at;  // samples since the client began
    };

    int Process(jack_nframes_t frames) {
        void* const messages = jack_port_get_buffer(midi, frames);
        const auto* const arrived = static_cast<const float*>(jack_port_get_buffer(audio, frames));
        const std::size_t at = length;
        const std::uint32_t count = jack_midi_get_event_count(messages);
        if (at + frames > samples.size() || events.size() + count > roomForEvents ||
            periods.size() == periods.capacity()) {
            full = true;
            return 0;
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            jack_midi_event_t message;
            jack_midi_event_get(&message, messages, i);
            Event event{at + message.time, {}};
            std::copy_n(message.buffer, std::min(message.size, event.bytes.size()), event.bytes.begin());
            events.push_back(event);
        }
        periods.push_back({jack_last_frame_time(client), at});
        std::copy_n(arrived, frames, samples.data() + at);
        length = at + frames;
        return 0;
    }

    static constexpr std::size_t roomForEvents = 20000;
    jack_client_t* client;  // null once it has stopped
    jack_port_t* audio = nullptr;
    jack_port_t* midi = nullptr;
    std::vector<float> samples;
    std::vector<Event> events;
    std::vector<Period> periods;
    std::atomic<std::size_t> length{0};  // of samples
    std::atomic<bool> full{false};       // something had no room, and all that came later
};
