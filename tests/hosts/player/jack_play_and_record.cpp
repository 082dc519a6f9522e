// Plays a recording to a plug-in in a host of the JACK server that JACK_DEFAULT_SERVER names, and records
// what comes back: MIDI as HEARD.csv, in the columns of orva-host's.
//
//   jack_play_and_record AUDIO CLIENT HEARD    CLIENT has the ports in, out and midi; awaits them
//   jack_play_and_record AUDIO PORT            in time with the transport, which rolls from frame 0
//   jack_play_and_record                       awaits the server, and no more
//
// Exit code 0: what was to come back is the audio as it was played, to the last bit.
#include <jack/transport.h>

#include "tests/host/test_audio.h"
#include "tests/support/jack_server.h"
#include "tools/host/take_output.h"

using namespace std::chrono_literals;

namespace {

constexpr int margin = 10;  // s of recording beside the music, for the connections ahead of it

template <typename Condition>
void Await(const std::string& what, Condition condition, std::chrono::seconds limit = 30s) {
    if (!AwaitThat(condition, limit)) throw std::runtime_error(what + " does not come");
}

bool PlayAndRecord(jack_client_t& looker, const std::string& audio, const std::string& host,
                   const std::string& heard) {
    const int rate = static_cast<int>(jack_get_sample_rate(&looker));
    if (AudioFile(audio, AudioFile::Channel::first).Rate() != rate)
        throw std::runtime_error(audio + " is not at the server's rate");
    const Audio music = ReadAudio(audio);
    for (const char* port : {":in", ":out", ":midi"})
        Await(host + port, [&] { return jack_port_by_name(&looker, (host + port).c_str()) != nullptr; });

    JackReceiver player("player", music, music.size() + Samples(rate, margin));
    if (jack_connect(&looker, "player:out", (host + ":in").c_str()) != 0 || !player.Hear(host + ":out") ||
        !player.Hear(host + ":midi", true))
        throw std::runtime_error(host + " cannot be connected");
    player.Play();
    const std::vector<float>& samples = player.Samples();
    Await(
        "the recording's end", [&] { return player.Length() == samples.size(); }, 5min);
    player.Stop();

    // The music begins where its first sample that is not zero comes back.
    const auto ahead = [](const Audio& sound) {
        return std::find_if(sound.begin(), sound.end(), [](float sample) { return sample != 0; }) -
               sound.begin();
    };
    const std::ptrdiff_t begin = ahead(samples) - ahead(music);
    if (begin < 0 || samples.size() - static_cast<std::size_t>(begin) < music.size())
        throw std::runtime_error("the music does not come back whole");
    Take take{rate, 0, {}};
    for (std::size_t i = 0; i < player.Count(); ++i)
        take.events.push_back(
            {static_cast<std::int64_t>(player.EventAt(i).at) - begin, player.EventAt(i).bytes});
    std::ofstream csv(heard + ".csv");
    csv << EventCsv(take);
    if (!csv.flush()) throw std::runtime_error(heard + ".csv cannot be written");
    const auto first = samples.begin() + begin;
    const auto [at, ignored] = std::mismatch(music.begin(), music.end(), first);
    std::printf("audio: %td of %zu samples came back as they were played\n", at - music.begin(),
                music.size());
    return at == music.end();
}

void PlayRolling(jack_client_t& looker, const std::string& audio, const std::string& port) {
    struct Player {
        const Audio music;
        jack_client_t& client;
        jack_port_t* out;
    } player{ReadAudio(audio), looker,
             jack_port_register(&looker, "out", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0)};
    const auto play = [](jack_nframes_t frames, void* self) {
        const auto& [music, client, out] = *static_cast<Player*>(self);
        auto* const to = static_cast<float*>(jack_port_get_buffer(out, frames));
        jack_position_t now;
        const bool rolls = jack_transport_query(&client, &now) == JackTransportRolling;
        for (jack_nframes_t i = 0; i < frames; ++i)
            to[i] = rolls && now.frame + i < music.size() ? music[now.frame + i] : 0;
        return 0;
    };
    jack_set_process_callback(&looker, play, &player);
    jack_activate(&looker);
    const std::unique_ptr<jack_client_t, decltype(&jack_deactivate)> active(&looker, jack_deactivate);
    Await(port, [&] { return jack_connect(&looker, "looker:out", port.c_str()) == 0; });
    jack_transport_locate(&looker, 0);
    jack_transport_start(&looker);
    const std::size_t end = player.music.size() + jack_get_sample_rate(&looker);
    Await(
        "the recording's end", [&] { return jack_get_current_transport_frame(&looker) >= end; }, 2min);
    jack_transport_stop(&looker);
}

}  // namespace

int main(int count, char** words) {
    try {
        if (count == 2 || count > 4) throw std::runtime_error("usage: [AUDIO CLIENT HEARD | AUDIO PORT]");
        std::unique_ptr<jack_client_t, decltype(&jack_client_close)> looker(nullptr, jack_client_close);
        Await("the JACK server", [&] { return looker.reset(QuietJackClient("looker")), looker != nullptr; });
        if (count == 3) PlayRolling(*looker, words[1], words[2]);
        return count < 4 || PlayAndRecord(*looker, words[1], words[2], words[3]) ? 0 : 1;
    } catch (const std::exception& fault) {
        std::cerr << "jack_play_and_record: " << fault.what() << '\n';
        return 1;
    }
}
