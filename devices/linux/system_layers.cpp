#include "devices/linux/jack_out.h"
#include "devices/linux/sequencer_out.h"

std::vector<std::unique_ptr<MidiBackend>> SystemLayers() {
    std::vector<std::unique_ptr<MidiBackend>> layers;
    layers.push_back(std::make_unique<SequencerBackend>());
    layers.push_back(std::make_unique<JackBackend>());
    return layers;
}
