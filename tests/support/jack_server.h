#pragma once
#include <fcntl.h>
#include <jack/jack.h>
#include <jack/midiport.h>
#include <sys/file.h>

#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

// A client of the server that the environment names, or null.
inline jack_client_t* QuietJackClient(const char* name) {
    jack_set_error_function([](const char*) {});
    jack_client_t* const client = jack_client_open(name, JackNoStartServer, nullptr);
    jack_set_error_function(nullptr);
    return client;
}

// A JACK server without a sound card, under a name that no user's server has. While it exists, the clients of
// this process and of its children connect to it. Throws with the server's own output where it does not
// start.
class JackServer {
public:
    explicit JackServer(int newRate = 48000) : rate(std::to_string(newRate)) {  // Hz
        for (int number = 0; !StartAs(number); ++number) continue;
    }
    ~JackServer() {
        // A server that was killed keeps its place in the list; only one of its name can give it back.
        try {
            if (server.HasEnded()) Start();
        } catch (const std::exception& fault) {
            ADD_FAILURE() << fault.what();
        }
        End(SIGTERM);
        std::filesystem::remove(log);
        unsetenv("JACK_DEFAULT_SERVER");
        close(lock);
    }
    JackServer(const JackServer&) = delete;
    JackServer& operator=(const JackServer&) = delete;

    // Waits until clients can connect. Called by the constructor, and again after Die.
    void Start() {
        // Each cycle awaits its clients, for ten seconds on a busy machine.
        server.Start("exec jackd -n " + name + " -r -S -t 10000 -d dummy -r " + rate + " -p 1024 > '" + log +
                     "' 2>&1");
        jack_client_t* client = nullptr;
        AwaitThat([&] { return server.HasEnded() || (client = QuietJackClient("probe")) != nullptr; });
        if (client != nullptr) return static_cast<void>(jack_client_close(client));
        End(SIGKILL);
        throw std::runtime_error("jackd does not start. Its output:\n" + ReadAll(log));
    }
    void Die() { End(SIGKILL); }  // at once, without a word to its clients

private:
    // False where the name is taken: by another test, or by a killed server whose parent has not reaped it
    // yet. All servers of a machine share a list of eight, so the names are few and are used again.
    bool StartAs(int number) {
        name = "orva-test-" + std::to_string(number);
        log = testing::TempDir() + name + ".log";
        lock = open((testing::TempDir() + name + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (lock < 0) throw std::runtime_error("no lock file for " + name);
        setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
        try {
            if (flock(lock, LOCK_EX | LOCK_NB) == 0) return Start(), true;
        } catch (const std::exception&) {
            if (number == 7 || ReadAll(log).find("already active") == std::string::npos) throw;
        }
        close(lock);
        return false;
    }
    void End(int signal) {
        server.Kill(signal);
        // It may hang over clients that ended without a word.
        AwaitThat([this] { return server.HasEnded(); }, std::chrono::seconds(5));
        server.End(SIGKILL);
        // A server that was killed leaves its semaphores and memory behind.
        std::error_code ignored;
        for (const auto& file : std::filesystem::directory_iterator("/dev/shm", ignored))
            if (file.path().filename().string().find("_" + name + "_") != std::string::npos)
                std::filesystem::remove(file.path(), ignored);
    }

    const std::string rate;
    std::string name, log;  // log: the file with its output
    int lock = -1;          // the file that stands for the name
    Process server;
};

// A client with a MIDI input, "NAME:in", and an audio input, "NAME:audio", that keep what arrives, and an
// audio output, "NAME:out", that plays samples once. All is dated on one clock, the samples that the client
// was given: the server's own clock jumps where it was late.
//
// Threads: the server's until Stop, and the test's. Nothing is allocated after construction.
class JackReceiver {
public:
    struct Event {
        std::size_t at;    // samples since the client began
        std::size_t size;  // bytes of the message
        std::array<std::uint8_t, 3> bytes;
    };

    explicit JackReceiver(const std::string& name, std::vector<float> samples = {}, std::size_t room = 0)
        : events(20000), played(std::move(samples)), kept(room), client(nullptr) {
        // A busy server may refuse at first.
        if (!AwaitThat([&] { return (client = QuietJackClient(name.c_str())) != nullptr; }))
            throw std::runtime_error("no JACK server for " + name);
        midi = jack_port_register(client, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        audio = jack_port_register(client, "audio", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        out = jack_port_register(client, "out", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
        const auto process = [](jack_nframes_t n, void* self) { return Of(self).Process(n); };
        jack_set_process_callback(client, process, this);
        jack_on_shutdown(
            client, [](void* self) { Of(self).serverDied = true; }, this);
        jack_activate(client);
    }
    ~JackReceiver() { Stop(); }

    // A client whose server has died is the library's: the next one that anybody opens frees it.
    void Stop() {
        if (client != nullptr && !serverDied) jack_client_close(client);
        client = nullptr;
    }
    bool Hear(const std::string& from, bool isMidi = false) {
        return jack_connect(client, from.c_str(), jack_port_name(isMidi ? midi : audio)) == 0;
    }
    bool IsHeard() const { return jack_port_connected(out) > 0; }
    std::vector<std::string> Senders() const {  // the ports that are connected to the MIDI input
        std::vector<std::string> senders;
        const char** const ports = jack_port_get_all_connections(client, midi);
        for (const char** each = ports; each != nullptr && *each != nullptr; ++each)
            senders.emplace_back(*each);
        jack_free(ports);
        return senders;
    }
    void Play() { playing = true; }  // from the next period on
    std::size_t Count() const { return count.load(); }
    const Event& EventAt(std::size_t index) const { return events[index]; }
    std::uint32_t At(std::size_t index) const {  // the first three bytes
        const auto& bytes = events[index].bytes;
        return bytes[0] | bytes[1] * 0x100U | bytes[2] * 0x10000U;
    }
    std::size_t Length() const { return length.load(); }  // samples kept so far
    const std::vector<float>& Samples() const { return kept; }

private:
    static JackReceiver& Of(void* self) { return *static_cast<JackReceiver*>(self); }
    // The server orders the access to the port buffers of one process's clients by means that the thread
    // sanitizer cannot see, so it does not look at this function, which copies messages by hand.
    __attribute__((no_sanitize("thread"))) int Process(jack_nframes_t frames) {
        const std::size_t from = position, start = length;
        const std::size_t plays = playing ? std::min<std::size_t>(frames, played.size() - from) : 0;
        auto* const output = static_cast<float*>(jack_port_get_buffer(out, frames));
        std::fill_n(std::copy_n(played.data() + from, plays, output), frames - plays, 0.0F);
        position = from + plays;

        void* const messages = jack_port_get_buffer(midi, frames);
        const std::uint32_t arrived = jack_midi_get_event_count(messages);
        std::size_t at = count;
        for (std::uint32_t i = 0; i < arrived && at < events.size(); ++i, ++at) {
            jack_midi_event_t message;
            jack_midi_event_get(&message, messages, i);
            Event event{clock + message.time, message.size, {}};
            for (std::size_t byte = 0; byte < message.size && byte < 3; ++byte)
                event.bytes[byte] = message.buffer[byte];
            events[at] = event;
        }
        count = at;
        clock += frames;
        const std::size_t fits = std::min<std::size_t>(frames, kept.size() - start);
        std::copy_n(static_cast<const float*>(jack_port_get_buffer(audio, frames)), fits,
                    kept.data() + start);
        length = start + fits;
        return 0;
    }

    std::vector<Event> events;
    const std::vector<float> played;
    std::vector<float> kept;
    jack_client_t* client;  // null once it has stopped
    jack_port_t *midi = nullptr, *audio = nullptr, *out = nullptr;
    std::size_t clock = 0;     // samples that the client was given
    std::size_t position = 0;  // of what is played
    std::atomic<std::size_t> count{0}, length{0};
    std::atomic<bool> playing{false}, serverDied{false};
};
