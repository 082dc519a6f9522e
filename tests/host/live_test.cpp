// The real program and the real module between the ports of a real JACK server without a sound card.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <map>

#include "await.h"
#include "beginning.h"
#include "jack_player.h"
#include "midi_file_reader.h"
#include "temp_folder.h"
#include "tests/platform/jack_server.h"
#include "tools/host/note_list.h"
#include "tools/host/renderer.h"

namespace {

using testing::HasSubstr;

constexpr int rate = 44100;                // Hz, of the shipped recordings
constexpr std::size_t period = 1024;       // samples, of the test's server
constexpr std::size_t length = 4 * 43008;  // samples, 3.9 s: a whole number of periods

// orva-host live in the background, without a display.
class LiveHost {
public:
    explicit LiveHost(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {ORVA_HOST_PROGRAM, "live"});
        std::vector<char*> words;
        for (std::string& argument : arguments) words.push_back(argument.data());
        words.push_back(nullptr);
        unsetenv("DISPLAY");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        constexpr int flags = O_WRONLY | O_CREAT | O_APPEND;
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (folder / "out").c_str(), flags, 0600);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (folder / "err").c_str(), flags, 0600);
        if (posix_spawn(&process, words[0], &actions, nullptr, words.data(), environ) != 0) process = -1;
        posix_spawn_file_actions_destroy(&actions);
    }
    ~LiveHost() { End(SIGKILL); }
    LiveHost(const LiveHost&) = delete;
    LiveHost& operator=(const LiveHost&) = delete;

    // The exit code; -1 where it did not end by itself.
    int Wait() {
        int status = 0;
        if (process <= 0 || waitpid(process, &status, 0) != process) return -1;
        process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int End(int signal) {
        if (process > 0) kill(process, signal);
        return Wait();
    }
    std::string Out() const { return ReadAll(folder / "out"); }
    std::string Err() const { return ReadAll(folder / "err"); }
    bool AwaitErr(const std::string& text) const {
        return AwaitThat([&] { return Err().find(text) != std::string::npos; });
    }

private:
    TempFolder folder;
    pid_t process = -1;
};

// The beginning of a recording, as samples and as what `render` makes of it.
struct Music {
    explicit Music(const std::string& name) {
        const std::string path = folder / "music.wav";
        WriteBeginning(std::string(ORVA_RECORDINGS) + "/" + name, path, static_cast<double>(length) / rate);
        AudioFile audio(path, AudioFile::Channel::first);
        samples.resize(length);
        EXPECT_EQ(audio.Read(samples.data(), length), length);
        const PluginModule module(ORVA_MODULE);
        RenderSettings settings;
        settings.blockSize = period;
        take = Render(module, path, settings, [](double) {});
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
std::vector<std::uint32_t> Received(const JackReceiver& receiver) {
    std::vector<std::uint32_t> words;
    for (std::size_t i = 0; i < receiver.Count(); ++i)
        if ((receiver.At(i) & 0xE0) == 0x80) words.push_back(receiver.At(i));
    return words;
}

class Live : public testing::Test {
protected:
    JackServer server{rate, JackServer::Clients::areAwaited};
};

}  // namespace

TEST_F(Live, PlaysTheNotesThatRenderFindsAndPassesTheAudioOn) {
    const Music music("piano_chords.ogg");
    const std::vector<std::uint32_t> expected = music.Words();
    ASSERT_GE(expected.size(), 40U);

    JackReceiver receiver("synth");
    JackPlayer player("player", music.samples, 20 * length);
    LiveHost host({"--connect", "player:out", "--midi-to", "synth:in", "--midi", music.folder / "live.mid"});
    ASSERT_TRUE(AwaitThat([&] { return player.IsHeard() && !receiver.Senders().empty(); })) << host.Err();
    EXPECT_EQ(receiver.Senders(), std::vector<std::string>{"orva:midi"});
    ASSERT_TRUE(player.Hear("orva:out"));
    player.Play();
    ASSERT_TRUE(AwaitThat([&] { return Received(receiver).size() >= expected.size(); }));
    ASSERT_TRUE(AwaitThat([&] { return player.Heard().size() >= length; }));
    EXPECT_EQ(host.End(SIGTERM), 0) << host.Err();
    EXPECT_EQ(host.Err(), "");

    EXPECT_EQ(Received(receiver), expected);
    std::vector<float> heard = player.Heard();  // bit for bit; then silence
    heard.resize(length);
    EXPECT_TRUE(std::equal(heard.begin(), heard.end(), music.samples.begin()));
    EXPECT_THAT(host.Out(), HasSubstr("orva: 44100 Hz, periods of 1024 samples\n"));
    EXPECT_THAT(host.Out(), HasSubstr(NoteName(static_cast<int>(expected[0] >> 8 & 0x7F))));
    EXPECT_EQ(MidiFileReader(ReadAll(music.folder / "live.mid")).Notes().size(),
              PairNotes(music.take).size());
}

// The server dies in the middle of the music, and with it the connections; another one comes.
TEST_F(Live, ComesBackWithTheServerAndConnectsAgain) {
    const Music music("flute_melody.ogg");
    const std::vector<std::uint32_t> expected = music.Words();
    auto receiver = std::make_unique<JackReceiver>("synth");
    auto player = std::make_unique<JackPlayer>("player", music.samples, length);
    LiveHost host({"--name", "ears", "--connect", "player:out", "--midi-to", "synth:in"});
    ASSERT_TRUE(AwaitThat([&] { return player->IsHeard() && !receiver->Senders().empty(); })) << host.Err();
    player->Play();
    ASSERT_TRUE(receiver->Await(1));
    server.Die();
    ASSERT_TRUE(host.AwaitErr("orva-host: the JACK server has gone; waiting for it to come back\n"));
    receiver.reset();
    player.reset();

    server.Start();
    ASSERT_TRUE(host.AwaitErr("orva-host: the JACK server is back\n")) << host.Err();
    receiver = std::make_unique<JackReceiver>("synth");
    player = std::make_unique<JackPlayer>("player", music.samples, length);
    ASSERT_TRUE(AwaitThat([&] { return player->IsHeard() && !receiver->Senders().empty(); })) << host.Err();
    player->Play();
    ASSERT_TRUE(AwaitThat([&] { return Received(*receiver).size() >= expected.size(); }));
    EXPECT_EQ(Received(*receiver), expected);
    EXPECT_EQ(host.End(SIGINT), 0) << host.Err();
    EXPECT_EQ(host.Err(),
              "orva-host: the JACK server has gone; waiting for it to come back\n"
              "orva-host: the JACK server is back\n");
}

// What sounds when the program ends, ends with it.
TEST_F(Live, LeavesNoNoteSounding) {
    const Music music("piano_chords.ogg");
    JackReceiver receiver("synth");
    JackPlayer player("player", music.samples, length);
    LiveHost host({"--connect", "player:out", "--midi-to", "synth:in"});
    ASSERT_TRUE(AwaitThat([&] { return player.IsHeard() && !receiver.Senders().empty(); })) << host.Err();
    player.Play();
    std::map<int, int> sounding;  // by note
    ASSERT_TRUE(receiver.Await(1));
    EXPECT_EQ(host.End(SIGTERM), 0) << host.Err();
    for (const std::uint32_t word : Received(receiver))
        sounding[static_cast<int>(word >> 8 & 0x7F)] += (word & 0xF0) == 0x90 ? 1 : -1;
    for (const auto& [note, count] : sounding) EXPECT_EQ(count, 0) << "note " << note;
}

TEST_F(Live, ListsPortsAndHearsTheFirstCapturePort) {
    const JackReceiver receiver("synth");
    LiveHost list({"--list"});
    EXPECT_EQ(list.Wait(), 0) << list.Err();
    EXPECT_EQ(list.Out(),
              "audio to hear (--connect)\n  system:capture_1\n  system:capture_2\n"
              "MIDI to play to (--midi-to)\n  synth:in\n");

    LiveHost host({"--connect"});
    jack_client_t* const looker = QuietJackClient("looker");
    ASSERT_NE(looker, nullptr);
    EXPECT_TRUE(AwaitThat([&] {
        const jack_port_t* const capture = jack_port_by_name(looker, "system:capture_1");
        return capture != nullptr && jack_port_connected_to(capture, "orva:in") != 0;
    })) << host.Err();
    jack_client_close(looker);
    EXPECT_EQ(host.End(SIGTERM), 0) << host.Err();
}

TEST_F(Live, WhatIsNotThereIsToldInOneLine) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> faults = {
        {{"--server", "orva-test-no-server"}, "no JACK server \"orva-test-no-server\" answers"},
        {{"--list", "--server", "orva-test-no-server"}, "no JACK server \"orva-test-no-server\" answers"},
        {{"--connect", "a:b"}, "a:b: cannot be connected; orva-host live --list lists what can"},
        {{"--midi-to", "c:d"}, "c:d: cannot be connected; orva-host live --list lists what can"},
    };
    for (const auto& [arguments, text] : faults) {
        LiveHost host(arguments);
        EXPECT_EQ(host.Wait(), 1) << text;
        EXPECT_EQ(host.Err(), "orva-host: " + text + "\n");
    }
}

TEST_F(Live, EndsOnEachSignalEvenWithoutAServer) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        LiveHost host({"--connect"});
        ASSERT_TRUE(AwaitThat([&] { return host.Out().find("orva: ") == 0; })) << host.Err();
        EXPECT_EQ(host.End(signal), 0) << host.Err();
        EXPECT_EQ(host.Err(), "");
    }
    LiveHost host({});
    ASSERT_TRUE(AwaitThat([&] { return host.Out().find("orva: ") == 0; })) << host.Err();
    server.Die();
    ASSERT_TRUE(host.AwaitErr("the JACK server has gone; waiting for it to come back\n"));
    EXPECT_EQ(host.End(SIGINT), 0) << host.Err();
}
