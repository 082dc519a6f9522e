#include "devices/midi_out_devices.h"

#include <atomic>

#include "base/lasting.h"
#include "devices/system_midi_out.h"

namespace {

std::atomic<MidiOutDevices*> substitute{nullptr};

SystemMidiOut& System() {
    static Lasting<SystemMidiOut> devices;
    return devices.value;
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
