#include "devices/linux/jack_out.h"

#include <jack/jack.h>
#include <jack/midiport.h>
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>
#include <time.h>

#include <array>
#include <atomic>
#include <cerrno>

#include "base/lasting.h"
#include "base/mutex.h"
#include "devices/message_ring.h"

namespace {

Mutex jackAttempts;  // one attempt at a time, because of the process-wide listener below

// Around each call that opens or closes a client. libjack writes several lines to standard error when no
// server answers, and it leaves a signal of broken pipes blocked on the calling thread, or raised where the
// server died unnoticed. Host and thread get back what they had.
class SCOPED_CAPABILITY QuietAttempt {
public:
    QuietAttempt() ACQUIRE(jackAttempts) {
        jackAttempts.lock();
        listener = jack_error_callback;
        jack_set_error_function([](const char*) {});
        sigemptyset(&brokenPipe);
        sigaddset(&brokenPipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &brokenPipe, &found);
        sigset_t pending;
        sigpending(&pending);
        wasPending = sigismember(&pending, SIGPIPE) == 1;
    }
    ~QuietAttempt() RELEASE_LOCK() {
        const timespec atOnce = {};
        if (!wasPending)
            while (sigtimedwait(&brokenPipe, nullptr, &atOnce) == -1 && errno == EINTR) continue;
        pthread_sigmask(SIG_SETMASK, &found, nullptr);
        jack_set_error_function(listener);
        jackAttempts.unlock();
    }
    QuietAttempt(const QuietAttempt&) = delete;
    QuietAttempt& operator=(const QuietAttempt&) = delete;

private:
    void (*listener)(const char*) = nullptr;  // the host's, or the library's own
    sigset_t brokenPipe;
    sigset_t found;
    bool wasPending = false;
};

class JackLink;

struct Links {
    std::vector<JackLink*> open;                  // with a client that we still have to close
    std::vector<std::unique_ptr<JackLink>> dead;  // whose server has died
};
Links& AllLinks() REQUIRES(jackAttempts) {
    static Lasting<Links> links;
    return links.value;
}

jack_client_t* OpenClient() REQUIRES(jackAttempts);

// A client of ours with its output port, and the messages on their way through it.
//
// A client whose server has died is not closed. The library frees such clients, everybody's, as soon as
// anybody in the process opens the next one, and a pointer to it is good for nothing from then on. So it is
// left to the library, and since nobody can say when its threads are done with it, its link is kept: 130 KB
// for each server that dies under an open device.
class JackLink {
public:
    JackLink() { sem_init(&quiet, 0, 0); }
    ~JackLink() {
        for (; ring.Ready(); ring.Pop()) delete ring.Front().whole;
        FreeFinished();
        sem_destroy(&quiet);
    }
    JackLink(const JackLink&) = delete;
    JackLink& operator=(const JackLink&) = delete;

    // The end of a link: once what was sent has left, where anybody is there to take it.
    static void Retire(std::unique_ptr<JackLink> link) {
        if (link->client == nullptr) return;
        link->closing.store(true);
        if (link->granted && !link->gone.load()) link->AwaitQuiet();
        const QuietAttempt attempt;
        std::erase(AllLinks().open, link.get());
        if (link->gone.load())
            AllLinks().dead.push_back(std::move(link));
        else
            jack_client_close(link->client);
    }
    void NoteShutdown() {
        gone.store(true);
        sem_post(&quiet);
    }

    MidiOpening Connect(const std::string& input) {
        const QuietAttempt attempt;
        client = OpenClient();
        if (client == nullptr) return Refused(MMSYSERR_BADDEVICEID);  // the server that listed it has gone
        AllLinks().open.push_back(this);
        port = jack_port_register(client, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        if (port == nullptr) return Refused(MMSYSERR_NOMEM);  // the server's ports are limited
        jack_on_shutdown(
            client, [](void* self) { static_cast<JackLink*>(self)->NoteShutdown(); }, this);
        jack_set_process_callback(
            client, [](jack_nframes_t n, void* self) { return static_cast<JackLink*>(self)->Process(n); },
            this);
        if (jack_activate(client) != 0) return Refused(MMSYSERR_ERROR);
        if (jack_port_by_name(client, input.c_str()) == nullptr) return Refused(MMSYSERR_BADDEVICEID);
        if (jack_connect(client, jack_port_name(port), input.c_str()) != 0)
            return Refused(MMSYSERR_ALLOCATED);
        granted = true;
        return {};
    }

    std::uint32_t Send(std::uint32_t message, std::size_t length) {
        return Queue({message, length, nullptr});
    }

    std::uint32_t SendLong(const MidiLongMessage& message) {
        FreeFinished();
        auto whole = std::make_unique<Whole>();
        whole->bytes.assign(message.data, message.data + message.length);
        const std::uint32_t result = Queue({0, 0, whole.get()});
        if (result == MMSYSERR_NOERROR)
            static_cast<void>(whole.release());  // the ring's, then the finished ones'
        return result;
    }

private:
    struct Whole {
        std::vector<std::uint8_t> bytes;
        Whole* next = nullptr;  // among the finished
    };
    struct Message {
        std::uint32_t word;
        std::size_t length;
        Whole* whole;  // owned; null for a short message
    };

    static MidiOpening Refused(std::uint32_t code) { return {nullptr, code}; }

    std::uint32_t Queue(const Message& message) {
        return !gone.load(std::memory_order_relaxed) && ring.Push(message) ? MMSYSERR_NOERROR
                                                                           : MMSYSERR_ERROR;
    }

    // The server's thread, once a cycle: all that waits, at the begin of the cycle. What does not fit into
    // the port's buffer comes with the next one. The server makes a connection some cycles after it was asked
    // to, and what is written before goes nowhere: so the first messages wait until it is there.
    int Process(jack_nframes_t frames) {
        void* const buffer = jack_port_get_buffer(port, frames);
        jack_midi_clear_buffer(buffer);
        connected = connected || jack_port_connected(port) > 0;
        if (!connected) return 0;
        for (bool first = true; ring.Ready(); first = false) {
            const Message next = ring.Front();
            const std::size_t size = next.whole != nullptr ? next.whole->bytes.size() : next.length;
            // Asked first: the library would complain on standard error, on the server's thread.
            const bool fits = size <= jack_midi_max_event_size(buffer);
            // A long message that an empty buffer cannot hold will never go: it is dropped.
            if (!fits && (next.whole == nullptr || !first)) break;
            const std::array<jack_midi_data_t, 3> bytes = {static_cast<jack_midi_data_t>(next.word),
                                                           static_cast<jack_midi_data_t>(next.word >> 8),
                                                           static_cast<jack_midi_data_t>(next.word >> 16)};
            if (fits)
                jack_midi_event_write(buffer, 0,
                                      next.whole != nullptr ? next.whole->bytes.data() : bytes.data(), size);
            ring.Pop();
            if (next.whole != nullptr) Finish(next.whole);
        }
        if (closing.load() && !ring.Ready() && ++emptyCycles == flushCycles) sem_post(&quiet);
        return 0;
    }

    // Until the last message has left: a cycle that wrote it, and two more in which every reader had it. A
    // server that stands still is given up after a second.
    void AwaitQuiet() {
        timespec until = {};
        clock_gettime(CLOCK_MONOTONIC, &until);
        ++until.tv_sec;
        while (sem_clockwait(&quiet, CLOCK_MONOTONIC, &until) == -1 && errno == EINTR) continue;
    }

    void Finish(Whole* whole) {
        whole->next = finished.load(std::memory_order_relaxed);
        while (!finished.compare_exchange_weak(whole->next, whole)) continue;
    }
    void FreeFinished() {
        for (const Whole* whole = finished.exchange(nullptr); whole != nullptr;) {
            const Whole* const done = whole;
            whole = whole->next;
            delete done;
        }
    }

    static constexpr int flushCycles = 3;

    jack_client_t* client = nullptr;
    jack_port_t* port = nullptr;
    bool granted = false;  // the server has taken the connection
    // A busy recording sends some hundreds of messages a second, and a cycle is 0.2 s at most.
    MessageRing<Message, 4096> ring;
    std::atomic<Whole*> finished{nullptr};  // long messages that have left, for another thread to free
    std::atomic<bool> gone{false};          // the server has died, or threw us out
    std::atomic<bool> closing{false};
    bool connected = false;  // server's thread: has been
    int emptyCycles = 0;     // server's thread: since closing
    sem_t quiet;             // posted when nothing is left to send, or when nothing can be
};

// Where no server answers, the servers of all links have died, whether or not their
// clients have noticed, and the library has freed these.
jack_client_t* OpenClient() {
    jack_status_t status = {};
    jack_client_t* const client = jack_client_open(midiClientName, JackNoStartServer, &status);
    if (client == nullptr && (status & JackServerFailed) != 0)
        for (JackLink* const link : AllLinks().open) link->NoteShutdown();
    return client;
}

class JackDevice : public MidiDevice {
public:
    explicit JackDevice(std::unique_ptr<JackLink> made) : link(std::move(made)) {}
    ~JackDevice() override { JackLink::Retire(std::move(link)); }

    std::uint32_t Send(std::uint32_t message, std::size_t length) override {
        return link->Send(message, length);
    }
    std::uint32_t SendLong(const MidiLongMessage& message) override { return link->SendLong(message); }

private:
    std::unique_ptr<JackLink> link;
};

}  // namespace

std::vector<std::string> JackBackend::DeviceNames() {
    std::vector<std::string> names;
    const QuietAttempt attempt;
    jack_client_t* const client = OpenClient();
    if (client == nullptr) return names;
    if (const char** const inputs =
            jack_get_ports(client, nullptr, JACK_DEFAULT_MIDI_TYPE, JackPortIsInput)) {
        for (const char** input = inputs; *input != nullptr; ++input) names.emplace_back(*input);
        jack_free(inputs);
    }
    jack_client_close(client);
    return names;
}

MidiOpening JackBackend::Open(const std::string& name) {
    auto link = std::make_unique<JackLink>();
    MidiOpening opening = link->Connect(name);
    if (opening.code == MMSYSERR_NOERROR)
        opening.device = std::make_unique<JackDevice>(std::move(link));
    else
        JackLink::Retire(std::move(link));
    return opening;
}
