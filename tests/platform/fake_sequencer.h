#pragma once
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

// A sequencer in the place of the system's: its functions are found in this program before those of the
// system's library, so that RtMidi itself is under test. One client at a time is all that it tells apart.
struct FakeSequencer {
    struct Port {
        int client;
        int port;
        std::string clientName;
        std::string portName;
    };
    std::vector<Port> ports;           // that take notes; one client's stand together
    int openResult = 0;                // negative: no client can be made
    int subscribeResult = 0;           // negative: the device refuses
    std::atomic<int> outputResult{0};  // negative: an event is not taken
    std::atomic<int> opened{0}, closed{0};
    std::string clientNames;           // of ours, each followed by a semicolon
    std::string subscribed;            // "client:port" of what we connected to last
    std::vector<std::uint32_t> words;  // events taken, as short words; system-exclusive ones as their length
    std::atomic<int> together{0};      // senders inside at once: the library allows one
    std::atomic<int> collisions{0};
};

FakeSequencer& Sequencer();  // the process's
