#include <iostream>

#include "devices/midi_device_list.h"
#include "tools/host/commands/command.h"
#include "tools/host/printable.h"

std::uint32_t FindDevice(const std::string& name) {
    const std::uint32_t count = MidiOutDeviceCount();
    for (std::uint32_t index = 0; index < count; ++index)
        if (name == MidiOutDeviceName(index) || name == std::to_string(index + 1)) return index;
    throw UsageError("--device: there is no MIDI device \"" + name + "\"; orva-host devices lists them");
}

namespace {

int ListDevices() {
    const std::uint32_t count = MidiOutDeviceCount();
    if (count == 0) std::cout << "no MIDI devices: neither the ALSA sequencer nor a JACK server has one\n";
    for (std::uint32_t index = 0; index < count; ++index)
        std::cout << index + 1 << "  " << Printable(MidiOutDeviceName(index)) << '\n';
    return exitDone;
}

}  // namespace

void AddDevices(CLI::App& program, Job& chosen) {
    CLI::App* const command = program.add_subcommand("devices", "the MIDI devices that notes can be sent to");
    command->callback([&chosen] { chosen = ListDevices; });
}
