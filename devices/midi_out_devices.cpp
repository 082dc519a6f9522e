#include "devices/midi_out_devices.h"

#include <atomic>

#include "devices/system_midi_out.h"

namespace {

std::atomic<MidiOutDevices*> substitute{nullptr};

// Never destroyed: devices are closed while the process ends, by others' destructors, in an order that only
// the loader knows. It holds nothing then.
SystemMidiOut& System() {
    static SystemMidiOut& devices = *new SystemMidiOut;
    return devices;
}

}  // namespace

SystemVersion MidiOutDevices::Version() {
    std::call_once(versionAsked, [this] { version = GetVersionExA(); });
    return version;
}

MidiOutDevices& MidiOut() {
    MidiOutDevices* const layer = substitute.load(std::memory_order_acquire);
    return layer != nullptr ? *layer : System();
}

void SubstituteMidiOut(MidiOutDevices* layer) {
    substitute.store(layer, std::memory_order_release);
}
