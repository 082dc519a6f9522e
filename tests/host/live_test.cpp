// The real program and the real module between the ports of a real JACK server without a sound card.
#include "run_host.h"
#include "test_audio.h"
#include "tests/support/jack_server.h"
#include "tests/support/midi_reader.h"
#include "tools/host/renderer.h"

namespace {

using Notes = std::vector<std::uint32_t>;

constexpr int musicRate = 44100;                // Hz, of the shipped recordings
constexpr std::size_t musicLength = 4 * 43008;  // samples, 3.9 s: a whole number of the server's periods

// The beginning of a recording, and what `render` makes of it.
struct Music {
    explicit Music(const char* name) : samples(ReadAudio(std::string(ORVA_RECORDINGS) + "/" + name)) {
        samples.resize(musicLength);
        WriteAudio(path, samples, musicRate, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
        for (const auto& [at, bytes, level] :
             Render(PluginModule(ORVA_MODULE), path, {}, [](double) {}).events)
            if ((bytes[0] & 0xE0) == 0x80)
                notes.push_back(bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8 |
                                static_cast<std::uint32_t>(bytes[2]) << 16);
    }
    TempFolder folder;
    const std::string path = folder / "music.wav";
    Audio samples;
    Notes notes;  // in the order of sending
};

// Plays the music to the host, and keeps the notes that come back; "synth:in" is its MIDI input.
struct Neighbour : JackReceiver {
    explicit Neighbour(const Audio& music) : JackReceiver("synth", music, 20 * musicLength) {}
    bool AwaitHost() const {
        return AwaitThat([this] { return IsHeard() && !Senders().empty(); });
    }
    // Where a sound begins after silence, a program change comes before the notes.
    Notes Heard() const {
        Notes words;
        for (std::size_t i = 0; i < Count(); ++i)
            if ((At(i) & 0xE0) == 0x80) words.push_back(At(i));
        return words;
    }
    bool AwaitNotes(std::size_t wanted) const {
        return AwaitThat([&] { return Heard().size() >= wanted; });
    }
    bool AllHaveEnded() const {
        std::map<std::uint32_t, int> sounding;  // by note
        for (const std::uint32_t word : Heard()) sounding[word >> 8 & 0x7F] += (word & 0xF0) == 0x90 ? 1 : -1;
        return std::all_of(sounding.begin(), sounding.end(), [](auto& note) { return note.second == 0; });
    }
    bool GetsBack(const Audio& music) const {  // bit for bit
        return AwaitThat([&] {
            const auto end = Samples().begin() + static_cast<std::ptrdiff_t>(Length());
            return std::search(Samples().begin(), end, music.begin(), music.end()) != end;
        });
    }
};

struct Live : testing::Test {
    JackServer server{musicRate};
};

TEST_F(Live, PlaysTheNotesThatRenderFindsPassesTheAudioOnAndLeavesNoNoteSounding) {
    const Music music("piano_chords.ogg");
    ASSERT_GE(music.notes.size(), 40U);
    for (const bool whole : {true, false}) {
        Neighbour synth(music.samples);
        HostProcess host({"live", "--ear", "classic", "--connect", "synth:out", "--midi-to", "synth:in",
                          "--midi", music.folder / "live.mid"});
        ASSERT_TRUE(synth.AwaitHost()) << host.Err();
        ASSERT_TRUE(synth.Hear("orva:out"));
        synth.Play();
        ASSERT_TRUE(synth.AwaitNotes(whole ? music.notes.size() : 1));
        EXPECT_TRUE(!whole || synth.GetsBack(music.samples));
        EXPECT_EQ(host.End(SIGTERM), 0) << host.Err();
        EXPECT_EQ(host.Err(), "");
        EXPECT_TRUE(synth.AllHaveEnded());
        if (!whole) break;

        EXPECT_EQ(synth.Heard(), music.notes);
        EXPECT_EQ(2 * MidiReader(ReadAll(music.folder / "live.mid")).Notes().size(), music.notes.size());
    }
}

// A device gets the same messages as the host, whose dates have each band's delay subtracted: so only their
// number is equal, word by word. Held notes would sound on at the synthesiser for ever.
TEST_F(Live, RenderPlaysTheNotesToADeviceAndASignalEndsThem) {
    const Music music("piano_chords.ogg");
    for (const int signal : {0, SIGTERM}) {
        Neighbour synth({});
        HostProcess host({"render", "--ear", "classic", music.path, "--device", "synth:in"});
        ASSERT_TRUE(synth.AwaitNotes(signal == 0 ? music.notes.size() : 5)) << host.Err();
        EXPECT_EQ(signal == 0 ? host.Wait() : host.End(signal), signal == 0 ? 0 : -1)
            << "by the signal itself";
        EXPECT_TRUE(AwaitThat([&] { return synth.AllHaveEnded(); })) << signal;
        const Notes heard = synth.Heard(), &sent = music.notes;
        EXPECT_EQ(heard.size() < sent.size(), signal != 0);
        EXPECT_EQ(std::is_permutation(heard.begin(), heard.end(), sent.begin(), sent.end()), signal == 0);
    }
}

// The server dies in the middle of the music, and with it the connections; another one comes.
TEST_F(Live, ComesBackWithTheServerAndConnectsAgain) {
    const Music music("flute_melody.ogg");
    std::optional<Neighbour> synth(std::in_place, music.samples);
    HostProcess host(
        {"live", "--ear", "classic", "--name", "ears", "--connect", "synth:out", "--midi-to", "synth:in"});
    ASSERT_TRUE(synth->AwaitHost()) << host.Err();
    synth->Play();
    ASSERT_TRUE(synth->AwaitNotes(1));
    const std::string gone = "orva-host: the JACK server has gone; waiting for it to come back\n",
                      back = "orva-host: the JACK server is back\n";
    const auto await = [&](const std::string& text) { return AwaitThat([&] { return host.Err() == text; }); };
    server.Die();
    ASSERT_TRUE(await(gone)) << host.Err();
    synth.reset();
    server.Start();
    ASSERT_TRUE(await(gone + back)) << host.Err();
    synth.emplace(music.samples);
    ASSERT_TRUE(synth->AwaitHost()) << host.Err();
    synth->Play();
    ASSERT_TRUE(synth->AwaitNotes(music.notes.size()));
    EXPECT_EQ(synth->Heard(), music.notes);
    server.Die();  // and it ends without one
    ASSERT_TRUE(await(gone + back + gone));
    EXPECT_EQ(host.End(SIGINT), 0) << host.Err();
}

}  // namespace
