#pragma once
#include <fcntl.h>
#include <jack/jack.h>
#include <jack/midiport.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "gtest/gtest.h"
#include "tests/platform/jack_client.h"

// A JACK server without a sound card, for one test, under a name of its own, so that it never meets a user's.
// While it exists, the clients of this process go to it. Where it does not start, the test ends with an
// exception that tells what the server said.
class JackServer {
public:
    enum class Clients { mayLag, areAwaited };  // what a cycle does about a client that gets no time

    explicit JackServer(int newRate = 48000, Clients newClients = Clients::mayLag)  // Hz
        : rate(std::to_string(newRate)), mode(newClients == Clients::areAwaited ? "-S" : "-r") {
        for (int number = 0; !StartAs(number); ++number) continue;
    }
    ~JackServer() {
        // A server that was killed keeps its place in the list; only one of its name can give it back.
        try {
            if (process <= 0) Start();
        } catch (const std::exception& fault) {
            ADD_FAILURE() << fault.what();
        }
        Freeze(false);
        End(SIGTERM);
        std::filesystem::remove(log);
        unsetenv("JACK_DEFAULT_SERVER");
        close(lock);
    }
    JackServer(const JackServer&) = delete;
    JackServer& operator=(const JackServer&) = delete;

    // And waits until clients can connect. Called by the construction, and once more after Die.
    void Start() {
        Run();
        const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        for (;;) {
            if (jack_client_t* const client = QuietJackClient("probe")) {
                jack_client_close(client);
                return;
            }
            if (HasEnded() || std::chrono::steady_clock::now() > patience) {
                End(SIGKILL);
                throw std::runtime_error("jackd does not start. It said:\n" + Said());
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));  // it tells nobody when it is ready
        }
    }
    void Die() { End(SIGKILL); }       // at once, without a word to its clients
    void Freeze(bool frozen = true) {  // it lives and does nothing
        if (process > 0) kill(process, frozen ? SIGSTOP : SIGCONT);
    }

private:
    // False where the name is taken: by another test, or by a server that was killed and whose end its parent
    // has not seen yet. There are few names, since all servers of the machine share a list of eight, and one
    // that was killed with its test keeps its place there until the next of its name.
    bool StartAs(int number) {
        name = "orva-test-" + std::to_string(number);
        log = testing::TempDir() + name + ".log";
        const std::string file = testing::TempDir() + name + ".lock";
        lock = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (lock < 0) throw std::runtime_error(file + " cannot be opened");
        setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
        try {
            if (flock(lock, LOCK_EX | LOCK_NB) == 0) {
                Start();
                return true;
            }
        } catch (const std::exception&) {
            if (number == 7 || Said().find("already active") == std::string::npos) throw;
        }
        close(lock);
        return false;
    }
    void Run() {
        process = fork();
        if (process != 0) return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that crashes takes its server along
        const int file = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(file, STDOUT_FILENO);
        dup2(file, STDERR_FILENO);
        // Patience of ten seconds with clients that get no time on a busy machine.
        execlp("jackd", "jackd", "-n", name.c_str(), "-r", mode, "-t", "10000", "-d", "dummy", "-r",
               rate.c_str(), "-p", "1024", nullptr);
        perror("jackd");
        _exit(127);
    }
    bool HasEnded() {
        if (process > 0 && waitpid(process, nullptr, WNOHANG) == process) process = -1;
        return process <= 0;
    }
    void End(int signal) {
        if (process > 0) kill(process, signal);
        for (int turn = 0; !HasEnded(); ++turn) {
            if (turn == 500) kill(process, SIGKILL);  // it may hang over clients that ended without a word
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        // A server that was killed leaves its semaphores and memory behind.
        std::error_code ignored;
        for (const auto& file : std::filesystem::directory_iterator("/dev/shm", ignored))
            if (file.path().filename().string().find("_" + name + "_") != std::string::npos)
                std::filesystem::remove(file.path(), ignored);
    }
    std::string Said() const {
        std::ifstream file(log);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string rate;
    const char* const mode;  // of its command line; the one that is always given stands for none
    std::string name;
    int lock = -1;       // file that stands for the name
    std::string log;     // file with what it writes
    pid_t process = -1;  // -1: none
};

// A client with one MIDI input, which keeps what arrives. Its name in the device list is "NAME:in".
class JackReceiver {
public:
    explicit JackReceiver(const std::string& name) : client(QuietJackClient(name.c_str())) {
        if (client == nullptr) throw std::runtime_error("no JACK server for the receiver");
        sem_init(&arrived, 0, 0);
        port = jack_port_register(client, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(
            client, [](jack_nframes_t n, void* self) { return static_cast<JackReceiver*>(self)->Process(n); },
            this);
        jack_on_shutdown(
            client, [](void* self) { static_cast<JackReceiver*>(self)->serverDied = true; }, this);
        jack_activate(client);
    }
    // A client whose server has died is the library's: the next one to be opened, by anybody, frees it.
    ~JackReceiver() {
        if (!serverDied) jack_client_close(client);
        sem_destroy(&arrived);
    }
    JackReceiver(const JackReceiver&) = delete;
    JackReceiver& operator=(const JackReceiver&) = delete;

    // Waits for that many messages since the begin; false if nothing more came for a long time.
    bool Await(std::size_t wanted) {
        while (count.load() < wanted) {
            timespec until = {};
            clock_gettime(CLOCK_REALTIME, &until);
            until.tv_sec += 20;
            if (sem_timedwait(&arrived, &until) == -1 && errno == ETIMEDOUT) return false;
        }
        return true;
    }
    std::size_t Count() const { return count.load(); }
    std::uint32_t At(std::size_t index) const { return words[index]; }  // below Count: its first three bytes
    std::size_t LengthAt(std::size_t index) const { return lengths[index]; }
    std::vector<std::string> Senders() const {  // the ports that are connected to ours
        std::vector<std::string> senders;
        if (const char** const ports = jack_port_get_all_connections(client, port)) {
            for (const char** each = ports; *each != nullptr; ++each) senders.emplace_back(*each);
            jack_free(ports);
        }
        return senders;
    }

private:
    // Clients of one process see one another's port buffers, and the server orders their access by means that
    // the thread sanitizer cannot see: so it does not look at this function.
    __attribute__((no_sanitize("thread"))) int Process(jack_nframes_t frames) {
        void* const buffer = jack_port_get_buffer(port, frames);
        const std::uint32_t events = jack_midi_get_event_count(buffer);
        std::size_t at = count.load();
        for (std::uint32_t i = 0; i < events; ++i, ++at) {
            jack_midi_event_t event;
            jack_midi_event_get(&event, buffer, i);
            if (at >= room) continue;
            std::uint32_t word = 0;
            for (std::size_t byte = 0; byte < event.size && byte < 3; ++byte)
                word |= static_cast<std::uint32_t>(event.buffer[byte]) << 8 * byte;
            words.get()[at] = word;
            lengths.get()[at] = event.size;
        }
        count.store(at);
        if (events > 0) sem_post(&arrived);
        return 0;
    }

    static constexpr std::size_t room = 20000;  // messages; later ones are counted and not kept
    jack_client_t* client;
    jack_port_t* port = nullptr;
    const std::unique_ptr<std::uint32_t[]> words = std::make_unique<std::uint32_t[]>(room);
    const std::unique_ptr<std::size_t[]> lengths = std::make_unique<std::size_t[]>(room);
    std::atomic<std::size_t> count{0};
    std::atomic<bool> serverDied{false};
    sem_t arrived;  // once a cycle with messages
};
