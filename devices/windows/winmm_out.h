#pragma once
#include "devices/midi_backend.h"

// The MIDI outputs of the system's multimedia layer. The layer gives devices by number alone; a device is
// found again by its name, and of several with one name the later ones are numbered.
class WinmmBackend : public MidiBackend {
public:
    std::vector<std::string> DeviceNames() override;
    MidiOpening Open(const std::string& name) override;
    MidiOpening OpenMapper() override;
};
