#pragma once
#include "devices/midi_backend.h"

// The devices of the ALSA sequencer, by way of RtMidi: one sequencer client for each open device.
class SequencerBackend : public MidiBackend {
public:
    // The node by which the kernel offers the sequencer. It is looked at first, since both libraries write to
    // standard error where it is absent.
    explicit SequencerBackend(std::string sequencerNode = "/dev/snd/seq") : node(std::move(sequencerNode)) {}

    std::vector<std::string> DeviceNames() override;
    MidiOpening Open(const std::string& name) override;

private:
    bool IsThere() const;

    const std::string node;
};
