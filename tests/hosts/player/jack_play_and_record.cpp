// Plays a recording to a plug-in in a host of the JACK server that JACK_DEFAULT_SERVER names, and records
// what comes back: MIDI as HEARD.csv, in the columns of orva-host's.
//
//   jack_play_and_record AUDIO CLIENT HEARD    CLIENT has the ports in, out and midi; awaits them
//   jack_play_and_record                       awaits the server, and no more
//
// Exit code 0: the audio came back as it was played, to the last bit.
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

}  // namespace

int main(int count, char** words) {
    try {
        if (count != 1 && count != 4) throw std::runtime_error("usage: [AUDIO CLIENT HEARD]");
        std::unique_ptr<jack_client_t, decltype(&jack_client_close)> looker(nullptr, jack_client_close);
        Await("the JACK server", [&] { return looker.reset(QuietJackClient("looker")), looker != nullptr; });
        return count == 1 || PlayAndRecord(*looker, words[1], words[2], words[3]) ? 0 : 1;
    } catch (const std::exception& fault) {
        std::cerr << "jack_play_and_record: " << fault.what() << '\n';
        return 1;
    }
}
