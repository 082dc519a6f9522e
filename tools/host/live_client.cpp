#include "tools/host/live_client.h"

#include <jack/jack.h>
#include <jack/midiport.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <functional>
#include <string_view>

#include "devices/midi_backend.h"
#include "tools/host/live_plugin.h"

namespace {

// The port's own part of its name, behind the client's.
bool IsCalled(const std::string& port, std::string_view begin) {
    return std::string_view(port).substr(port.rfind(':') + 1).starts_with(begin);
}

// PipeWire marks neither a sink's monitors nor a virtual source by a flag, but by the port's name.
bool IsMonitor(const std::string& port) {
    return IsCalled(port, "monitor_");
}
bool IsCapture(const std::string& port) {
    return IsCalled(port, "capture_");
}

void AddPorts(jack_client_t* client, const char* type, unsigned long flags, std::vector<std::string>& names) {
    const char** const ports = jack_get_ports(client, nullptr, type, flags);
    if (ports == nullptr) return;
    for (const char** port = ports; *port != nullptr; ++port)
        if (std::find(names.begin(), names.end(), *port) == names.end()) names.emplace_back(*port);
    jack_free(ports);
}

std::string WhyRefused(jack_status_t status, const std::string& server) {
    if ((status & (JackServerFailed | JackServerError)) != 0)
        return server.empty() ? "no JACK server answers" : "no JACK server \"" + server + "\" answers";
    return "the JACK server refuses another client";
}

}  // namespace

// What the library's threads are given.
struct LiveClient::Link {
    jack_client_t* client = nullptr;
    jack_port_t* in = nullptr;
    jack_port_t* out = nullptr;
    jack_port_t* midi = nullptr;
    LivePlugin* plugin = nullptr;
    std::atomic<bool> gone{false};
    Link* nextDead = nullptr;

    // [audio]
    int Process(jack_nframes_t frames) {
        const auto* const heard = static_cast<const float*>(jack_port_get_buffer(in, frames));
        auto* const passed = static_cast<float*>(jack_port_get_buffer(out, frames));
        void* const notes = jack_port_get_buffer(midi, frames);
        jack_midi_clear_buffer(notes);
        plugin->Process(heard, passed, frames, [notes](std::uint32_t frame, std::uint32_t message) {
            const std::size_t length = ShortMessageLength(message & 0xFFU);
            const std::array<jack_midi_data_t, 3> bytes = {static_cast<jack_midi_data_t>(message),
                                                           static_cast<jack_midi_data_t>(message >> 8),
                                                           static_cast<jack_midi_data_t>(message >> 16)};
            // Asked first: the library would complain, which takes its time.
            return jack_midi_max_event_size(notes) >= length &&
                   jack_midi_event_write(notes, frame, bytes.data(), length) == 0;
        });
        return 0;
    }
};

LiveClient::Link* LiveClient::dead = nullptr;

LiveClient::LiveClient(const std::string& name, const std::string& server) : link(std::make_unique<Link>()) {
    jack_set_error_function([](const char*) {});
    jack_set_info_function([](const char*) {});
    jack_status_t status = {};
    link->client =
        server.empty()
            ? jack_client_open(name.c_str(), JackNoStartServer, &status)
            : jack_client_open(name.c_str(), static_cast<jack_options_t>(JackNoStartServer | JackServerName),
                               &status, server.c_str());
    if (link->client == nullptr) throw ServerFault(WhyRefused(status, server));
    jack_on_shutdown(
        link->client, [](void* shared) { static_cast<Link*>(shared)->gone.store(true); }, link.get());
}

LiveClient::~LiveClient() {
    if (!HasGone()) {
        jack_client_close(link->client);
        return;
    }
    // Nobody can say when the library's threads are done with the link, so it is kept: some bytes for each
    // death of a server.
    link->nextDead = dead;
    dead = link.release();
}

std::int32_t LiveClient::Rate() const {
    return static_cast<std::int32_t>(jack_get_sample_rate(link->client));
}

std::int32_t LiveClient::Period() const {
    return static_cast<std::int32_t>(jack_get_buffer_size(link->client));
}

std::string LiveClient::Name() const {
    return jack_get_client_name(link->client);
}

void LiveClient::Activate(LivePlugin& plugin) {
    link->plugin = &plugin;
    jack_client_t* const client = link->client;
    link->in = jack_port_register(client, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    link->out = jack_port_register(client, "out", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    link->midi = jack_port_register(client, "midi", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    if (link->in == nullptr || link->out == nullptr || link->midi == nullptr)
        throw ServerFault("the JACK server has no port left");
    // Both come on a thread of the library's; a change of the rate while a server runs is PipeWire's.
    jack_set_buffer_size_callback(
        client,
        [](jack_nframes_t frames, void* shared) {
            LivePlugin& heard = *static_cast<Link*>(shared)->plugin;
            heard.Change(heard.Rate(), static_cast<std::int32_t>(frames));
            return 0;
        },
        link.get());
    jack_set_sample_rate_callback(
        client,
        [](jack_nframes_t rate, void* shared) {
            LivePlugin& heard = *static_cast<Link*>(shared)->plugin;
            heard.Change(static_cast<std::int32_t>(rate), heard.Period());
            return 0;
        },
        link.get());
    jack_set_process_callback(
        client,
        [](jack_nframes_t frames, void* shared) { return static_cast<Link*>(shared)->Process(frames); },
        link.get());
    if (jack_activate(client) != 0) throw ServerFault("the JACK server does not start the client");
}

bool LiveClient::HasGone() const {
    return link->gone.load();
}

ServerPorts LiveClient::Ports() const {
    ServerPorts ports;
    std::vector<std::string>& audio = ports.sources;
    AddPorts(link->client, JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput | JackPortIsPhysical, audio);
    const auto hardware = static_cast<std::ptrdiff_t>(audio.size());
    AddPorts(link->client, JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, audio);
    std::stable_partition(audio.begin() + hardware, audio.end(), IsCapture);
    const auto monitors = std::stable_partition(audio.begin(), audio.end(), std::not_fn(IsMonitor));
    ports.monitors.assign(monitors, audio.end());
    audio.erase(monitors, audio.end());
    if (link->out != nullptr) std::erase(audio, jack_port_name(link->out));
    AddPorts(link->client, JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, ports.destinations);
    return ports;
}

bool LiveClient::Hear(const std::string& source) {
    const int result = jack_connect(link->client, source.c_str(), jack_port_name(link->in));
    return result == 0 || result == EEXIST;
}

bool LiveClient::PlayTo(const std::string& destination) {
    const int result = jack_connect(link->client, jack_port_name(link->midi), destination.c_str());
    return result == 0 || result == EEXIST;
}
