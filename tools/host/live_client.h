#pragma once
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class LivePlugin;

// No server answers, or it refuses; the text says why.
struct ServerFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The ports of a sound server that live hears from and plays to.
struct ServerPorts {
    std::vector<std::string> sources;       // audio: of the hardware, then virtual inputs, then programs
    std::vector<std::string> monitors;      // audio that others play, to be heard once more
    std::vector<std::string> destinations;  // MIDI
};

// The program as a client of a JACK server (PipeWire serves it as well): audio input "in", audio output
// "out", MIDI output "midi". The server has to run; none is started.
//
// The library keeps one thing for the whole process: who hears its complaints. They are silenced here for
// good. A client whose server has died is left to the library, which frees it when the next one is opened.
//
// Threads: one, the one that made it; the plug-in hears its audio on the server's. Errors: ServerFault.
class LiveClient {
public:
    // An empty server's name means the usual one.
    LiveClient(const std::string& name, const std::string& server);
    ~LiveClient();
    LiveClient(const LiveClient&) = delete;
    LiveClient& operator=(const LiveClient&) = delete;

    std::int32_t Rate() const;    // Hz, as the server says at this moment
    std::int32_t Period() const;  // samples, in the same way
    std::string Name() const;     // the server makes it unique
    // From now on `plugin`, which must outlive this, hears what arrives.
    void Activate(LivePlugin& plugin);
    bool HasGone() const;  // the server has died, or threw us out

    ServerPorts Ports() const;
    // True once the connection stands; false where there is no such port, or where the server refuses.
    bool Hear(const std::string& source);
    bool PlayTo(const std::string& destination);

private:
    struct Link;
    static Link* dead;  // list of those whose server has died

    std::unique_ptr<Link> link;
};
