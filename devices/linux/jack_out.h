#pragma once
#include "devices/midi_backend.h"

// The MIDI inputs of a JACK server's clients, one client of ours for each open device. A server is used if it
// runs and never started. Which one it is, is the library's choice (environment JACK_DEFAULT_SERVER).
//
// The client is our own because its sending must hold when the server dies or stands still: a full ring or a
// dead server gives code 1 at once.
class JackBackend : public MidiBackend {
public:
    std::vector<std::string> DeviceNames() override;
    MidiOpening Open(const std::string& name) override;
};
