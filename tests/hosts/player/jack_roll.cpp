// Rolls the transport of the JACK server that JACK_DEFAULT_SERVER names from frame 0, and plays a recording
// in time with it.    jack_roll AUDIO PORT
#include <jack/jack.h>
#include <jack/transport.h>

#include "tests/host/test_audio.h"
#include "tests/support/test.h"

namespace {

struct Player {
    Audio music;
    jack_client_t* client = nullptr;
    jack_port_t* out = nullptr;

    static int Play(jack_nframes_t frames, void* self) {
        auto& [music, client, out] = *static_cast<Player*>(self);
        auto* const to = static_cast<float*>(jack_port_get_buffer(out, frames));
        jack_position_t now;
        const bool rolls = jack_transport_query(client, &now) == JackTransportRolling;
        for (jack_nframes_t i = 0; i < frames; ++i)
            to[i] = rolls && now.frame + i < music.size() ? music[now.frame + i] : 0;
        return 0;
    }
};

}  // namespace

int main(int count, char** words) {
    if (count != 3) return 2;
    Player player{ReadAudio(words[1])};
    jack_client_t* const client = player.client = jack_client_open("roll", JackNoStartServer, nullptr);
    if (client == nullptr) return 1;
    player.out = jack_port_register(client, "out", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    jack_set_process_callback(client, Player::Play, &player);
    const bool ready = jack_activate(client) == 0 && jack_connect(client, "roll:out", words[2]) == 0 &&
                       jack_transport_locate(client, 0) == 0;
    const auto reached = [&](std::size_t frame) {
        return AwaitThat([&] { return jack_get_current_transport_frame(client) >= frame; },
                         std::chrono::minutes(2));
    };
    jack_transport_start(client);
    const bool played = ready && reached(player.music.size() + jack_get_sample_rate(client));
    jack_transport_stop(client);
    jack_client_close(client);
    return played ? 0 : 1;
}
