#pragma once
#include <jack/jack.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/platform/jack_client.h"

// A client with an audio output, "NAME:out", that plays samples once, and an audio input, "NAME:in", that
// keeps what arrives.
//
// Threads: the server's, and the test's own. The samples and the room for what arrives are there before the
// client starts.
class JackPlayer {
public:
    JackPlayer(const std::string& name, std::vector<float> newSamples, std::size_t room)
        : samples(std::move(newSamples)), kept(room), client(QuietJackClient(name.c_str())) {
        if (client == nullptr) throw std::runtime_error("no JACK server for the player");
        out = jack_port_register(client, "out", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
        in = jack_port_register(client, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(
            client, [](jack_nframes_t n, void* self) { return static_cast<JackPlayer*>(self)->Process(n); },
            this);
        jack_on_shutdown(
            client, [](void* self) { static_cast<JackPlayer*>(self)->serverDied = true; }, this);
        jack_activate(client);
    }
    ~JackPlayer() {
        if (!serverDied) jack_client_close(client);
    }
    JackPlayer(const JackPlayer&) = delete;
    JackPlayer& operator=(const JackPlayer&) = delete;

    bool Hear(const std::string& source) {
        return jack_connect(client, source.c_str(), jack_port_name(in)) == 0;
    }
    bool IsHeard() const { return jack_port_connected(out) > 0; }
    void Play() { playing = true; }  // from the next period on
    bool HasPlayed() const { return at.load() == samples.size(); }
    // When its period of the first sample began, on the server's clock of samples; counts once it HasPlayed.
    jack_nframes_t BeganAt() const { return beganAt; }
    // What has arrived, from the first sample that is not zero on.
    std::vector<float> Heard() const {
        const auto end = kept.begin() + static_cast<std::ptrdiff_t>(keptCount.load());
        return {std::find_if(kept.begin(), end, [](float sample) { return sample != 0; }), end};
    }

private:
    int Process(jack_nframes_t frames) {
        auto* const played = static_cast<float*>(jack_port_get_buffer(out, frames));
        const auto* const arrived = static_cast<const float*>(jack_port_get_buffer(in, frames));
        const std::size_t from = at.load();
        const std::size_t count = playing ? std::min<std::size_t>(frames, samples.size() - from) : 0;
        if (from == 0 && count > 0) beganAt = jack_last_frame_time(client);
        std::fill_n(std::copy_n(samples.data() + from, count, played), frames - count, 0.0F);
        at.store(from + count);
        const std::size_t first = keptCount.load();
        const std::size_t added = std::min<std::size_t>(frames, kept.size() - first);
        std::copy_n(arrived, added, kept.data() + first);
        keptCount.store(first + added);
        return 0;
    }

    const std::vector<float> samples;
    std::vector<float> kept;
    jack_client_t* client;
    jack_port_t* out = nullptr;
    jack_port_t* in = nullptr;
    std::atomic<std::size_t> at{0};         // samples played
    std::atomic<std::size_t> keptCount{0};  // samples in kept
    std::atomic<jack_nframes_t> beganAt{0};
    std::atomic<bool> playing{false};
    std::atomic<bool> serverDied{false};
};
