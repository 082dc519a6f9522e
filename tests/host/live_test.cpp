// The real program and the real module between the ports of a real JACK server without a sound card.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "jack_neighbour.h"
#include "run_host.h"
#include "test_audio.h"
#include "tests/platform/jack_server.h"
#include "tests/support/await.h"
#include "tests/support/midi_reader.h"
#include "tools/host/note_list.h"
#include "tools/host/renderer.h"

namespace {

using testing::HasSubstr;

constexpr int musicRate = 44100;                // Hz, of the shipped recordings
constexpr std::size_t musicLength = 4 * 43008;  // samples, 3.9 s: a whole number of the server's periods

// The beginning of a recording, as samples and as what `render` makes of it.
struct Music {
    explicit Music(const std::string& name) {
        samples = ReadAudio(std::string(ORVA_RECORDINGS) + "/" + name);
        samples.resize(musicLength);
        WriteAudio(folder / "music.wav", samples, musicRate, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
        take = Render(PluginModule(ORVA_MODULE), folder / "music.wav", {}, [](double) {});
    }
    // Its notes as words, in the order of sending.
    std::vector<std::uint32_t> Words() const {
        std::vector<std::uint32_t> words;
        for (const TimedEvent& event : take.events)
            if ((event.bytes[0] & 0xE0) == 0x80)
                words.push_back(event.bytes[0] | static_cast<std::uint32_t>(event.bytes[1]) << 8 |
                                static_cast<std::uint32_t>(event.bytes[2]) << 16);
        return words;
    }

    TempFolder folder;
    std::vector<float> samples;
    Take take;
};

// The notes that arrived. Where a sound begins after silence, a program change comes before them.
std::vector<std::uint32_t> NotesAt(const JackReceiver& receiver) {
    std::vector<std::uint32_t> words;
    for (std::size_t i = 0; i < receiver.Count(); ++i)
        if ((receiver.At(i) & 0xE0) == 0x80) words.push_back(receiver.At(i));
    return words;
}

// Whom the host plays between.
struct Neighbours {
    explicit Neighbours(const Music& music) : player("player", music.samples, 20 * musicLength) {}

    bool AwaitHost() const {
        return AwaitThat([this] { return player.IsHeard() && !synth.Senders().empty(); });
    }

    JackReceiver synth{"synth"};
    JackNeighbour player;
};

class Live : public testing::Test {
protected:
    JackServer server{musicRate, JackServer::Clients::areAwaited};
};

}  // namespace

TEST_F(Live, PlaysTheNotesThatRenderFindsAndPassesTheAudioOn) {
    const Music music("piano_chords.ogg");
    const std::vector<std::uint32_t> expected = music.Words();
    ASSERT_GE(expected.size(), 40U);

    Neighbours jack(music);
    HostProcess host(
        {"live", "--connect", "player:out", "--midi-to", "synth:in", "--midi", music.folder / "live.mid"});
    ASSERT_TRUE(jack.AwaitHost()) << host.Err();
    EXPECT_EQ(jack.synth.Senders(), std::vector<std::string>{"orva:midi"});
    ASSERT_TRUE(jack.player.HearAudio("orva:out"));
    jack.player.Play();
    ASSERT_TRUE(AwaitThat([&] { return NotesAt(jack.synth).size() >= expected.size(); }));
    ASSERT_TRUE(AwaitThat([&] { return jack.player.Heard().size() >= musicLength; }));
    EXPECT_EQ(host.End(SIGTERM), 0) << host.Err();
    EXPECT_EQ(host.Err(), "");

    EXPECT_EQ(NotesAt(jack.synth), expected);
    std::vector<float> heard = jack.player.Heard();
    heard.resize(musicLength);
    EXPECT_TRUE(heard == music.samples);  // bit for bit
    EXPECT_THAT(host.Out(), HasSubstr("orva: 44100 Hz, periods of 1024 samples\n"));
    EXPECT_THAT(host.Out(), HasSubstr(NoteName(static_cast<int>(expected[0] >> 8 & 0x7F))));
    const std::string file = ReadAll(music.folder / "live.mid");
    EXPECT_EQ(MidiReader({file.begin(), file.end()}).Notes().size(), PairNotes(music.take).size());
}

// The server dies in the middle of the music, and with it the connections; another one comes.
TEST_F(Live, ComesBackWithTheServerAndConnectsAgain) {
    const Music music("flute_melody.ogg");
    const std::vector<std::uint32_t> expected = music.Words();
    auto jack = std::make_unique<Neighbours>(music);
    HostProcess host({"live", "--name", "ears", "--connect", "player:out", "--midi-to", "synth:in"});
    ASSERT_TRUE(jack->AwaitHost()) << host.Err();
    jack->player.Play();
    ASSERT_TRUE(jack->synth.Await(1));
    server.Die();
    ASSERT_TRUE(host.AwaitErr("orva-host: the JACK server has gone; waiting for it to come back\n"));
    jack.reset();

    server.Start();
    ASSERT_TRUE(host.AwaitErr("orva-host: the JACK server is back\n")) << host.Err();
    jack = std::make_unique<Neighbours>(music);
    ASSERT_TRUE(jack->AwaitHost()) << host.Err();
    jack->player.Play();
    ASSERT_TRUE(AwaitThat([&] { return NotesAt(jack->synth).size() >= expected.size(); }));
    EXPECT_EQ(NotesAt(jack->synth), expected);
    EXPECT_EQ(host.End(SIGINT), 0) << host.Err();
    EXPECT_EQ(host.Err(),
              "orva-host: the JACK server has gone; waiting for it to come back\n"
              "orva-host: the JACK server is back\n");
}

// What sounds when the program ends, ends with it.
TEST_F(Live, LeavesNoNoteSounding) {
    Neighbours jack(Music("piano_chords.ogg"));
    HostProcess host({"live", "--connect", "player:out", "--midi-to", "synth:in"});
    ASSERT_TRUE(jack.AwaitHost()) << host.Err();
    jack.player.Play();
    ASSERT_TRUE(jack.synth.Await(1));
    EXPECT_EQ(host.End(SIGTERM), 0) << host.Err();
    std::map<int, int> sounding;  // by note
    for (const std::uint32_t word : NotesAt(jack.synth))
        sounding[static_cast<int>(word >> 8 & 0x7F)] += (word & 0xF0) == 0x90 ? 1 : -1;
    for (const auto& [note, count] : sounding) EXPECT_EQ(count, 0) << "note " << note;
}

TEST_F(Live, ListsPortsAndHearsTheFirstCapturePort) {
    const JackReceiver receiver("synth");
    const Ended list = RunHost({"live", "--list"});
    EXPECT_EQ(list.code, 0) << list.err;
    EXPECT_EQ(
        list.out,
        "audio to hear (--connect)\n  system:capture_1  (taken where none is named)\n  system:capture_2\n"
        "MIDI to play to (--midi-to)\n  synth:in\n");

    HostProcess host({"live", "--connect"});
    jack_client_t* const looker = QuietJackClient("looker");
    ASSERT_NE(looker, nullptr);
    EXPECT_TRUE(AwaitThat([&] {
        const jack_port_t* const capture = jack_port_by_name(looker, "system:capture_1");
        return capture != nullptr && jack_port_connected_to(capture, "orva:in") != 0;
    })) << host.Err();
    EXPECT_TRUE(host.AwaitOut("hearing system:capture_1\n"));
    jack_client_close(looker);
    EXPECT_EQ(host.End(SIGTERM), 0) << host.Err();
}

// Hardware, virtual inputs, programs; the monitors of what is played last, and never taken unless named.
TEST_F(Live, ListsRealSourcesBeforeMonitors) {
    std::vector<jack_client_t*> clients;
    for (const auto& [name, port] :
         {std::pair{"speakers", "monitor_FL"}, {"player", "out"}, {"mic", "capture_FL"}}) {
        clients.push_back(QuietJackClient(name));
        ASSERT_NE(clients.back(), nullptr);
        jack_port_register(clients.back(), port, JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    }
    const Ended list = RunHost({"live", "--list"});
    for (jack_client_t* const client : clients) jack_client_close(client);
    EXPECT_EQ(
        list.out,
        "audio to hear (--connect)\n  system:capture_1  (taken where none is named)\n  system:capture_2\n"
        "  mic:capture_FL\n  player:out\n  speakers:monitor_FL\n"
        "MIDI to play to (--midi-to)\n");
}

TEST_F(Live, WhatIsNotThereIsToldInOneLine) {
    const std::string noServer = "no JACK server \"orva-test-no-server\" answers";
    const std::string noPort = ": cannot be connected; orva-host live --list lists what can";
    const std::vector<std::pair<std::vector<std::string>, std::string>> faults = {
        {{"live", "--server", "orva-test-no-server"}, noServer},
        {{"live", "--list", "--server", "orva-test-no-server"}, noServer},
        {{"live", "--connect", "a:b"}, "a:b" + noPort},
        {{"live", "--midi-to", "c:d"}, "c:d" + noPort},
    };
    for (const auto& [arguments, text] : faults) {
        const Ended ended = RunHost(arguments);
        EXPECT_EQ(ended.code, 1) << text;
        EXPECT_EQ(ended.err, "orva-host: " + text + "\n");
    }
}

TEST_F(Live, EndsOnEachSignalEvenWithoutAServer) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        HostProcess host({"live", "--connect"});
        ASSERT_TRUE(host.AwaitOut("orva: ")) << host.Err();
        EXPECT_EQ(host.End(signal), 0) << host.Err();
        EXPECT_EQ(host.Err(), "");
    }
    HostProcess host({"live"});
    ASSERT_TRUE(host.AwaitOut("orva: ")) << host.Err();
    server.Die();
    ASSERT_TRUE(host.AwaitErr("the JACK server has gone; waiting for it to come back\n"));
    EXPECT_EQ(host.End(SIGINT), 0) << host.Err();
}

// The same messages to a device as to the host, whose are dated back by each band's delay: so only their
// number is equal, word by word.
TEST(Device, HearsTheNotesThatTheHostHears) {
    const Music music("flute_melody.ogg");
    const JackServer server;
    JackReceiver synth("synth");
    const Ended ended = RunHost({"render", music.folder / "music.wav", "--device", "synth:in"});
    ASSERT_EQ(ended.code, 0) << ended.err;
    std::vector<std::uint32_t> sent = music.Words();
    ASSERT_GE(sent.size(), 8U);
    ASSERT_TRUE(AwaitThat([&] { return NotesAt(synth).size() >= sent.size(); }));
    std::vector<std::uint32_t> received = NotesAt(synth);
    std::sort(sent.begin(), sent.end());
    std::sort(received.begin(), received.end());
    EXPECT_EQ(received, sent);
}
