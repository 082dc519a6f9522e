// Plays a recording to a plug-in in a host of the JACK server that JACK_DEFAULT_SERVER names, and records
// what comes back: MIDI as HEARD.csv, in the columns of orva-host's, and audio as HEARD.wav.
//
//   jack_play_and_record AUDIO CLIENT HEARD    CLIENT has the ports in, out and midi; awaits them
//   jack_play_and_record                       awaits the server, and no more
//
// Exit code 0: the audio came back as it was played, to the last bit; 1: it did not, or something is missing.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <thread>

#include "tests/host/jack_player.h"
#include "tests/hosts/player/jack_recorder.h"
#include "tools/host/audio_file.h"

namespace {

constexpr int patience = 30;  // s, for a server or a host to come up
constexpr int margin = 10;    // s of recording beside the music, for the connections ahead of it
constexpr int tail = 1;       // s after the music

template <typename Condition>
void Await(const std::string& what, int seconds, Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) throw std::runtime_error(what + " does not come");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
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

std::vector<float> AllOf(const std::string& path, int rate) {
    AudioFile file(path, AudioFile::Channel::first);
    if (file.Rate() != rate) throw std::runtime_error(path + " is not at the server's rate");
    std::vector<float> samples;
    std::vector<float> piece(65536);
    while (const std::size_t count = file.Read(piece.data(), piece.size()))
        samples.insert(samples.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    return samples;
}

void WriteAudio(const std::string& path, const float* samples, std::size_t count, int rate) {
    SF_INFO form{};
    form.samplerate = rate;
    form.channels = 1;
    form.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &form);
    const auto length = static_cast<sf_count_t>(count);
    const bool written = file != nullptr && sf_write_float(file, samples, length) == length;
    if (sf_close(file) != 0 || !written) throw std::runtime_error(path + " cannot be written");
}

const char* KindOf(const JackRecorder::Event& event) {
    switch (event.bytes[0] & 0xF0) {
        case 0x80: return "note off";
        case 0x90: return event.bytes[2] != 0 ? "note on" : "note off";
        case 0xC0: return "program";
        default: return "other";
    }
}

void WriteEvents(const std::string& path, const std::vector<JackRecorder::Event>& events, std::size_t begin,
                 int rate) {
    std::ofstream file(path);
    file << "time,sample,status,data1,data2,kind\n" << std::fixed;
    file.precision(6);
    for (const JackRecorder::Event& event : events) {
        const auto sample = static_cast<std::int64_t>(event.at) - static_cast<std::int64_t>(begin);
        file << static_cast<double>(sample) / rate << ',' << sample << ',' << int{event.bytes[0]} << ','
             << int{event.bytes[1]} << ',' << int{event.bytes[2]} << ',' << KindOf(event) << '\n';
    }
    if (!file.flush()) throw std::runtime_error(path + " cannot be written");
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
    const std::vector<float> music = AllOf(audio, rate);
    const auto seconds = [&](int count) {
        return static_cast<std::size_t>(count) * static_cast<std::size_t>(rate);
    };
    for (const char* port : {":in", ":out", ":midi"})
        Await(host + port, patience,
              [&] { return jack_port_by_name(&looker, (host + port).c_str()) != nullptr; });

    // Two clients: one that hears itself through another is a circle, which the server breaks by a period's
    // delay.
    JackPlayer player("player", music, 0);
    JackRecorder recorder("recorder", music.size() + seconds(margin + tail));
    if (jack_connect(&looker, "player:out", (host + ":in").c_str()) != 0 ||
        !recorder.Hear(host + ":out", host + ":midi"))
        throw std::runtime_error(host + " cannot be connected");
    player.Play();
    const int length = static_cast<int>(music.size() / seconds(1)) + 1;
    Await("the music's end", 5 * length + patience, [&] { return player.HasPlayed(); });
    const std::size_t end = recorder.Length() + seconds(tail);
    Await("the recording's end", patience, [&] { return recorder.Length() >= end || recorder.IsFull(); });
    if (recorder.IsFull()) throw std::runtime_error("the recorder is full");
    recorder.Stop();

    const std::size_t begin = recorder.PeriodAt(player.BeganAt());
    WriteEvents(heard + ".csv", recorder.Events(), begin, rate);
    WriteAudio(heard + ".wav", recorder.Samples().data() + begin, recorder.Length() - begin, rate);
    return IsSame(music, recorder.Samples().data() + begin);
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
