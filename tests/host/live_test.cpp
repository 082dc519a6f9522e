// The real program and the real module between the ports of a real JACK server without a sound card.
#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "run_host.h"
#include "test_audio.h"
#include "tests/support/jack_server.h"
#include "tests/support/midi_reader.h"
#include "tools/host/note_list.h"
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
        take = Render(PluginModule(ORVA_MODULE), path, {}, [](double) {});
        for (const TimedEvent& event : take.events)
            if ((event.bytes[0] & 0xE0) == 0x80)
                notes.push_back(event.bytes[0] | static_cast<std::uint32_t>(event.bytes[1]) << 8 |
                                static_cast<std::uint32_t>(event.bytes[2]) << 16);
    }
    TempFolder folder;
    const std::string path = folder / "music.wav";
    Audio samples;
    Take take;
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
    // What came back, from the first sample that is not zero on.
    Audio Audible() const {
        const auto end = Samples().begin() + static_cast<std::ptrdiff_t>(Length());
        return {std::find_if(Samples().begin(), end, [](float sample) { return sample != 0; }), end};
    }
};

class Live : public testing::Test {
protected:
    JackServer server{musicRate, JackServer::Clients::areAwaited};
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
        ASSERT_TRUE(!whole || AwaitThat([&] { return synth.Audible().size() >= musicLength; }));
        EXPECT_EQ(host.End(SIGTERM), 0) << host.Err();
        EXPECT_EQ(host.Err(), "");
        EXPECT_TRUE(synth.AllHaveEnded());
        if (!whole) break;

        EXPECT_EQ(synth.Heard(), music.notes);
        Audio heard = synth.Audible();
        heard.resize(musicLength);
        EXPECT_TRUE(heard == music.samples);  // bit for bit
        EXPECT_TRUE(Contains(host.Out(), "orva: 44100 Hz, periods of 1024 samples\n"));
        const std::string file = ReadAll(music.folder / "live.mid");
        EXPECT_EQ(MidiReader({file.begin(), file.end()}).Notes().size(), PairNotes(music.take).size());
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
        Notes received = synth.Heard(), sent = music.notes;
        EXPECT_EQ(received.size() < sent.size(), signal != 0);
        std::sort(sent.begin(), sent.end());
        std::sort(received.begin(), received.end());
        EXPECT_EQ(received == sent, signal == 0);
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
    server.Die();
    ASSERT_TRUE(host.AwaitErr(gone));
    synth.reset();
    server.Start();
    ASSERT_TRUE(host.AwaitErr(back)) << host.Err();
    synth.emplace(music.samples);
    ASSERT_TRUE(synth->AwaitHost()) << host.Err();
    synth->Play();
    ASSERT_TRUE(synth->AwaitNotes(music.notes.size()));
    EXPECT_EQ(synth->Heard(), music.notes);
    server.Die();  // and it ends without one
    ASSERT_TRUE(host.AwaitErr(gone + back + gone));
    EXPECT_EQ(host.End(SIGINT), 0) << host.Err();
}

TEST_F(Live, ListsPortsReportsWhatIsMissingAndEndsOnASignal) {
    const JackReceiver synth("synth");
    // Hardware, virtual inputs, programs; the monitors of what is played last, and never taken unless named.
    jack_client_t* const speakers = QuietJackClient("speakers");
    jack_client_t* const microphone = QuietJackClient("mic");
    jack_port_register(speakers, "monitor_FL", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    jack_port_register(microphone, "capture_FL", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    const Ended list = RunHost({"live", "--list"});
    EXPECT_EQ(list.code, 0) << list.err;
    EXPECT_EQ(list.out,
              "audio to hear (--connect)\n  system:capture_1  (taken where none is named)\n"
              "  system:capture_2\n  mic:capture_FL\n  synth:out\n  speakers:monitor_FL\n"
              "MIDI to play to (--midi-to)\n  synth:in\n");
    const std::string noPort = ": cannot be connected; orva-host live --list lists what can";
    const std::pair<Arguments, std::string> faults[] = {
        {{"live", "--server", "orva-none"}, "no JACK server \"orva-none\" answers"},
        {{"live", "--list", "--server", "orva-none"}, "no JACK server \"orva-none\" answers"},
        {{"live", "--connect", "a:b"}, "a:b" + noPort},
        {{"live", "--midi-to", "c:d"}, "c:d" + noPort},
    };
    for (const auto& [arguments, text] : faults) {
        const Ended ended = RunHost(arguments);
        EXPECT_EQ(ended.code, 1) << text;
        EXPECT_EQ(ended.err, "orva-host: " + text + "\n");
    }
    for (const int signal : {SIGINT, SIGHUP}) {
        HostProcess host({"live", "--connect"});  // the first capture port
        EXPECT_TRUE(host.AwaitOut("hearing system:capture_1\n"));
        const jack_port_t* const capture = jack_port_by_name(speakers, "system:capture_1");
        EXPECT_TRUE(AwaitThat([&] { return jack_port_connected_to(capture, "orva:in") != 0; }));
        EXPECT_EQ(host.End(signal), 0) << host.Err();
        EXPECT_EQ(host.Err(), "");
    }
    for (jack_client_t* const client : {speakers, microphone}) jack_client_close(client);
}

}  // namespace
