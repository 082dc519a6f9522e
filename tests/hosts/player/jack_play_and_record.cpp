// Plays a recording to a plug-in in a host of the JACK server that JACK_DEFAULT_SERVER names, and records
// what comes back: MIDI as HEARD.csv, in the columns of orva-host's, and audio as HEARD.wav.
//
//   jack_play_and_record AUDIO CLIENT HEARD    CLIENT has the ports in, out and midi; awaits them
//   jack_play_and_record                       awaits the server, and no more
//
// Exit code 0: the audio came back as it was played, to the last bit; 1: it did not, or something is missing.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>

#include "tests/host/jack_neighbour.h"
#include "tests/host/test_audio.h"
#include "tests/support/await.h"
#include "tools/host/take_output.h"

namespace {

constexpr int patience = 30;  // s, for a server or a host to come up
constexpr int margin = 10;    // s of recording beside the music, for the connections ahead of it
constexpr int tail = 1;       // s after the music

template <typename Condition>
void Await(const std::string& what, int seconds, Condition condition) {
    if (!AwaitThat(condition, std::chrono::seconds(seconds)))
        throw std::runtime_error(what + " does not come");
}

using Client = std::unique_ptr<jack_client_t, decltype(&jack_client_close)>;

Client AwaitServer() {
    Client client(nullptr, jack_client_close);
    Await("the JACK server", patience, [&] {
        client.reset(QuietJackClient("looker"));
        return client != nullptr;
    });
    return client;
}

// The begin and what follows, as it was played? Tells.
bool IsSame(const std::vector<float>& played, const float* heard) {
    const auto [at, ignored] = std::mismatch(played.begin(), played.end(), heard);
    if (at == played.end()) {
        std::printf("audio: all %zu samples came back as they were played\n", played.size());
        return true;
    }
    std::printf("audio: sample %td of %zu did not come back as it was played\n", at - played.begin(),
                played.size());
    return false;
}

bool PlayAndRecord(jack_client_t& looker, const std::string& audio, const std::string& host,
                   const std::string& heard) {
    const int rate = static_cast<int>(jack_get_sample_rate(&looker));
    if (AudioFile(audio, AudioFile::Channel::first).Rate() != rate)
        throw std::runtime_error(audio + " is not at the server's rate");
    const std::vector<float> music = ReadAudio(audio);
    const auto seconds = [&](int count) {
        return static_cast<std::size_t>(count) * static_cast<std::size_t>(rate);
    };
    for (const char* port : {":in", ":out", ":midi"})
        Await(host + port, patience,
              [&] { return jack_port_by_name(&looker, (host + port).c_str()) != nullptr; });

    // Two clients: one that hears itself through another is a circle, which the server breaks by a period's
    // delay.
    JackNeighbour player("player", music, 0), recorder("recorder", {}, music.size() + seconds(margin + tail));
    if (jack_connect(&looker, "player:out", (host + ":in").c_str()) != 0 ||
        !recorder.HearAudio(host + ":out") || !recorder.HearMidi(host + ":midi"))
        throw std::runtime_error(host + " cannot be connected");
    player.Play();
    const int length = static_cast<int>(music.size() / seconds(1)) + 1;
    Await("the music's end", 5 * length + patience, [&] { return player.HasPlayed(); });
    const std::size_t end = recorder.Length() + seconds(tail);
    Await("the recording's end", patience, [&] { return recorder.Length() >= end || recorder.IsFull(); });
    if (recorder.IsFull()) throw std::runtime_error("the recorder is full");
    recorder.Stop();

    const std::size_t begin = recorder.BeginOf(player);
    Take take{rate, 0, {}};
    for (const JackNeighbour::Event& event : recorder.Events())
        take.events.push_back(
            {static_cast<std::int64_t>(event.at) - static_cast<std::int64_t>(begin), event.bytes});
    std::ofstream csv(heard + ".csv");
    csv << EventCsv(take);
    if (!csv.flush()) throw std::runtime_error(heard + ".csv cannot be written");
    const float* const samples = recorder.Samples().data();
    WriteAudio(heard + ".wav", {samples + begin, samples + recorder.Length()}, rate, 1,
               SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    return IsSame(music, samples + begin);
}

}  // namespace

int main(int count, char** words) {
    try {
        if (count != 1 && count != 4) throw std::runtime_error("usage: [AUDIO CLIENT HEARD]");
        const Client looker = AwaitServer();
        return count == 1 || PlayAndRecord(*looker, words[1], words[2], words[3]) ? 0 : 1;
    } catch (const std::exception& fault) {
        std::cerr << "jack_play_and_record: " << fault.what() << '\n';
        return 1;
    }
}
